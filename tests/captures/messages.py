"""The messages of the traces in tests/data, and RRC messages that carry a NAS message."""
import dataclasses
import json
import pathlib

DATA = pathlib.Path(__file__).resolve().parents[1] / "data"
TRACES = ("ltem_attach_psm", "nbiot_attach")

# EMM and ESM message types (3GPP TS 24.301, 9.8) that a modem sends.
UPLINK_EMM = {0x41, 0x43, 0x45, 0x48, 0x4A, 0x53, 0x55, 0x5C, 0x5E, 0x5F, 0x63}
UPLINK_ESM = {0xC2, 0xC6, 0xD0, 0xD2, 0xD4, 0xDA}


@dataclasses.dataclass(frozen=True)
class message:
    time: int  # microseconds since 1970
    format: str  # a dissector's name, or "ip"
    data: bytes

    def later(self, seconds):
        return dataclasses.replace(self, time=self.time + round(seconds * 1_000_000))

    def with_data(self, data):
        return dataclasses.replace(self, data=data)

    def of(self, format, data):
        return message(self.time, format, data)

    @property
    def is_rrc(self):
        return self.format.startswith("lte_rrc.")

    @property
    def is_nas(self):
        return self.format == "nas-eps"

    @property
    def is_narrowband(self):
        return self.format.endswith(".nb")

    @property
    def is_uplink(self):
        if self.is_nas:
            is_esm = self.data[0] & 0xF == 2
            return self.data[2] in UPLINK_ESM if is_esm else self.data[1] in UPLINK_EMM
        return ".ul_" in self.format


def trace(name):
    return [message(record["timestamp_us"], record["format"], bytes.fromhex(record["hex"]))
            for record in json.loads((DATA / f"{name}.json").read_text())]


def rrc_messages():
    """Those of tests/data/rrc_messages.json, a millisecond apart."""
    records = json.loads((DATA / "rrc_messages.json").read_text())
    start = 1_764_200_000_000_000
    return [message(start + 1000 * number, record["format"], bytes.fromhex(record["hex"]))
            for number, record in enumerate(records)]


def packed(bits):
    """A message in UPER, padded."""
    bits += "0" * (-len(bits) % 8)
    return int(bits, 2).to_bytes(len(bits) // 8, "big")


def octet_string(content):
    assert len(content) < 128
    return "".join(f"{byte:08b}" for byte in (len(content), *content))


# c1, securityModeCommand, transaction 0, c1, its release 8, no extensions, eea2 and eia2
SECURITY_MODE_COMMAND = packed("0" "0110" "00" "0" "00" "0" "0" "0" "010" "0" "010")
# c1, securityModeComplete, transaction 0, its release 8, no extension
SECURITY_MODE_COMPLETE = packed("0" "0101" "00" "0" "0")


def information_transfer(nas):
    """The RRC message that carries a NAS message in its direction (3GPP TS 36.331, 6.2.2)."""
    if nas.is_uplink:
        # c1, ulInformationTransfer, c1, its release 8, no extension, dedicatedInfoNAS
        channel, head = "lte_rrc.ul_dcch", "0" "1001" "0" "00" "0" "00"
    else:
        # c1, dlInformationTransfer, transaction 0, c1, its release 8, no extension, dedicatedInfoNAS
        channel, head = "lte_rrc.dl_dcch", "0" "0001" "00" "0" "00" "0" "00"
    return message(nas.time, channel, packed(head + octet_string(nas.data)))
