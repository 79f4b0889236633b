"""RRC messages in MAC PDUs, framed for Wireshark's dissector "mac-lte-framed".

The framing is that of Wireshark's epan/dissectors/packet-mac-lte.h, the MAC PDU that of 3GPP TS 36.321,
6.1.2, and RLC and PDCP are those of TS 36.322, 6.2 and TS 36.323, 6.2.
"""
import collections
import struct

FDD = 1
UPLINK, DOWNLINK = 0, 1
NO_RNTI, P_RNTI, C_RNTI, SI_RNTI = 0, 1, 3, 4

PAYLOAD, RNTI, UE_ID, FRAME, CE_MODE, NB_MODE = 1, 2, 3, 4, 0x0E, 0x0F
RNTIS = {NO_RNTI: 0, P_RNTI: 0xFFFE, C_RNTI: 0x46, SI_RNTI: 0xFFFF}


def framed(pdu, direction, rnti_type, narrowband=False, reduced=False):
    tags = struct.pack(">BHBH", RNTI, RNTIS[rnti_type], UE_ID, 1)
    tags += struct.pack(">BH", FRAME, 0x0010)
    if reduced:
        tags += bytes([CE_MODE, 1])
    if narrowband:
        tags += bytes([NB_MODE, 1])
    return bytes([FDD, direction, rnti_type]) + tags + bytes([PAYLOAD]) + pdu


def subheader(channel):
    """Of the last SDU, which has the rest of the PDU."""
    return bytes([channel])


def acknowledged(sequence, pdcp):
    """An RLC AM PDU with one whole SDU."""
    return struct.pack(">H", 0x8000 | sequence) + pdcp


def acknowledged_together(sequence, first, second):
    """An RLC AM PDU with two whole SDUs: a length indicator tells where the first one ends."""
    return struct.pack(">HH", 0x8400 | sequence, len(first) << 4) + first + second


def signalling(sequence, rrc, integrity=bytes(4)):
    """A PDCP PDU of a signalling bearer."""
    return bytes([sequence & 0x1F]) + rrc + integrity


def framed_rrc(message, sequence=0):
    narrowband = message.is_narrowband
    channel = message.format.removeprefix("lte_rrc.").removesuffix(".nb")
    direction = UPLINK if message.is_uplink else DOWNLINK
    if channel == "bcch_bch":
        return framed(message.data, direction, NO_RNTI, narrowband)
    if channel.startswith("bcch"):
        return framed(message.data, direction, SI_RNTI, narrowband, reduced=channel.endswith("_br"))
    if channel == "pcch":
        return framed(message.data, direction, P_RNTI, narrowband)
    if channel.endswith("ccch"):
        # The narrowband modem's data volume and power headroom report stands before its message.
        report = b"\0" if narrowband and message.is_uplink else b""
        pdu = subheader(0) + report + message.data
    elif narrowband:
        # Before security there is no PDCP: signalling bearer 1bis.
        pdu = subheader(3) + acknowledged(sequence, message.data)
    else:
        pdu = subheader(1) + acknowledged(sequence, signalling(sequence, message.data))
    return framed(pdu, direction, C_RNTI, narrowband)


def framed_messages(trace):
    """(time, frame) of the trace's RRC messages; those on a DCCH are numbered in each direction."""
    sent = collections.Counter()
    for message in trace:
        if message.is_rrc:
            yield message.time, framed_rrc(message, sent[message.is_uplink])
            sent[message.is_uplink] += "_dcch" in message.format


def framed_together(data):
    """Two messages on the downlink DCCH in one MAC PDU."""
    first, second = (signalling(sequence, rrc) for sequence, rrc in enumerate(data))
    return framed(subheader(1) + acknowledged_together(0, first, second), DOWNLINK, C_RNTI)


def for_udp(frame):
    """As Wireshark's heuristic dissector "mac_lte_udp" knows it."""
    return b"mac-lte" + frame
