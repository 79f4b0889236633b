#!/usr/bin/python3 -B
"""Makes many small captures of modems that ask for different settings in different networks, and says
what a table of them has to have.

    make_fleet.py FOLDER COUNT

    FOLDER/captures/...     exported PDUs, the messages of tests/data with other values in them
    FOLDER/expected.json    the captures in order, each with the cells that are not empty, worked out
                            from these values alone; numbers where the table has numbers
"""
import dataclasses
import datetime
import json
import pathlib
import random
import statistics
import sys

import messages
from capture_files import ETHERNET, pcap
from make_captures import exported

START = 1_790_000_000_000_000
SECOND = 1_000_000

# Codes, as a message has them, and names. The last has no country in the list, so its accepts fail.
NETWORKS = (
    ("262/02", "62f220", "Vodafone D2 GmbH, Germany"),
    ("232/01", "32f210", "A1 Telekom Austria, Austria"),
    ("262/03", "62f230", "Telefónica Germany GmbH & Co. oHG, Germany"),
    ("001/01", "00f110", "Test network"),
)
UNREAD = NETWORKS[-1]

# An octet and its seconds (3GPP TS 24.008, 10.5.7.3, 10.5.7.4 and 10.5.7.4a); None: deactivated.
T3324 = ((0x01, 2), (0x05, 10), (0x1E, 60), (0x22, 120), (0x44, 1440), (0xE0, None))
T3412_EXTENDED = ((0x06, 3600), (0x21, 3600), (0x47, 252_000), (0x65, 10), (0xC1, 1_152_000), (0xE0, None))
T3412 = ((0x49, 3240), (0x21, 60), (0x05, 10), (0xE0, None))
# The lower half of the octet and its cycle, the upper half and its window (10.5.5.32, WB-S1 mode).
EDRX_CYCLES = {0x2: 20.48, 0x5: 81.92, 0xD: 2621.44}
EDRX_WINDOWS = {0x0: 1.28, 0x3: 5.12, 0xF: 20.48}
PAGING_CYCLES = {"8": 0.32, "a": 0.64, "c": 1.28, "e": 2.56}

REQUEST_LINE = "4c8c2e65e9a6"
SETUP = "60121b3e8613ba4817ed40"
RELEASE = "2c02"
PAGING = "400c8c2e65e9a0"
UPDATE = "0748000bf662f2208003c8c2e65e9a02f0f0"


def system_information_1(area, cell):
    return bytes.fromhex(f"68498805{area:04x}{cell:07x}81754c0418e925aaac16a")


def system_information_2(cycle, repetitions):
    exponent = repetitions.bit_length() - 1
    return bytes.fromhex(
        f"00004ca1bf6{cycle}8800ca12720200001001829aa5ab848800480{exponent * 0x20 + 0xB:03x}6e2007")


def optional(tag, octet):
    return b"" if octet is None else bytes([tag, 1, octet])


def attach_request(active, periodic, edrx):
    return (messages.trace("ltem_attach_psm")[4].data[:-6] +
            optional(0x6A, active) + optional(0x5E, periodic) + optional(0x6E, edrx))


def attach_accept(network, area, t3412, apn, active, periodic, edrx):
    accept = messages.trace("ltem_attach_psm")[12].data[:-6]
    accept = accept.replace(bytes.fromhex("62f220"), bytes.fromhex(network))
    accept = accept.replace(bytes.fromhex("4e21"), area.to_bytes(2, "big"))
    accept = accept.replace(b"\x07example", b"\x07" + apn.encode())
    return (accept[:3] + bytes([t3412]) + accept[4:] +
            optional(0x5E, periodic) + optional(0x6A, active) + optional(0x6E, edrx))


def area_update_accept(network, area):
    """Without T3324, T3412 extended and eDRX."""
    return bytes.fromhex(f"0749005a49500bf6{network}8003c8c2e65e9a540600{network}{area:04x}")


