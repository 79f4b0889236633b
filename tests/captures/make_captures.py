#!/usr/bin/python3 -B
"""Makes small captures of every kind that the tests need, from the messages of tests/data.

    make_captures.py FOLDER

The same bytes each time. Debian's Python, since scapy is Debian's, too.

    FOLDER/TRACE/        a trace's records in one kind of capture each, in order, with their times
    FOLDER/messages/     messages that need a look of their own
    FOLDER/without_lte/  captures without a message of LTE
    FOLDER/broken/       what is no capture, or only the beginning of one
"""
import gzip
import itertools
import pathlib
import sys

import carriers
import mac_lte
import messages
import other_traffic
import s1ap
from capture_files import (ETHERNET, IPV4, RAW_IP, USER0, USER1, USER2, USER3, WIRESHARK_UPPER_PDU,
                           pcap, pcapng)


def compressed(image):
    return gzip.compress(image, mtime=0)


def exported(records):
    return pcapng([WIRESHARK_UPPER_PDU],
                  [(record.time, carriers.exported_pdu(record)) for record in records])


def in_every_link(kind, packets):
    for name, (link_type, link) in carriers.LINKS.items():
        yield f"{kind}_{name}.pcap", pcap(link_type, [(time, link(packet)) for time, packet in packets])


def trace_captures(trace):
    nas = [record for record in trace if record.is_nas]
    yield "exported_pdu.pcapng", exported(trace)
    yield "exported_pdu_nas.pcapng", exported(nas)
    yield "user_dlt_nas.pcap", pcap(USER1, [(record.time, record.data) for record in nas])
    yield "nas_in_rrc.pcapng", exported(map(messages.information_transfer, nas))
    yield from gsmtap_captures(trace)
    yield from mac_lte_captures(trace)
    yield from s1ap_captures(trace)
    yield "mixed.pcapng", mixed(trace)


def gsmtap_captures(trace):
    packets = [(record.time, carriers.over_gsmtap(record)) for record in trace]
    yield from in_every_link("gsmtap", packets)

    in_raw_ip = [(time, carriers.raw_ip(packet)) for time, packet in packets]
    yield "gsmtap_raw_ip.pcap", pcap(RAW_IP, in_raw_ip)
    yield "gsmtap_ipv4.pcap", pcap(IPV4, [packet for packet in in_raw_ip if packet[1][0] >> 4 == 4])

    in_ethernet = [(time, carriers.ethernet(packet)) for time, packet in packets]
    yield "gsmtap_big_endian.pcap", pcap(ETHERNET, in_ethernet, order=">")
    yield "gsmtap_big_endian.pcapng", pcapng([ETHERNET], in_ethernet, order=">")
    yield "gsmtap_compressed.pcap.gz", compressed(pcap(ETHERNET, in_ethernet))
    yield "gsmtap_compressed.pcapng.gz", compressed(pcapng([ETHERNET], in_ethernet))

    by_port = [(record.time, carriers.exported_udp(carriers.gsmtap_of(record), carriers.GSMTAP_PORT))
               for record in trace if record.format != "ip"]
    yield "gsmtap_exported_by_port.pcapng", pcapng([WIRESHARK_UPPER_PDU], by_port)


def mac_lte_captures(trace):
    """RRC messages alone: what they carry of NAS is inside them."""
    frames = list(mac_lte.framed_messages(trace))
    yield "mac_lte_147.pcap", pcap(USER0, frames)
    yield "mac_lte_149.pcap", pcap(USER2, frames)
    by_name = [(time, carriers.named_pdu("mac-lte-framed", frame)) for time, frame in frames]
    yield "mac_lte_exported.pcapng", pcapng([WIRESHARK_UPPER_PDU], by_name)

    datagrams = [(time, carriers.udp(mac_lte.for_udp(frame), 57005)) for time, frame in frames]
    in_ethernet = [(time, carriers.ethernet(packet)) for time, packet in datagrams]
    yield "mac_lte_udp.pcap", pcap(ETHERNET, in_ethernet)
    without_ip = [(time, carriers.raw_ip(packet.payload)) for time, packet in datagrams]
    yield "mac_lte_udp_149.pcap", pcap(USER2, without_ip)


def s1ap_captures(trace):
    yield from in_every_link("s1ap", list(carriers.over_s1(trace)))

    nas = [record for record in trace if record.is_nas]
    alone = [(record.time, s1ap.nas_transport(record.data, record.is_uplink, record is nas[0]))
             for record in nas]
    yield "s1ap_150.pcap", pcap(USER3, alone)
    by_name = [(time, carriers.named_pdu("s1ap", data)) for time, data in alone]
    yield "s1ap_exported.pcapng", pcapng([WIRESHARK_UPPER_PDU], by_name)


