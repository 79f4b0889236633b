#!/usr/bin/python3 -B
"""The workflow of examples/fleet, on this machine.

    fleet_workflow_test.py KIVRA-REPLAY

Slurm is for scripts/test-fleet.
"""
import csv
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parents[2]
WORKFLOW = TREE / "examples/fleet"
REPLAY = pathlib.Path(sys.argv[1]).resolve()
# In the order of the table, which compares folder by folder.
NAMES = ("a/z.pcapng", "a\nb.pcapng", "a.b/é \"q' {x},$HOME.pcapng", "b.PCAPNG")
NO_NAMES = (".pcapng", ".hidden.pcapng", ".hidden/d.pcapng", "notes.txt", "c.pcapng.txt")


def make_captures(folder, count):
    subprocess.run([TREE / "tests/captures/make_fleet.py", folder, str(count)], check=True)
    return captures_in(folder)


def captures_in(folder):
    return sorted((folder / "captures").rglob("*.pcapng"))


def run_workflow(folder, *settings, program=REPLAY):
    return subprocess.run(
        ["snakemake", "--directory", folder, "--snakefile", WORKFLOW / "Snakefile", "--profile",
         WORKFLOW / "profiles/local", "--cores", "2", "--config", f"program={program}", "batch=2",
         *settings],
        env={**os.environ, "XDG_CACHE_HOME": str(folder / "cache")}, stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)


def run_program(*arguments, cwd):
    subprocess.run([REPLAY, "--each", "--quiet", *arguments], cwd=cwd, stderr=subprocess.DEVNULL,
                   check=False)


def differing(folder, other):
    """The names of files that are not the same in both."""
    one, two = files_below(folder), files_below(other)
    return sorted(name for name in {*one, *two} if one.get(name) != two.get(name))


def files_below(folder):
    return {file.relative_to(folder).as_posix(): file.read_bytes() for file in folder.rglob("*")
            if file.is_file()}


class workflow_test(unittest.TestCase):
    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.folder = pathlib.Path(place.name) / "fleet"
        self.folder.mkdir()

    def run_workflow(self, *settings, program=REPLAY):
        return run_workflow(self.folder, *settings, program=program)

    def complete(self, *settings):
        run = self.run_workflow(*settings)
        self.assertEqual(run.returncode, 0, run.stdout)
        return run.stdout

    def table(self):
        with open(self.folder / "fleet.csv", encoding="utf-8", newline="") as table:
            return [row["capture"] for row in csv.DictReader(table)]

    def stamps(self):
        """The rows made by now, each with its file."""
        return {stamp.relative_to(self.folder / "rows").with_suffix("").as_posix(): stamp.stat().st_ino
                for stamp in (self.folder / "rows").rglob("*.stamp")}

    def made_since(self, stamps):
        return sorted(name for name, file in self.stamps().items() if stamps.get(name) != file)


class first_run(workflow_test):
    def test_gives_the_table_and_the_pages_of_one_run(self):
        # Of six, one ends within a packet, one is no capture and one holds no message.
        first, *_ = make_captures(self.folder, 6)
        for name in (*NAMES, *NO_NAMES):
            capture = self.folder / "captures" / name
            capture.parent.mkdir(exist_ok=True)
            shutil.copy(first, capture)
        self.complete()
        run_program("--recursive", "--table", "plain.csv", "--report", "plain", "--summary",
                    "plain summaries", "captures", cwd=self.folder)
        # The overview of rows alone does not know of tshark.
        run_program("--from-tables", "--table", "again.csv", "--report", "plain", "plain.csv",
                    cwd=self.folder)
        self.assertEqual(self.table()[-len(NAMES):], [f"captures/{name}" for name in NAMES])
        self.assertEqual((self.folder / "fleet.csv").read_bytes(),
                         (self.folder / "plain.csv").read_bytes())
        self.assertEqual(differing(self.folder / "report", self.folder / "plain"), [])
        self.assertEqual(differing(self.folder / "summaries", self.folder / "plain summaries"), [])

    def test_leaves_out_a_capture_that_a_table_can_not_name(self):
        capture, = make_captures(self.folder, 1)
        shutil.copy(capture, os.fsencode(capture.parent) + b"/\xff.pcapng")
        self.assertIn(r"\udcff.pcapng' is left out: its name is not UTF-8", self.complete())
        self.assertEqual(self.table(), [f"captures/000/{capture.name}"])

    def test_takes_captures_of_which_none_can_be_read(self):
        capture, = make_captures(self.folder, 1)
        capture.write_text("no capture")
        self.complete()
        self.assertEqual(self.table(), [f"captures/000/{capture.name}"])

    def test_fails_without_tshark(self):
        make_captures(self.folder, 1)
        run = self.run_workflow(f"tshark_directory={self.folder}")
        self.assertIn(f"can't run {self.folder}/tshark", run.stdout)
        self.assertNotEqual(run.returncode, 0)
        self.assertFalse((self.folder / "fleet.csv").exists())

    def test_counts_no_row_of_a_killed_run(self):
        first, second = make_captures(self.folder, 2)
        deadly = self.folder / "deadly"
        deadly.write_text(f"""#!/bin/bash
"{REPLAY}" "$@"
status=$?
if [ "${{!#}}" = "captures/000/{second.name}" ]; then
    truncate --size=-9 "$(sed 's/.*--table=//; s/ --.*//' <<<"$*")"
    kill -KILL $$
fi
exit "$status"
""")
        deadly.chmod(0o755)
        run = self.run_workflow(program=deadly)
        self.assertIn("no row of 000/" + second.name, run.stdout)
        self.assertNotEqual(run.returncode, 0)
        self.assertFalse((self.folder / "fleet.csv").exists())
        before = self.stamps()
        self.assertEqual(list(before), ["000/" + first.name])
        self.complete()
        self.assertEqual(self.made_since(before), ["000/" + second.name])
        self.assertEqual(len(self.table()), 2)


