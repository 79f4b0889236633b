#!/usr/bin/python3 -B
"""kivra-replay --each --watch may be killed at any moment: each capture has its row once in the end.

    watch_test.py KIVRA-REPLAY COUNT

The captures are those of tests/captures/make_fleet.py, so many of them; they come one by one, written
bit by bit, moved in, or in folders of their own, while the program is killed again and again.
"""
import csv
import pathlib
import random
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parents[3]
REPLAY, COUNT = sys.argv[1], sys.argv[2]
LONGEST_WAIT = 120


class watch:
    """A run of the program in a folder."""

    def __init__(self, folder, options=()):
        self.process = subprocess.Popen(
            [REPLAY, "--each", "--watch", "--recursive", "captures", "--table", "watched.csv",
             "--summary", "summaries", "--jobs", "2", *options],
            cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

    def wait_for_line(self):
        if not select.select([self.process.stdout], [], [], LONGEST_WAIT)[0]:
            raise TimeoutError("no row comes")
        # Unbuffered, or select would overlook what has been read ahead.
        line = b""
        while not line.endswith(b"\n"):
            letter = self.process.stdout.raw.read(1)
            if not letter:
                raise EOFError("the program has ended")
            line += letter

    def end(self, by):
        self.process.send_signal(by)
        status = self.process.wait(LONGEST_WAIT)
        self.process.stdout.close()
        return status


def rows_of(table):
    with open(table, newline="", encoding="utf-8") as file:
        return list(csv.DictReader(file, strict=True))


def whole_rows_of(table):
    """How many there are behind the columns, without a torn one; none have line breaks in them."""
    return max(0, table.read_bytes().count(b"\r\n") - 1) if table.exists() else 0


class killed(unittest.TestCase):
    def setUp(self):
        # What a killed run has started may still write.
        self.place = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.folder = pathlib.Path(self.place.name)
        subprocess.run([TREE / "tests/captures/make_fleet.py", self.folder, COUNT], check=True)
        subprocess.run([REPLAY, "--each", "--recursive", "--quiet", "--table", "expected.csv", "--summary",
                        "expected", "captures"], cwd=self.folder, stderr=subprocess.DEVNULL, check=False)
        (self.folder / "captures").rename(self.folder / "source")
        (self.folder / "captures").mkdir()
        self.left = sorted(path.relative_to(self.folder / "source")
                           for path in (self.folder / "source").rglob("*") if path.is_file())
        self.count = len(self.left)

    def tearDown(self):
        self.place.cleanup()

    def put(self, chance):
        name = self.left.pop(chance.randrange(len(self.left)))
        source, target = self.folder / "source" / name, self.folder / "captures" / name
        target.parent.mkdir(parents=True, exist_ok=True)
        way = chance.choice(("written", "moved", "copied"))
        if way == "written":
            content = source.read_bytes()
            with open(target, "wb", buffering=0) as file:
                for start in range(0, len(content), 700):
                    file.write(content[start:start + 700])
        elif way == "moved":
            source.rename(target)
        else:
            unfinished = target.with_name("." + name.name)
            shutil.copy(source, unfinished)
            unfinished.rename(target)

    def test_at_any_moment_it_gives_each_capture_its_row_once(self):
        chance = random.Random(2)
        table = self.folder / "watched.csv"
        while self.left:
            run = watch(self.folder)
            put = chance.randint(1, 6)
            known = whole_rows_of(table)
            for _ in range(min(put, len(self.left))):
                self.put(chance)
            rows = chance.randint(0, self.count - len(self.left) - known)
            for _ in range(rows):
                run.wait_for_line()
            self.assertEqual(run.end(signal.SIGKILL), -signal.SIGKILL)
            # A run that was killed as it began has not cut off the torn line yet.
            if chance.random() < 0.3 and whole_rows_of(table) > 0 and table.read_bytes().endswith(b"\r\n"):
                # As if it had been killed within a write.
                with open(table, "ab") as file:
                    file.write(b'captures/torn.pcap,"unread')
        last = watch(self.folder)
        known = whole_rows_of(table)
        for _ in range(self.count - known):
            last.wait_for_line()
        self.assertEqual(last.end(signal.SIGTERM), -signal.SIGTERM)
        self.assertNotIn(b"torn.pcap", table.read_bytes())

        expected = {row["capture"]: row for row in rows_of(self.folder / "expected.csv")}
        found = rows_of(table)
        self.assertEqual(sorted(row["capture"] for row in found), sorted(expected))
        for row in found:
            self.assertEqual(row, expected[row["capture"]])
        self.expect_summaries()

    def expect_summaries(self):
        def summaries(folder):
            found = {}
            for path in sorted((self.folder / folder).rglob("*.json")):
                found[path.relative_to(self.folder / folder)] = path.read_text()
            return found

        self.assertEqual(summaries("summaries"), summaries("expected"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