def mixed(trace):
    """The records in turn as exported PDUs, GSMTAP in raw IP and GSMTAP in Ethernet."""
    forms = (carriers.exported_pdu,
             lambda record: carriers.raw_ip(carriers.over_gsmtap(record)),
             lambda record: carriers.ethernet(carriers.over_gsmtap(record)))
    packets = [(record.time, forms[interface](record), interface)
               for record, interface in zip(trace, itertools.cycle(range(len(forms))))]
    return pcapng([WIRESHARK_UPPER_PDU, RAW_IP, ETHERNET], packets)


def message_captures():
    trace = messages.trace("ltem_attach_psm")
    setup_complete, attach_request = trace[3], trace[4]
    attach_accept = next(record for record in trace if record.is_nas and record.data[1] == 0x42)
    yield "rrc_messages.pcapng", exported(messages.rrc_messages())
    yield "rrc_messages_mac_lte.pcap", pcap(USER2, mac_lte.framed_messages(messages.rrc_messages()))

    def nas_in_rrc(seconds):
        """The NAS message inside an RRC one, and so much later as a record."""
        return exported([messages.information_transfer(attach_accept),
                         attach_accept.later(seconds)])

    carrying = exported([messages.information_transfer(attach_accept)])
    yield "nas_in_rrc.pcapng", carrying
    yield "nas_in_rrc_compressed.pcapng.gz", compressed(carrying)
    yield "nas_in_rrc_again_at_once.pcapng", nas_in_rrc(0.2)
    yield "nas_in_rrc_again_later.pcapng", nas_in_rrc(1.5)
    yield "nas_in_rrc_again_before.pcapng", exported(
        [attach_accept, messages.information_transfer(attach_accept.later(0.2))])
    yield "nas_in_rrc_setup.pcapng", exported([setup_complete])
    yield "nas_in_rrc_setup_again.pcapng", exported([setup_complete, attach_request])

    secured = bytes.fromhex("17 0a0b0c0d 01") + attach_accept.data
    yield "nas_integrity_protected.pcapng", exported([attach_accept.with_data(secured)])
    ciphered = bytes.fromhex("27 9f1c04b6 02 c1e95d3ab0748f2216d4a9537be08c")
    yield "nas_ciphered.pcapng", exported([attach_accept.with_data(ciphered)])
    yield "nas_malformed.pcapng", exported([attach_accept.with_data(attach_accept.data[:20])])
    setup = trace[2]
    yield "rrc_malformed.pcapng", exported([setup.with_data(setup.data[:4])])

    two = [(number, s1ap.nas_transport(record.data, record.is_uplink, False))
           for number, record in enumerate([attach_accept, trace[5]])]
    packet = carriers.sctp(carriers.S1AP_PORT, carriers.S1AP_PROTOCOL, two, uplink=False)
    yield "several_in_a_packet.pcap", pcap(ETHERNET, [(attach_accept.time, carriers.ethernet(packet))])

    # What comes behind the security mode's messages is ciphered, so tshark can't read it.
    security = [setup.of("lte_rrc.dl_dcch", messages.SECURITY_MODE_COMMAND),
                setup.of("lte_rrc.ul_dcch", messages.SECURITY_MODE_COMPLETE).later(0.01),
                setup.of("lte_rrc.dl_dcch", ciphered).later(0.1)]
    yield "rrc_ciphered_mac_lte.pcap", pcap(USER2, mac_lte.framed_messages([setup, *security]))
    release = next(record for record in trace if record.data == bytes.fromhex("2c02"))
    frame = mac_lte.framed_together([record.data for record in (security[0], release)])
    yield "several_in_a_mac_pdu.pcap", pcap(USER2, [(release.time, frame)])


def captures_without_lte():
    yield "empty.pcap", pcap(ETHERNET, [])
    yield "empty.pcapng", pcapng([ETHERNET], [])
    for name, link_type, packets in other_traffic.captures():
        times = itertools.count(1_764_300_000_000_000, 10_000)
        yield name, pcap(link_type, zip(times, packets))


def broken_captures():
    captures = dict(gsmtap_captures(messages.trace("ltem_attach_psm")))
    yield "cut.pcap", captures["gsmtap_ethernet.pcap"][:-7]
    yield "cut.pcapng", captures["gsmtap_big_endian.pcapng"][:-7]
    yield "cut_compressed.pcap.gz", captures["gsmtap_compressed.pcap.gz"][:-100]
    yield "no_capture.pcap", b"This is a text.\n"
    yield "nothing.pcap", b""


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: make_captures.py FOLDER")
    folders = {name: trace_captures(messages.trace(name)) for name in messages.TRACES}
    folders |= {"messages": message_captures(), "without_lte": captures_without_lte(),
                "broken": broken_captures()}
    for name, captures in folders.items():
        folder = pathlib.Path(sys.argv[1], name)
        folder.mkdir(parents=True, exist_ok=True)
        for file, image in captures:
            (folder / file).write_bytes(image)


if __name__ == "__main__":
    main()
