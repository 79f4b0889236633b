#!/usr/bin/python3 -B
"""Makes a trace of an hour with ten connections, and says what can be measured in it.

    make_hour.py FOLDER

    FOLDER/hour.pcapng   exported PDUs, the messages of tests/data at the times below
    FOLDER/hour.json     what was measured, as the summary of kivra-replay has it, worked out from
                         these times alone
"""
import collections
import datetime
import json
import pathlib
import statistics
import sys

import messages
from make_captures import exported

START = 1_780_000_000_000_000
LAST_SECOND = 3600
PAGING = (100, 410.25, 1000, 1300.125, 2222, 3500)
BROADCASTS = (0, 900.5, 1800, LAST_SECOND)
# Of a connection that began before the trace.
FIRST_RELEASE = 3.25

# When it begins, its cause, when it is released, and what it says between. "update" is a tracking
# area update request, "ip" an IP packet, "rrc" a message of the dedicated channel. A release of
# "reject" refuses the connection.
CONNECTIONS = (
    (10, "mo-Signalling", 21.5, "release", ((10.1, "rrc"), (10.2, "update"), (11, "rrc"))),
    (410.75, "mt-Access", 425, "release", ((411, "rrc"), (415.5, "ip"))),
    (700, "mo-Data", 700.5, "reject", ()),
    (705.5, "mo-Data", 716, "release", ((706, "ip"),)),
    (1210, "mo-Signalling", 1222.75, "release",
     ((1210.25, "update"), (1215.5, "update"), (1216, "rrc"))),
    (1301, "mt-Access", 1331.0625, "release", ((1302, "ip"), (1310, "ip"), (1321, "rrc"))),
    (2000, "mo-Data", 2010.0001, "release", ((2000.5, "ip"),)),
    (2411, "mo-Signalling", 2419, "release", ((2411.5, "update"), (2412, "rrc"))),
    (2900.5, "emergency", 2960.75, "release", ((2901, "rrc"), (2950, "ip"))),
    (3400, "mo-Data", 3412, "release", ((3401, "rrc"), (3402.5, "ip"))),
)
# Less than 15 s behind another one.
REPEATED_UPDATE = 1215.5

RRC_CAUSES = {"emergency": "a0", "mt-Access": "a4", "mo-Signalling": "a6", "mo-Data": "a8"}


def microseconds(seconds):
    return round(seconds * 1_000_000)


def message_at(seconds, format, data):
    return messages.message(START + microseconds(seconds), format, data)


def contents():
    trace = messages.trace("ltem_attach_psm")
    return {
        "broadcast": ("lte_rrc.bcch_dl_sch_br", trace[0].data),
        "setup": ("lte_rrc.dl_ccch", trace[18].data),
        "rrc": ("lte_rrc.ul_dcch", messages.SECURITY_MODE_COMPLETE),
        "ip": ("ip", next(record.data for record in trace if record.format == "ip")),
        "update": ("nas-eps", bytes.fromhex("0748000bf662f2208003c8c2e65e9a02f0f0")),
        "paging": ("lte_rrc.pcch", bytes.fromhex("400c8c2e65e9a0")),
        "release": ("lte_rrc.dl_dcch", bytes.fromhex("2c02")),
        "reject": ("lte_rrc.dl_ccch", bytes.fromhex("43ec4ac0")),
    }


def timetable():
    """Seconds and what comes then, in order."""
    events = [(FIRST_RELEASE, "release")]
    events += [(seconds, "broadcast") for seconds in BROADCASTS]
    events += [(seconds, "paging") for seconds in PAGING]
    for begin, cause, end, release, said in CONNECTIONS:
        events += [(begin, cause), (end, release), *said]
        if release == "release":
            events.append((begin + 0.02, "setup"))
    return sorted(events)


def trace():
    known = contents()
    known |= {cause: ("lte_rrc.ul_ccch", bytes.fromhex("4c8c2e65e9" + octet))
              for cause, octet in RRC_CAUSES.items()}
    return [message_at(seconds, *known[what]) for seconds, what in timetable()]


def iso_8601(seconds):
    whole, rest = divmod(START + microseconds(seconds), 1_000_000)
    moment = datetime.datetime.fromtimestamp(whole, datetime.timezone.utc)
    return f"{moment:%Y-%m-%dT%H:%M:%S}.{rest:06}Z"


def statistics_of(durations):
    """Of pairs of seconds."""
    durations = [microseconds(end) - microseconds(begin) for begin, end in durations]
    return {"count": len(durations), "minimum_s": min(durations) / 1e6,
            "median_s": int(statistics.median(durations)) / 1e6,
            "maximum_s": max(durations) / 1e6, "sum_s": sum(durations) / 1e6}


def measured():
    places = [seconds for seconds, _ in timetable()]
    connected = [(begin, end) for begin, _, end, _, _ in CONNECTIONS]
    updates = [seconds for *_, said in CONNECTIONS for seconds, what in said
               if what == "update" and seconds != REPEATED_UPDATE]
    return {
        "begin": iso_8601(0),
        "end": iso_8601(LAST_SECOND),
        "duration_s": LAST_SECOND,
        "connected": statistics_of(connected),
        "silence_before_release": statistics_of(
            [(said[-1][0], end) for _, _, end, _, said in CONNECTIONS if said]),
        "idle": statistics_of(
            [(before[1], after[0]) for before, after in zip(connected, connected[1:])]),
        "between_area_updates": statistics_of(list(zip(updates, updates[1:]))),
        "causes": collections.Counter(cause for _, cause, *_ in CONNECTIONS),
        "incomplete": 1,
        "paging": len(PAGING),
        "connections": [
            {"first_record": places.index(begin) + 1, "last_record": places.index(end) + 1,
             "begin": iso_8601(begin), "end": iso_8601(end),
             "duration_s": (microseconds(end) - microseconds(begin)) / 1e6, "cause": cause}
            for begin, cause, end, _, _ in CONNECTIONS],
        "time_connected_percent":
            100 * sum(microseconds(end) - microseconds(begin) for begin, end in connected) /
            microseconds(LAST_SECOND),
    }


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: make_hour.py FOLDER")
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "hour.pcapng").write_bytes(exported(trace()))
    (folder / "hour.json").write_text(json.dumps(measured(), indent=2) + "\n")


if __name__ == "__main__":
    main()
