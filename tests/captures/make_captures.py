#!/usr/bin/python3 -B
"""Makes small captures of every kind that the tests need, from the messages of tests/data.

    make_captures.py FOLDER

The same bytes each time. Debian's Python, since scapy is Debian's, too.

    FOLDER/TRACE/        a trace's records in one kind of capture each, in order, with their times
"""
import gzip
import pathlib
import sys

import carriers
import messages
from capture_files import (ETHERNET, IPV4, LINUX_COOKED, LINUX_COOKED_V2, RAW_IP, USER1,
                           WIRESHARK_UPPER_PDU, pcap, pcapng)


def compressed(image):
    return gzip.compress(image, mtime=0)


def trace_captures(trace):
    nas = [record for record in trace if record.is_nas]
    exported = [(record.time, carriers.exported_pdu(record)) for record in trace]
    yield "exported_pdu.pcapng", pcapng([WIRESHARK_UPPER_PDU], exported)
    exported_nas = [(record.time, carriers.exported_pdu(record)) for record in nas]
    yield "exported_pdu_nas.pcapng", pcapng([WIRESHARK_UPPER_PDU], exported_nas)
    yield "user_dlt_nas.pcap", pcap(USER1, [(record.time, record.data) for record in nas])
    yield from gsmtap_captures(trace)


def gsmtap_captures(trace):
    def packets(link):
        return [(record.time, link(carriers.over_gsmtap(record))) for record in trace]

    in_raw_ip = packets(carriers.raw_ip)
    yield "gsmtap_raw_ip.pcap", pcap(RAW_IP, in_raw_ip)
    yield "gsmtap_ipv4.pcap", pcap(IPV4, [packet for packet in in_raw_ip if packet[1][0] >> 4 == 4])
    in_ethernet = packets(carriers.ethernet)
    yield "gsmtap_ethernet.pcap", pcap(ETHERNET, in_ethernet)
    yield "gsmtap_cooked.pcap", pcap(LINUX_COOKED, packets(carriers.cooked))
    yield "gsmtap_cooked_v2.pcap", pcap(LINUX_COOKED_V2, packets(carriers.cooked_v2))
    yield "gsmtap_big_endian.pcap", pcap(ETHERNET, in_ethernet, order=">")
    yield "gsmtap_big_endian.pcapng", pcapng([ETHERNET], in_ethernet, order=">")
    yield "gsmtap_ethernet.pcap.gz", compressed(pcap(ETHERNET, in_ethernet))
    yield "gsmtap_ethernet.pcapng.gz", compressed(pcapng([ETHERNET], in_ethernet))


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: make_captures.py FOLDER")
    folders = {name: trace_captures(messages.trace(name)) for name in messages.TRACES}
    for name, captures in folders.items():
        folder = pathlib.Path(sys.argv[1], name)
        folder.mkdir(parents=True, exist_ok=True)
        for file, image in captures:
            (folder / file).write_bytes(image)


if __name__ == "__main__":
    main()
