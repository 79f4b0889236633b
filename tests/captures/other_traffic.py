"""Packets of captures without a message of LTE."""
import struct

from scapy.layers.dns import DNS, DNSQR, DNSRR
from scapy.layers.inet import TCP, UDP

import carriers
import s1ap
from capture_files import ETHERNET, WIRESHARK_UPPER_PDU

GSMTAP_UM, GSMTAP_UMTS_RRC = 0x01, 0x0C
UM_BCCH, UM_CCCH = 1, 2
UMTS_RRC_UL_CCCH = 3

SYSTEM_INFORMATION_3 = bytes.fromhex("49061b000162f220000148033c0580000000000000002b")
IMMEDIATE_ASSIGNMENT = bytes.fromhex("2d063f000000000000000000" + 11 * "2b")
UMTS_CONNECTION_REQUEST = bytes.fromhex("2a0403c0080000003ffe")
REGISTRATION_REQUEST_5G = bytes.fromhex("7e004179000d0162f220000000000000000010")
RRC_SETUP_REQUEST_5G = bytes.fromhex("1dec89d05766")


def web():
    question = DNSQR(qname="example.com")
    answer = DNSRR(rrname="example.com", rdata=carriers.NETWORK, ttl=60)
    yield carriers.ip(True) / UDP(sport=40000, dport=53) / DNS(id=1, rd=1, qd=question)
    yield carriers.ip(False) / UDP(sport=53, dport=40000) / DNS(id=1, qr=1, qd=question, an=answer)
    yield from tcp(40001, 80, b"GET / HTTP/1.1\r\nHost: example.com\r\n\r\n")
    yield from tcp(40002, 443, client_hello())


def tcp(source, destination, data):
    """A connection's beginning, and its first data."""
    up = {"sport": source, "dport": destination}
    down = {"sport": destination, "dport": source}
    yield carriers.ip(True) / TCP(flags="S", seq=100, **up)
    yield carriers.ip(False) / TCP(flags="SA", seq=200, ack=101, **down)
    yield carriers.ip(True) / TCP(flags="A", seq=101, ack=201, **up)
    yield carriers.ip(True) / TCP(flags="PA", seq=101, ack=201, **up) / data


def client_hello():
    """TLS 1.2 with one cipher suite."""
    hello = b"\3\3" + bytes(32) + b"\0" + b"\0\2\xc0\x2f" + b"\1\0"
    handshake = b"\1" + struct.pack(">I", len(hello))[1:] + hello
    return b"\x16\3\1" + struct.pack(">H", len(handshake)) + handshake


def gsmtap(kind, sub_type, data):
    return carriers.udp(carriers.gsmtap(kind, sub_type, data), carriers.GSMTAP_PORT)


def ngap():
    elements = [(85, s1ap.REJECT, b"\0\1"), (38, s1ap.REJECT, s1ap.open_type(REGISTRATION_REQUEST_5G)),
                (90, s1ap.IGNORE, b"\x18")]
    initial_ue_message = s1ap.initiating_message(15, elements)
    return carriers.sctp(38412, 60, [(0, initial_ue_message)])


def captures():
    """(file name, link type, packets)"""
    def in_ethernet(packets):
        return [carriers.ethernet(packet) for packet in packets]

    yield "web.pcap", ETHERNET, in_ethernet(web())
    yield "gsm.pcap", ETHERNET, in_ethernet([gsmtap(GSMTAP_UM, UM_BCCH, SYSTEM_INFORMATION_3),
                                             gsmtap(GSMTAP_UM, UM_CCCH, IMMEDIATE_ASSIGNMENT)])
    yield "umts.pcap", ETHERNET, in_ethernet(
        [gsmtap(GSMTAP_UMTS_RRC, UMTS_RRC_UL_CCCH, UMTS_CONNECTION_REQUEST)])
    yield "5g.pcap", WIRESHARK_UPPER_PDU, [carriers.named_pdu("nr-rrc.ul.ccch", RRC_SETUP_REQUEST_5G),
                                           carriers.named_pdu("nas-5gs", REGISTRATION_REQUEST_5G)]
    yield "5g_core.pcap", ETHERNET, in_ethernet([ngap()])