@dataclasses.dataclass
class maker:
    """A capture and its row, both of the same choices."""
    number: int

    def __post_init__(self):
        self.choice = random.Random(self.number)
        self.start = START + self.number * 1000 * SECOND
        self.records = []
        self.row = {}

    def add(self, seconds, format, data):
        data = bytes.fromhex(data) if isinstance(data, str) else data
        self.records.append(messages.message(self.start + round(seconds * SECOND), format, data))

    def perhaps(self, values):
        return self.choice.choice((None, *values))

    def asked(self, name, values, column):
        """An octet or None; its seconds go into the row."""
        octet, seconds = self.perhaps(values) or (None, None)
        if seconds is not None:
            self.row[column] = seconds
        return octet

    def edrx(self, role):
        if not self.choice.randrange(2):
            return None
        cycle = self.choice.choice(list(EDRX_CYCLES))
        window = self.choice.choice(list(EDRX_WINDOWS))
        self.row[f"edrx_{role}_s"] = EDRX_CYCLES[cycle]
        self.row[f"paging_time_window_{role}_s"] = EDRX_WINDOWS[window]
        return window << 4 | cycle

    def settings(self, role):
        periodic = self.asked("T3412 extended", T3412_EXTENDED, f"t3412_extended_{role}_s")
        return periodic, self.edrx(role)

    def cell(self):
        area, cell = self.choice.randrange(1, 0xFFFE), self.choice.randrange(1 << 28)
        if self.choice.randrange(2):
            self.add(0, "lte_rrc.bcch_dl_sch_br", system_information_1(area, cell))
            self.row |= {"cell_identity": cell, "tracking_area": area, "mcc_mnc": NETWORKS[0][0],
                         "operator": NETWORKS[0][2]}
        cycle = self.choice.choice(list(PAGING_CYCLES))
        repetitions = 1 << self.choice.randrange(9)
        self.row |= {"paging_cycle_s": PAGING_CYCLES[cycle], "paging_repetitions": repetitions}
        self.broadcast = system_information_2(cycle, repetitions)
        self.add(0.25, "lte_rrc.bcch_dl_sch_br", self.broadcast)

    def attach(self, when):
        active, seconds = self.perhaps(T3324[:-1]) or (None, None)
        periodic, edrx = self.settings("requested")
        self.add(when, "nas-eps", attach_request(active, periodic, edrx))
        if active is not None:
            self.row["t3324_requested_s"] = seconds
        self.row["psm"] = "not requested" if active is None else "no answer"
        if self.choice.randrange(6) == 0:
            return 0
        return self.accept(when + 0.5, active is not None)

    def accept(self, when, asked):
        codes, network, names = self.choice.choice(NETWORKS)
        area = self.choice.randrange(1, 0xFFFE)
        apn = self.choice.choice(("example", f"lab{self.number:04}"[:7], 'a,"b"=c'))
        # A network grants no PSM that nobody has asked for.
        active, seconds = (self.perhaps(T3324) if asked else None) or (None, None)
        periodic, edrx = self.settings("granted")
        octet, t3412 = self.choice.choice(T3412)
        self.add(when, "nas-eps",
                 attach_accept(network, area, octet, apn, active, periodic, edrx))
        self.row |= {"mcc_mnc": codes, "operator": names, "tracking_area": area, "pdn_type": "IPv4",
                     "apn": f"iot.{apn}.mnc002.mcc262.gprs", "t3412_granted_s": t3412}
        if asked:
            self.row["psm"] = ("not granted" if active is None else
                               "deactivated" if seconds is None else "granted")
        if seconds is not None:
            self.row["t3324_granted_s"] = seconds
        failed = network == UNREAD[1]
        if self.choice.randrange(5) == 0:
            self.update(when + 0.25, network, area, active is not None)
            failed *= 2
        return int(failed)

    def update(self, when, network, area, was_told):
        self.add(when, "nas-eps", area_update_accept(network, area))
        self.row["psm"] = "ended" if was_told else self.row["psm"]
        self.row["t3412_granted_s"] = 3240
        for column in ("t3324_granted_s", "t3412_extended_granted_s", "edrx_granted_s",
                       "paging_time_window_granted_s"):
            self.row.pop(column, None)

    def connections(self):
        count = self.choice.randrange(4)
        spans, silences, failed = [], [], 0
        updates = self.choice.randrange(3) if count else 0
        for number in range(count):
            begin = 10 + 100 * number
            self.add(begin, "lte_rrc.ul_ccch", REQUEST_LINE)
            self.add(begin + 0.25, "lte_rrc.dl_ccch", SETUP)
            if number == 0:
                failed = self.attach(begin + 0.5)
                for update in range(updates):
                    self.add(begin + 1.5 + update / 8, "nas-eps", UPDATE)
            self.add(begin + 2, "lte_rrc.ul_dcch", messages.SECURITY_MODE_COMPLETE)
            silences.append(self.choice.randrange(1, 160) / 4)
            spans.append((begin, begin + 2 + silences[-1]))
            self.add(spans[-1][1], "lte_rrc.dl_dcch", RELEASE)
        self.measured(spans, silences)
        if updates:
            self.row["psm"] = self.row.get("psm", "not requested")
        self.row |= {"area_updates": updates, "connections": count, "failed_records": failed}

    def measured(self, spans, silences):
        if not spans:
            return
        lengths = [end - begin for begin, end in spans]
        idle = [after[0] - before[1] for before, after in zip(spans, spans[1:])]
        self.row |= {"drx_long_cycle_ms": 320, "drx_on_duration_subframes": 10,
                     "drx_inactivity_subframes": 100,
                     "connected_median_s": statistics.median(lengths),
                     "silence_before_release_median_s": statistics.median(silences)}
        if idle:
            self.row["idle_median_s"] = statistics.median(idle)
        self.connected = sum(lengths)

    def make(self):
        """The capture's bytes."""
        self.connected = None
        self.cell()
        self.connections()
        pages = self.choice.randrange(4)
        for page in range(pages):
            self.add(500 + page, "lte_rrc.pcch", PAGING)
        self.add(600, "lte_rrc.bcch_dl_sch_br", self.broadcast)
        kind = ("whole", "cut", "whole", "junk", "whole", "other", "whole")[self.number % 7]
        image = exported(self.records)
        if kind == "cut":
            # Within a further packet.
            image = exported(self.records + self.records[-1:])[:-20]
        elif kind != "whole":
            return self.make_none(kind)
        begin, end = self.records[0].time, self.records[-1].time
        self.row |= {"begin": iso_8601(begin), "end": iso_8601(end),
                     "duration_s": (end - begin) / SECOND, "records": len(self.records),
                     "malformed": 0, "paging": pages, "profile_written": "yes",
                     "status": "broken off" if kind == "cut" else
                               "records failed" if self.row["failed_records"] else "ok"}
        if self.connected is not None:
            self.row["time_connected_percent"] = 100 * self.connected / self.row["duration_s"]
        return image

    def make_none(self, kind):
        """Without a record."""
        self.row = {"records": 0, "failed_records": 0, "malformed": 0, "profile_written": "no",
                    "status": "unreadable" if kind == "junk" else "no records"}
        if kind == "junk":
            return b"no capture at all\n"
        arp = bytes.fromhex("ffffffffffff0200000000010806" "0001080006040001" "020000000001c0000201"
                            "000000000000c0000202")
        return pcap(ETHERNET, [(self.start, arp)])


def iso_8601(time):
    whole, rest = divmod(time, SECOND)
    moment = datetime.datetime.fromtimestamp(whole, datetime.timezone.utc)
    return f"{moment:%Y-%m-%dT%H:%M:%S}.{rest:06}Z"


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: make_fleet.py FOLDER COUNT")
    folder = pathlib.Path(sys.argv[1])
    expected = []
    for number in range(int(sys.argv[2])):
        # Names that have to be quoted, and folders that stand behind one another.
        name = f"captures/{number // 100:03}/modem {number:06},a.pcapng"
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        one = maker(number)
        (folder / name).write_bytes(one.make())
        cells = {column: cell for column, cell in one.row.items() if cell is not None}
        expected.append({"capture": name, **cells})
    (folder / "expected.json").write_text(json.dumps(expected, indent=1) + "\n")


if __name__ == "__main__":
    main()
