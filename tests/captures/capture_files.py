"""Captures as bytes: pcap and pcapng in either byte order."""
import struct

# The registry of link types (tcpdump.org/linktypes.html).
ETHERNET = 1
RAW_IP = 101
LINUX_COOKED = 113
USER0 = 147
USER1 = 148
USER2 = 149
USER3 = 150
IPV4 = 228
WIRESHARK_UPPER_PDU = 252
LINUX_COOKED_V2 = 276

SNAPLEN = 0x40000


def pcap(link_type, packets, order="<"):
    """`packets` are pairs of microseconds since 1970 and bytes."""
    head = struct.pack(order + "IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, SNAPLEN, link_type)
    return head + b"".join(
        struct.pack(order + "IIII", *divmod(time, 1_000_000), len(packet), len(packet)) + packet
        for time, packet in packets)


def pcapng(link_types, packets, order="<"):
    """One interface a link type; a packet's third member, if any, is the number of its interface."""
    def block(kind, content):
        content += bytes(-len(content) % 4)
        length = struct.pack(order + "I", len(content) + 12)
        return struct.pack(order + "I", kind) + length + content + length

    def packet_block(time, packet, interface=0):
        head = struct.pack(order + "IIIII", interface, time >> 32, time & 0xFFFFFFFF,
                           len(packet), len(packet))
        return block(6, head + packet)

    section = struct.pack(order + "IHHq", 0x1A2B3C4D, 1, 0, -1)
    interfaces = [struct.pack(order + "HHI", link_type, 0, SNAPLEN) for link_type in link_types]
    return (block(0x0A0D0D0A, section) + b"".join(block(1, interface) for interface in interfaces) +
            b"".join(packet_block(*packet) for packet in packets))


def blocks(image):
    """Of a little-endian pcapng."""
    while image:
        size = int.from_bytes(image[4:8], "little")
        yield image[:size]
        image = image[size:]


def repeated(image, count):
    """A little-endian pcapng of so many packets, those of the image again and again."""
    parts = list(blocks(image))
    head = [part for part in parts if part[0] != 6]
    packets = [part for part in parts if part[0] == 6]
    return b"".join(head + [packets[i % len(packets)] for i in range(count)])
