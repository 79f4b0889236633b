"""Captures of any length, made of the samples' packets (little-endian pcapng, or pcap)."""

import itertools
import struct

PACKET_BLOCK = 6
# An enhanced packet block's packet, and in it the exported PDU's first tag: the dissector's name.
TAG = 28
NAME = TAG + 4


def blocks(image):
    at = 0
    while at < len(image):
        kind, length = struct.unpack_from("<II", image, at)
        yield kind, image[at : at + length]
        at += length



def is_for_tshark(packet):
    (length,) = struct.unpack_from(">H", packet, TAG + 2)
    name = packet[NAME : NAME + length].rstrip(b"\0")
    return name == b"nas-eps" or b"lte_rrc" in name


def write_repeated(path, samples, count, wanted=lambda packet: True):
    """The samples over and over, cut after `count` packets; of those, the wanted ones."""
    of_samples = [list(blocks(sample.read_bytes())) for sample in samples]
    head = itertools.takewhile(lambda block: block[0] != PACKET_BLOCK, of_samples[0])
    packets = [block for sample in of_samples for kind, block in sample if kind == PACKET_BLOCK]
    with open(path, "wb") as capture:
        capture.writelines(block for _, block in head)
        repeated = itertools.islice(itertools.cycle(packets), count)
        capture.writelines(packet for packet in repeated if wanted(packet))


PCAP_FILE_HEAD = 24
PCAP_PACKET_HEAD = struct.Struct("<IIII")


def pcap_packets(image):
    """(seconds, microseconds, bytes)"""
    at = PCAP_FILE_HEAD
    while at < len(image):
        seconds, microseconds, length, _ = PCAP_PACKET_HEAD.unpack_from(image, at)
        at += PCAP_PACKET_HEAD.size
        yield seconds, microseconds, image[at : at + length]
        at += length


def write_repeated_pcap(path, sample, count):
    """The sample over and over, its times going on, cut after `count` packets."""
    image = sample.read_bytes()
    packets = list(pcap_packets(image))
    period = packets[-1][0] - packets[0][0] + 2
    with open(path, "wb") as capture:
        capture.write(image[:PCAP_FILE_HEAD])
        for number in range(count):
            turn, place = divmod(number, len(packets))
            seconds, microseconds, data = packets[place]
            head = (seconds + turn * period, microseconds, len(data), len(data))
            capture.write(PCAP_PACKET_HEAD.pack(*head) + data)
