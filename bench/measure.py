"""Measures the build in the folder BUILD against bare tshark and a plain script, and prints what
came of it: python3 measure.py BUILD NAME.... Everything is timed in turn with what it is compared
with; what counts are the ratios of the pairs."""

import argparse
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile

import captures
from processes import peak_mebibytes, seconds_of

ROOT = pathlib.Path(__file__).resolve().parent.parent
LTE_M = ROOT / "examples/captures/ltem_attach_psm.pcapng"
NB_IOT = ROOT / "examples/captures/nbiot_attach.pcapng"
SAMPLES = [LTE_M, NB_IOT]

# Records of the LTE-M sample: a security mode complete, and the attach accept within its RRC message.
SMALL_RECORD = 9
LARGEST_RECORD = 12

LONG = 2_000
# An hour at ten records a second.
HOUR = 36_000
LONGEST = 100_000
# How many captures, each of so many records.
FLEETS = ((50, 20), (20, LONG))

NANOSECONDS = 1e9
KIBIBYTE = 1 << 10
MEBIBYTE = 1 << 20


class programs:
    """The programs to measure, and a folder for what they read and write."""

    def __init__(self, build, scratch):
        self.build = build
        self.scratch = scratch
        self.tshark = pathlib.Path(shutil.which("tshark"))
        self.replay = self.build / "kivra-replay"

    def capture(self, count):
        file = self.scratch / f"{count}.pcapng"
        captures.write_repeated(file, SAMPLES, count)
        return file

    def bare_tshark(self, file):
        return [self.tshark, "-Y", "nas-eps||lte_rrc", "-r", file, "-T", "json"]

    def one_by_one(self, file):
        plugin = self.build / "kivra-tshark-sink.so"
        return [self.replay, "--json", "--plugin", plugin, file]

    def default_run(self, file):
        return [self.replay, "--json", file]

    def each_run(self, folder, jobs):
        return [self.replay, "--each", "--jobs", jobs, "--table", "fleet.csv", folder]

    def plain(self, output):
        operators = ROOT / "data/operators.json"
        return [sys.executable, ROOT / "bench/plain.py", output, operators, "plain-profile.json"]

    def plugin_costs(self, what, *arguments):
        plugin = self.build / "kivra-tshark-sink.so"
        program = self.build / "bench/plugin_costs"
        return [program, what, plugin, self.tshark.parent, *map(str, arguments)]

    def plugin_times(self, what, *arguments):
        """Seconds, a list for each turn."""
        command = self.plugin_costs(what, *arguments)
        lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout
        return [[int(time) / NANOSECONDS for time in line.split()] for line in lines.splitlines()]


def show(what, value, target, met):
    print(f"{what:<58} {value:<26} {target:<14} {'' if met else 'MISSED'}".rstrip(), flush=True)


def seconds(time):
    return f"{time:.2f} s" if time >= 1 else f"{time * 1e3:.1f} ms"


def spread(ratios):
    """The quartiles."""
    return statistics.quantiles(ratios, n=4) if len(ratios) > 1 else ratios * 3


def show_medians(pairs):
    first, second = (seconds(statistics.median(side)) for side in zip(*pairs))
    print(f"    {first} and {second}, median of {len(pairs)}", flush=True)


def show_ratio(what, pairs, at_most=None):
    low, median, high = spread([first / second for first, second in pairs])
    value = f"{median:.3f} ({low:.3f} to {high:.3f})"
    if at_most is None:
        show(what, value, "", True)
    else:
        show(what, value, f"at most {at_most}", median <= at_most)
    show_medians(pairs)


def show_speedup(what, pairs, at_least):
    low, median, high = spread([second / first for first, second in pairs])
    value = f"{median:.1f} times ({low:.1f} to {high:.1f})"
    show(what, value, f"at least {at_least}", median >= at_least)
    show_medians(pairs)


def show_time(what, times, below):
    low, median, high = (f"{time * 1e6:.0f}" for time in spread(times))
    value = f"{median} us ({low} to {high})"
    show(what, value, f"below {seconds(below)}", statistics.median(times) < below)


