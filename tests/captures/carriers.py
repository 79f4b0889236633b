"""What carries a message in a capture: from the message's bytes to a packet's."""
import struct

from scapy.compat import raw
from scapy.layers.inet import IP, UDP
from scapy.layers.inet6 import IPv6
from scapy.layers.l2 import CookedLinux, CookedLinuxV2, Ether

# LTE RRC sub-types of GSMTAP (libosmocore's gsmtap.h).
GSMTAP_LTE_RRC = {
    "lte_rrc.dl_ccch": 0, "lte_rrc.dl_dcch": 1, "lte_rrc.ul_ccch": 2, "lte_rrc.ul_dcch": 3,
    "lte_rrc.bcch_bch": 4, "lte_rrc.bcch_dl_sch": 5, "lte_rrc.pcch": 6, "lte_rrc.bcch_dl_sch_br": 9,
    "lte_rrc.dl_ccch.nb": 14, "lte_rrc.dl_dcch.nb": 15, "lte_rrc.ul_ccch.nb": 16,
    "lte_rrc.ul_dcch.nb": 17, "lte_rrc.bcch_bch.nb": 18, "lte_rrc.bcch_dl_sch.nb": 20,
    "lte_rrc.pcch.nb": 21,
}
GSMTAP_PORT = 4729


def gsmtap(kind, sub_type, data, uplink=False):
    """GSMTAP version 2."""
    channel = 0x4000 if uplink else 0
    return struct.pack(">BBBBHbbIBBBB", 2, 4, kind, 0, channel, 0, 0, 0, sub_type, 0, 0, 0) + data


def gsmtap_of(message):
    if message.is_nas:
        is_secured = message.data[0] >> 4 != 0 and message.data[0] & 0xF == 7
        return gsmtap(0x12, 1 if is_secured else 0, message.data, message.is_uplink)
    return gsmtap(0x0D, GSMTAP_LTE_RRC[message.format], message.data, message.is_uplink)


def udp(data, port):
    return IP(src="127.0.0.1", dst="127.0.0.1", id=0) / UDP(sport=13337, dport=port) / data


def over_gsmtap(message):
    """The message as an IP packet; a router advertisement is one already."""
    return IPv6(message.data) if message.format == "ip" else udp(gsmtap_of(message), GSMTAP_PORT)


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


def exported_pdu(message):
    """As the traces' captures have it; IP packets name the dissector "ip"."""
    return tagged([(12, padded(message.format.encode()))], message.data)


def padded(text):
    return text + bytes(-len(text) % 4)


def tagged(tags, data):
    """An exported PDU with (type, value) as its tags (Wireshark's wsutil/exported_pdu_tlvs.h)."""
    return b"".join(struct.pack(">HH", kind, len(value)) + value
                    for kind, value in [*tags, (0, b"")]) + data
