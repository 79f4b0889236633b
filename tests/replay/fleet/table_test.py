#!/usr/bin/python3 -B
"""The table of kivra-replay --each has, cell by cell, what was put into the captures.

    table_test.py KIVRA-REPLAY COUNT

The captures are those of tests/captures/make_fleet.py, so many of them.
"""
import csv
import json
import math
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parents[3]
REPLAY, COUNT = sys.argv[1], sys.argv[2]
TEXTS = {"capture", "status", "begin", "end", "operator", "mcc_mnc", "psm", "apn", "pdn_type",
         "emm_cause", "esm_cause", "profile_written", "page"}
# Their texts are those of tshark, and of the analysis.
HAVE_ERRORS = {"broken off", "unreadable", "no records"}


def same(cell, wanted):
    if wanted == "" or isinstance(wanted, str):
        return cell == wanted
    return cell != "" and math.isclose(float(cell), wanted, rel_tol=1e-12)


class table(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        path = pathlib.Path(cls.folder.name)
        subprocess.run([TREE / "tests/captures/make_fleet.py", path, COUNT], check=True)
        cls.expected = json.loads((path / "expected.json").read_text())
        cls.tables = []
        for jobs in ("2", "1"):
            name = f"{jobs}.csv"
            subprocess.run([REPLAY, "--each", "--recursive", "--quiet", "--jobs", jobs, "--table", name,
                            "--report", "pages", "captures"], cwd=path, stderr=subprocess.DEVNULL, check=False)
            cls.tables.append((path / name).read_bytes())
        text = cls.tables[0].decode()
        cls.rows = list(csv.DictReader(text.splitlines(), strict=True))

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_has_what_was_put_into_the_captures(self):
        self.assertEqual([row["capture"] for row in self.rows],
                         [row["capture"] for row in self.expected])
        for row, wanted in zip(self.rows, self.expected):
            for column, cell in row.items():
                if column in ("error", "page"):
                    continue
                with self.subTest(capture=row["capture"], column=column):
                    self.assertTrue(same(cell, wanted.get(column, "")),
                                    f"{cell!r}, not {wanted.get(column, '')!r}")

    def test_has_a_column_for_all_that_was_put_in(self):
        for wanted in self.expected:
            self.assertLessEqual(set(wanted), set(self.rows[0]))

    def test_has_an_error_where_a_capture_broke(self):
        for row in self.rows:
            self.assertEqual(row["error"] != "", row["status"] in HAVE_ERRORS, row["capture"])

    def test_names_the_page_of_each_capture(self):
        for row in self.rows:
            name = row["capture"].removeprefix("captures/")
            self.assertEqual(row["page"], f"{name}.html")
            page = pathlib.Path(self.folder.name, "pages", row["page"]).read_text()
            self.assertIn(json.dumps(row["capture"], ensure_ascii=True), page)

    def test_is_the_same_whatever_the_jobs(self):
        self.assertEqual(self.tables[0], self.tables[1])

    def test_has_numbers_and_nothing_else_in_columns_of_numbers(self):
        for row in self.rows:
            for column, cell in row.items():
                if column not in TEXTS | {"error"}:
                    self.assertRegex(cell, r"\A(-?\d+(\.\d+)?(e-?\d+)?)?\Z", column)

    def test_has_the_columns_of_the_document(self):
        document = (TREE / "docs/fleet.md").read_text()
        described = [name for line in re.findall(r"^\| (`[a-z].*?) \|", document, re.MULTILINE)
                     for name in re.findall(r"`(\w+)`", line)]
        self.assertEqual(described, list(self.rows[0]))

    def test_ends_lines_as_rfc_4180_does(self):
        self.assertEqual(self.tables[0].count(b"\r\n"), len(self.expected) + 1)
        self.assertEqual(self.tables[0].count(b"\n"), len(self.expected) + 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