def show_memory(what, mebibytes, below=None):
    target = "" if below is None else f"below {below} MiB"
    show(what, f"{mebibytes:.1f} MiB", target, below is None or mebibytes < below)


def measure_data(built):
    """A data call against bare tshark."""
    for what, record, target in [
        ("data call / tshark, small NAS record", SMALL_RECORD, 1.03),
        ("data call / tshark, record with the largest dissection", LARGEST_RECORD, 1.05),
    ]:
        show_ratio(what, built.plugin_times("data", 60, LTE_M, record), target)


def measure_session(built):
    """A data call in a session against bare tshark."""
    for what, record in ("small NAS record", SMALL_RECORD), ("largest dissection", LARGEST_RECORD):
        turns = built.plugin_times("session", 40, LTE_M, record)
        bare = statistics.median(turn[0] for turn in turns)
        calls = sorted(call for turn in turns for call in turn[1:])
        median = statistics.median(calls)
        slow = calls[len(calls) * 99 // 100]
        show(f"data call in a session / tshark, {what}", f"1/{bare / median:.0f}",
             "at most 1/200", bare / median >= 200)
        show("    its 99th percentile", f"1/{bare / slow:.0f}", "at most 1/20", bare / slow >= 20)
        show("    calls a second", f"{1 / statistics.mean(calls):,.0f}", "", True)
        show_medians([(call, bare) for call in calls])


def measure_init(built):
    """The first init against parsing the operator list, a further one, and what contexts hold."""
    turns = built.plugin_times("init", 100)
    pairs = [(first, parsing) for first, _, parsing in turns]
    show_ratio("first init / parsing the operator list", pairs, 1.25)
    show_time("further init", [further for _, further, _ in turns], 0.001)
    heap = subprocess.run(built.plugin_costs("heap"), check=True, capture_output=True).stdout
    first, further = (int(size) for size in heap.split())
    show_memory("heap of the first context", first / MEBIBYTE, 8)
    value = f"{further / KIBIBYTE:.1f} KiB"
    show("heap of a further context", value, "below 64 KiB", further < 64 * KIBIBYTE)


def measure_default(built):
    """The default run against bare tshark on the records that it hands to tshark."""
    for count, repetitions in (LONG, 20), (HOUR, 3):
        capture = built.capture(count)
        tshark_records = built.scratch / "for-tshark.pcapng"
        captures.write_repeated(tshark_records, SAMPLES, count, captures.is_for_tshark)
        pairs = [
            (
                seconds_of(built.default_run(capture), "default.jsonl"),
                seconds_of(built.bare_tshark(tshark_records), "tshark.json"),
            )
            for _ in range(repetitions)
        ]
        show_ratio(f"default run / tshark, {count:,} records", pairs, 1.1)


def measure_gsmtap(built):
    """The default run on a capture that one more tshark reads, against bare tshark on it."""
    subprocess.run([ROOT / "tests/captures/make_captures.py", "made"], check=True)
    capture = built.scratch / "gsmtap.pcap"
    captures.write_repeated_pcap(
        capture, built.scratch / "made/ltem_attach_psm/gsmtap_ethernet.pcap", LONGEST)
    command = built.default_run(capture)
    pairs = [
        (
            seconds_of(command, "default.jsonl"),
            seconds_of([built.tshark, "-r", capture, "-T", "json"], "tshark.json"),
        )
        for _ in range(5)
    ]
    show_ratio(f"default run / tshark, {LONGEST:,} packets of GSMTAP", pairs)
    peak = peak_mebibytes(command, "/dev/null")
    show_memory(f"peak memory of the default run, {LONGEST:,} packets of GSMTAP", peak)


def measure_single(built):
    """The default run against a tshark for each record; takes minutes."""
    capture = built.capture(LONG)
    pair = (
        seconds_of(built.default_run(capture), "default.jsonl"),
        seconds_of(built.one_by_one(capture), "single.jsonl"),
    )
    show_speedup(f"default run faster than record by record, {LONG:,} records", [pair], 100)


def results_in(file):
    with open(file, encoding="utf-8") as lines:
        of_records = [json.loads(line) for line in lines]
    return {
        (line["number"], json.dumps(line["result"], sort_keys=True)) for line in of_records
    }


def expect_same_results():
    """What the plain script makes of a record is what kivra-replay does."""
    profile = json.loads(pathlib.Path("kivra-profile.json").read_text())
    plain_profile = json.loads(pathlib.Path("plain-profile.json").read_text())
    if not (
        results_in("plain.jsonl") <= results_in("default.jsonl")
        and plain_profile.items() <= profile.items()
    ):
        raise RuntimeError("the plain script has other results than kivra-replay")


def measure_plain(built):
    """The default run against tshark and a plain script on its output."""
    capture = built.capture(LONG)

    def tshark_and_plain():
        tshark = seconds_of(built.bare_tshark(capture), "tshark.json")
        return tshark + seconds_of(built.plain("tshark.json"), "plain.jsonl")

    pairs = [
        (seconds_of(built.default_run(capture), "default.jsonl"), tshark_and_plain()) for _ in range(10)
    ]
    expect_same_results()
    show_speedup(f"default run faster than tshark and plain.py, {LONG:,} records", pairs, 1)
    peak = peak_mebibytes(built.plain("tshark.json"), "plain.jsonl")
    show_memory(f"peak memory of plain.py, {LONG:,} records", peak)


def measure_fleet(built):
    """Captures a second, by the number of jobs, and the memory of a job and of the whole."""
    for count, records in FLEETS:
        folder = built.scratch / f"fleet of {records}"
        folder.mkdir()
        capture = built.capture(records)
        for number in range(count):
            (folder / f"{number}.pcapng").hardlink_to(capture)
        times = []
        for jobs in 1, 2:
            times.append(seconds_of(built.each_run(folder, jobs), "fleet.txt"))
            what = f"captures of {records:,} records, {jobs} at a time"
            show(what, f"{count / times[-1]:.2f}/s", "", True)
        ratio = times[0] / times[1]
        # One capture as long as that keeps both its tshark and the program busy.
        is_long = records >= LONG
        show(f"captures of {records:,} records, 2 at a time against 1", f"{ratio:.2f}",
             "" if is_long else "at least 1.7", is_long or ratio >= 1.7)
    job = [built.replay, "--quiet", "--summary", "summary.json", capture]
    show_memory(f"peak memory of a job, {LONG:,} records", peak_mebibytes(job, "/dev/null"), 64)
    peak = peak_mebibytes(built.each_run(folder, 2), "/dev/null")
    show_memory(f"peak memory of the whole, {FLEETS[-1][0]} captures", peak, 64)


def measure_memory(built):
    """The most memory that each way takes, tshark apart."""
    host = built.plugin_costs("data", 5, LTE_M, LARGEST_RECORD)
    show_memory("peak memory of a host, largest dissection", peak_mebibytes(host, "/dev/null"))
    few = built.one_by_one(LTE_M)
    show_memory("peak memory of record by record", peak_mebibytes(few, "/dev/null"))
    for count in LONG, LONGEST:
        command = built.default_run(built.capture(count))
        peak = peak_mebibytes(command, "/dev/null")
        show_memory(f"peak memory of the default run, {count:,} records", peak, 16)


MEASUREMENTS = {
    "data": measure_data,
    "session": measure_session,
    "init": measure_init,
    "default": measure_default,
    "plain": measure_plain,
    "memory": measure_memory,
    "gsmtap": measure_gsmtap,
    "fleet": measure_fleet,
    "single": measure_single,
}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("names", nargs="+", choices=MEASUREMENTS)
    wanted = parser.parse_args()
    build = wanted.build.resolve()
    with tempfile.TemporaryDirectory(dir=build) as scratch:
        os.chdir(scratch)
        built = programs(build, pathlib.Path(scratch))
        for name in wanted.names:
            MEASUREMENTS[name](built)


if __name__ == "__main__":
    main()
