"""S1AP messages that carry a NAS message (3GPP TS 36.413, clause 9; aligned PER)."""
import struct

REJECT = 0x00
IGNORE = 0x40

INITIAL_UE_MESSAGE = 12
DOWNLINK_NAS_TRANSPORT = 11
UPLINK_NAS_TRANSPORT = 13

MME_UE_ID = (0, REJECT, b"\0\1")
ENB_UE_ID = (8, REJECT, b"\0\1")
PLMN = bytes.fromhex("62f220")
TAI = (67, REJECT, b"\0" + PLMN + bytes.fromhex("4e21"))
EUTRAN_CGI = (100, IGNORE, b"\0" + PLMN + bytes.fromhex("00000010"))
MO_SIGNALLING = (134, IGNORE, b"\x30")


def open_type(content):
    if len(content) < 128:
        return bytes([len(content)]) + content
    return struct.pack(">H", 0x8000 | len(content)) + content


def initiating_message(procedure, elements):
    container = b"".join(struct.pack(">HB", number, criticality) + open_type(value)
                         for number, criticality, value in elements)
    content = b"\0" + struct.pack(">H", len(elements)) + container
    return struct.pack("BBB", 0, procedure, IGNORE) + open_type(content)


def nas_transport(nas, uplink, is_first):
    pdu = (26, REJECT, open_type(nas))
    if is_first:
        return initiating_message(INITIAL_UE_MESSAGE, [ENB_UE_ID, pdu, TAI, EUTRAN_CGI, MO_SIGNALLING])
    if uplink:
        return initiating_message(UPLINK_NAS_TRANSPORT, [MME_UE_ID, ENB_UE_ID, pdu, EUTRAN_CGI, TAI])
    return initiating_message(DOWNLINK_NAS_TRANSPORT, [MME_UE_ID, ENB_UE_ID, pdu])