class further_run(workflow_test):
    @classmethod
    def setUpClass(cls):
        place = tempfile.TemporaryDirectory()
        cls.addClassCleanup(place.cleanup)
        cls.complete_folder = pathlib.Path(place.name)
        make_captures(cls.complete_folder, 3)
        run_workflow(cls.complete_folder).check_returncode()

    def setUp(self):
        super().setUp()
        shutil.copytree(self.complete_folder, self.folder, dirs_exist_ok=True)
        self.captures = captures_in(self.folder)
        self.before = self.stamps()

    def test_does_nothing_when_nothing_has_changed(self):
        self.assertIn("Nothing to be done", self.complete())

    def test_runs_only_what_is_new_and_joins_only_its_batch(self):
        batches = set(files_below(self.folder / "batches"))
        # The first of all.
        shutil.copy(self.captures[0], self.folder / "captures/000/a.pcapng")
        self.complete()
        self.assertEqual(self.made_since(self.before), ["000/a.pcapng"])
        self.assertEqual(self.table()[0], "captures/000/a.pcapng")
        # Of three, each with a list and a table.
        self.assertEqual(len(batches), 6)
        self.assertEqual(len(batches & set(files_below(self.folder / "batches"))), 4)

    def test_runs_what_has_another_size_at_the_same_time(self):
        changed = self.captures[1]
        time = changed.stat().st_mtime_ns
        changed.write_bytes(changed.read_bytes() * 2)
        os.utime(changed, ns=(time, time))
        self.complete()
        self.assertEqual(self.made_since(self.before), ["000/" + changed.name])

    def test_runs_what_has_another_time_at_the_same_size(self):
        os.utime(self.captures[1], ns=(0, 0))
        self.complete()
        self.assertEqual(self.made_since(self.before), ["000/" + self.captures[1].name])

    def test_leaves_removed_captures_out_of_the_table(self):
        self.captures[1].unlink()
        self.complete()
        self.assertEqual(self.table(), [f"captures/000/{self.captures[0].name}",
                                        f"captures/000/{self.captures[2].name}"])
        self.assertEqual(self.made_since(self.before), [])

    def test_runs_all_anew_with_other_options(self):
        self.complete("options=['--user-dlt=149=mac-lte-framed']")
        self.assertEqual(self.made_since(self.before), sorted(self.before))

    def test_makes_no_pages_where_none_are_wanted(self):
        self.complete("pages=False")
        self.assertEqual(list(files_below(self.folder / "report")), ["index.html"])

    def test_keeps_nothing_of_earlier_batches(self):
        old = set(files_below(self.folder / "batches"))
        for capture in self.captures:
            os.utime(capture, ns=(0, 0))
        (self.folder / "scratch/of a killed job").mkdir(parents=True)
        self.complete()
        self.assertEqual(len(files_below(self.folder / "batches")), len(old))
        self.assertTrue(old.isdisjoint(files_below(self.folder / "batches")))
        self.assertFalse((self.folder / "scratch").exists())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
