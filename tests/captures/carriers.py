"""What carries a message in a capture: from the message's bytes to a packet's."""
import struct

from scapy.compat import raw
from scapy.layers.inet import IP, UDP
from scapy.layers.inet6 import IPv6
from scapy.layers.l2 import CookedLinux, CookedLinuxV2, Ether
from scapy.layers.sctp import SCTP, SCTPChunkData

import s1ap
from capture_files import ETHERNET, LINUX_COOKED, LINUX_COOKED_V2

# LTE RRC sub-types of GSMTAP (libosmocore's gsmtap.h).
GSMTAP_LTE_RRC = {
    "lte_rrc.dl_ccch": 0, "lte_rrc.dl_dcch": 1, "lte_rrc.ul_ccch": 2, "lte_rrc.ul_dcch": 3,
    "lte_rrc.bcch_bch": 4, "lte_rrc.bcch_dl_sch": 5, "lte_rrc.pcch": 6, "lte_rrc.bcch_dl_sch_br": 9,
    "lte_rrc.dl_ccch.nb": 14, "lte_rrc.dl_dcch.nb": 15, "lte_rrc.ul_ccch.nb": 16,
    "lte_rrc.ul_dcch.nb": 17, "lte_rrc.bcch_bch.nb": 18, "lte_rrc.bcch_dl_sch.nb": 20,
    "lte_rrc.pcch.nb": 21,
}
GSMTAP_PORT = 4729
GTP_U_PORT = 2152
S1AP_PORT = 36412
S1AP_PROTOCOL = 18  # SCTP payload protocol identifiers (IANA)

MODEM, NETWORK = "192.0.2.1", "192.0.2.2"


def gsmtap(kind, sub_type, data, uplink=False):
    """GSMTAP version 2."""
    channel = 0x4000 if uplink else 0
    return struct.pack(">BBBBHbbIBBBB", 2, 4, kind, 0, channel, 0, 0, 0, sub_type, 0, 0, 0) + data


def gsmtap_of(message):
    if message.is_nas:
        is_secured = message.data[0] >> 4 != 0 and message.data[0] & 0xF == 7
        return gsmtap(0x12, 1 if is_secured else 0, message.data, message.is_uplink)
    return gsmtap(0x0D, GSMTAP_LTE_RRC[message.format], message.data, message.is_uplink)


def ip(uplink=True):
    source, destination = (MODEM, NETWORK) if uplink else (NETWORK, MODEM)
    return IP(src=source, dst=destination, id=0)


def udp(data, port, uplink=True):
    return ip(uplink) / UDP(sport=port, dport=port) / data


def sctp(port, protocol, chunks, uplink=True):
    """`chunks` are (sequence number, message)."""
    packet = ip(uplink) / SCTP(sport=port, dport=port, tag=1)
    for number, data in chunks:
        packet /= SCTPChunkData(beginning=1, ending=1, tsn=number, stream_id=1, stream_seq=number,
                                proto_id=protocol, data=data)
    return packet


def over_gsmtap(message):
    """The message as an IP packet; a router advertisement is one already."""
    return IPv6(message.data) if message.format == "ip" else udp(gsmtap_of(message), GSMTAP_PORT)


def gtp_u(packet):
    """GTP-U version 1, a packet of tunnel 1 (3GPP TS 29.281, 5.1)."""
    return udp(struct.pack(">BBHI", 0x30, 0xFF, len(packet), 1) + packet, GTP_U_PORT, uplink=False)


def over_s1(trace):
    """The trace's NAS messages and IP packets as IP packets between eNodeB and core network."""
    is_first = True
    for number, message in enumerate(trace):
        if message.is_nas:
            data = s1ap.nas_transport(message.data, message.is_uplink, is_first)
            yield message.time, sctp(S1AP_PORT, S1AP_PROTOCOL, [(number, data)], message.is_uplink)
            is_first = False
        elif message.format == "ip":
            yield message.time, gtp_u(message.data)


def raw_ip(packet):
    return raw(packet)


def ethernet(packet):
    return raw(Ether(src="02:00:00:00:00:01", dst="02:00:00:00:00:02") / packet)


def ether_type(packet):
    return 0x86DD if isinstance(packet, IPv6) else 0x0800


def cooked(packet):
    return raw(CookedLinux(lladdrtype=1, lladdrlen=6, src=b"\2\0\0\0\0\1",
                           proto=ether_type(packet)) / packet)


def cooked_v2(packet):
    return raw(CookedLinuxV2(ifindex=2, lladdrtype=1, lladdrlen=6, src=b"\2\0\0\0\0\1",
                             proto=ether_type(packet)) / packet)


LINKS = {"ethernet": (ETHERNET, ethernet), "cooked": (LINUX_COOKED, cooked),
         "cooked_v2": (LINUX_COOKED_V2, cooked_v2)}


def exported_pdu(message):
    """As the traces' captures have it; IP packets name the dissector "ip"."""
    return named_pdu(message.format, message.data)


def named_pdu(dissector, data):
    return tagged([(12, padded(dissector))], data)


def exported_udp(data, port):
    """As `tshark -U "OSI layer 4"` exports what UDP carries: by port, without a dissector's name."""
    number = struct.pack(">I", port)
    tags = [(14, padded("udp.port")), (20, bytes([192, 0, 2, 1])), (21, bytes([192, 0, 2, 2])),
            (24, struct.pack(">I", 3)), (25, number), (26, number), (32, number)]
    return tagged(tags, data)


def padded(text):
    return text.encode() + bytes(-len(text) % 4)


def tagged(tags, data):
    """An exported PDU with (type, value) as its tags (Wireshark's wsutil/exported_pdu_tlvs.h)."""
    return b"".join(struct.pack(">HH", kind, len(value)) + value
                    for kind, value in [*tags, (0, b"")]) + data
