"""The overview of kivra-replay --each --report, as a browser shows it.

The programs are named by the environment, see CMakeLists.txt beside.
"""
import base64
import collections
import csv
import json
import math
import os
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
# pylint: disable=wrong-import-position
from browser import Browser

REPLAY = os.environ["KIVRA_REPLAY"]
COUNT = 42
WITHOUT_PSM = ("not granted", "deactivated", "no answer", "ended")
HISTOGRAMS = ("t3324_granted_s", "t3412_extended_granted_s", "edrx_granted_s",
              "silence_before_release_median_s")
HOSTILE = "</script><script>document.hostile=1</script><img src=x onerror=document.hostile=1>"


class OverviewTest(unittest.TestCase):
    """One browser and one fleet for all tests."""

    @classmethod
    def make(cls):
        cls.folder = pathlib.Path(unittest.enterModuleContext(tempfile.TemporaryDirectory()))
        cls.browser = Browser(cls.folder / "user")
        unittest.addModuleCleanup(cls.browser.quit)
        subprocess.run([TREE / "tests/captures/make_fleet.py", cls.folder, str(COUNT)], check=True)
        subprocess.run([REPLAY, "--each", "--recursive", "-q", "--report", "pages", "--table",
                        "fleet.csv", "captures"], cwd=cls.folder, stderr=subprocess.DEVNULL,
                       check=False, timeout=120)
        cls.expected = json.loads((cls.folder / "expected.json").read_text())
        cls.rows = list(csv.DictReader((cls.folder / "fleet.csv").read_text().splitlines()))
        cls.page = (cls.folder / "pages/index.html").read_text()

    def setUp(self):
        self.browser.resize(1280, 3000)
        self.browser.open(self.folder / "pages/index.html")

    def tearDown(self):
        self.assertEqual(self.browser.complaints(), [])

    def open_rows(self, rows, planned=None):
        """Opens the overview with other rows; cells by their columns.
        @param planned how many there were to be; as many as they are, if it is not given"""
        cells = [[row.get(column, "") for column in self.rows[0]] for row in rows]
        text = json.dumps(cells).replace("<", "\\u003c")
        page = self.folder / "pages/other.html"
        blocks = {"rows": text, "planned": str(len(rows) if planned is None else planned)}
        page.write_text(re.sub(r'(class="(rows|planned)">).*?(</script>)',
                               lambda part: part[1] + blocks[part[2]] + part[3], self.page, flags=re.DOTALL))
        self.browser.open(page)

    # What is in the page

    def heads(self):
        """The names of the columns in the table for programs."""
        return self.browser.run(
            "return [...document.querySelectorAll('.list thead th')].map((head) => head.title)")

    def listed(self, column):
        place = self.heads().index(column)
        return [row[place] for row in self.browser.listed()]

    def names(self):
        return self.listed("capture")

    def show_all_columns(self):
        self.browser.run("""
            for (const box of document.querySelectorAll(".groups input:not(:checked)")) {
                box.click();
            }""")

    def sort_by(self, column):
        self.browser.run("document.querySelector(`.list th[title='${arguments[0]}'] button`).click()",
                         column)

    def search(self, text):
        self.browser.run("""
            const field = document.querySelector("#captures input[type=search]");
            field.value = arguments[0];
            field.dispatchEvent(new Event("input"));""", text)

    def choose(self, label, text):
        """@param text with which an option begins"""
        self.browser.run("""
            const select = document.querySelector(`select[aria-label=${arguments[0]}]`);
            select.value = [...select.options].find((option) => option.text.startsWith(arguments[1])).value;
            select.dispatchEvent(new Event("change"));""", label, text)

    def bars(self, column):
        """[name, count] of each bar."""
        return self.browser.run("""
            return [...document.querySelectorAll(`#histogram-${arguments[0]} .bar`)].map((bar) => (
                [bar.querySelector(".bar-name").textContent, Number(bar.querySelector(".bar-count").textContent.replace(",", ""))]));
            """, column)

    def bar(self, column, place):
        return self.browser.driver.find_elements("css selector", f"#histogram-{column} .bar")[place]

    def count(self):
        return self.browser.text("#captures .status")

    def put_in(self, **cells):
        """The captures that were made with these cells."""
        return [row["capture"] for row in self.expected
                if all(row.get(column, "") == cell for column, cell in cells.items())]


def setUpModule():
    OverviewTest.make()


class headings(OverviewTest):
    def test_say_how_many_captures_there_are_since_when_and_who_read_them(self):
        heading = self.browser.text("#heading")
        begin = min(row["begin"] for row in self.expected if "begin" in row)
        end = max(row["end"] for row in self.expected if "end" in row)
        self.assertIn(f"{COUNT} captures", heading)
        self.assertIn(f"{begin} to {end}, ", heading)
        self.assertRegex(heading, r"kivra-replay \d+\.\d+\.\d+, TShark \(Wireshark\) ")

    def test_count_the_captures_by_their_status(self):
        statuses = collections.Counter(row["status"] for row in self.expected)
        shown = self.browser.rows_of_facts()["captures"]
        self.assertCountEqual(shown.split(", "), [f"{count} {status}" for status, count in statuses.items()])


    def test_say_how_many_captures_an_interrupted_run_has_done(self):
        self.assertNotIn("interrupted", self.browser.rows_of_facts())
        self.open_rows([{"capture": f"{number}.pcap", "status": "ok"} for number in range(10)], 60)
        self.assertEqual(self.browser.text("h1"), "10 of 60 captures")
        self.assertEqual(self.browser.rows_of_facts()["interrupted"], "10 of 60 captures done")


class answers(OverviewTest):
    def groups(self, fits):
        """{(outcome, network): [count, first seen, last seen]}"""
        found = {}
        for row in self.expected:
            if row.get("psm", "") != "" and fits(row["psm"]):
                found.setdefault((row["psm"], row.get("mcc_mnc", "unknown")), []).append(row)
        short = lambda time: re.sub(r"\.\d+Z", "Z", time)
        return {key: [str(len(rows)), short(min(row["begin"] for row in rows)),
                      short(max(row["end"] for row in rows))] for key, rows in found.items()}

    def shown(self, caption):
        return {(row[0], row[1]): [row[3], row[4], row[5]] for row in self.browser.rows("psm", caption)}

    def test_name_who_has_no_psm_in_which_network_since_when(self):
        self.assertEqual(self.shown("Asked for"), self.groups(lambda psm: psm in WITHOUT_PSM))
        self.assertEqual(self.shown("Granted"), self.groups(lambda psm: psm not in WITHOUT_PSM))

    def test_say_it_in_a_sentence(self):
        outcomes = collections.Counter(row.get("psm", "") for row in self.expected)
        asked = sum(count for psm, count in outcomes.items() if psm not in ("", "not requested"))
        without = sum(outcomes[psm] for psm in WITHOUT_PSM)
        text = self.browser.text("#psm p")
        self.assertIn(f"asked for in {asked} of {COUNT} captures. {without} of these have none", text)
        self.assertIn(f"{outcomes['no answer']} without an answer in the capture", text)
        self.assertIn(f"{outcomes['']} captures say nothing", text)

    def test_put_what_was_refused_first(self):
        shown = [row[0] for row in self.browser.rows("psm", "Asked for")]
        self.assertEqual(shown, sorted(shown, key=WITHOUT_PSM.index))

    def test_name_three_captures_and_count_the_others(self):
        self.open_rows([{"capture": f"{number}.pcap", "psm": "not granted", "mcc_mnc": "262/02"}
                        for number in range(5)])
        self.assertEqual(self.browser.rows("psm", "Asked for")[0][6],
                         "0.pcap1.pcap2.pcap\u2026 and 2 more")

    def test_lead_to_their_captures(self):
        for row, button in zip(self.browser.rows("psm", "Asked for"),
                               self.browser.driver.find_elements("css selector", "#psm button.link")):
            button.click()
            network = "" if row[1] == "unknown" else row[1]
            self.assertEqual(self.names(), self.put_in(psm=row[0], mcc_mnc=network))
            self.assertEqual(len(self.names()), int(row[3]))

    def test_say_that_none_was_asked_for(self):
        self.open_rows([{"capture": "a.pcap"}])
        self.assertEqual(self.browser.text("#psm p"),
                         "PSM was asked for in 0 of 1 capture. 1 capture says nothing of it.")


class lists(OverviewTest):
    def test_have_every_cell_of_the_table(self):
        self.show_all_columns()
        self.assertCountEqual(self.heads(), list(self.rows[0]))
        for shown, row in zip(self.browser.listed(), self.rows, strict=True):
            cells = dict(zip(self.heads(), shown))
            if row["error"]:
                self.assertEqual(cells.pop("status"), f"{row['status']}: {row['error']}")
            for column, cell in cells.items():
                self.assertEqual(cell, row[column], column)

    def test_hide_columns_by_groups(self):
        self.assertNotIn("paging_cycle_s", self.heads())
        self.assertIn("t3324_granted_s", self.heads())
        self.browser.run("document.querySelector('.groups label:nth-of-type(2) input').click()")
        self.assertNotIn("t3324_granted_s", self.heads())
        self.assertEqual(len(self.browser.listed()[0]), len(self.heads()))

    def test_sort_numbers_and_leave_what_is_empty_behind(self):
        wanted = [row.get("t3324_requested_s", "") for row in self.expected]
        known = sorted(number for number in wanted if number != "")
        for order in (known, known[::-1]):
            self.sort_by("t3324_requested_s")
            shown = self.listed("t3324_requested_s")
            self.assertEqual(shown, [f"{number:g}" for number in order] + [""] * wanted.count(""))

    def test_sort_texts(self):
        self.sort_by("operator")
        shown = self.listed("operator")
        known = sorted(row["operator"] for row in self.rows if row["operator"])
        self.assertEqual(shown, known + [""] * (COUNT - len(known)))
        self.assertEqual(self.browser.run("""
            return [...document.querySelectorAll(".list th")].filter((head) => (
                head.getAttribute("aria-sort") !== "none")).map((head) => head.title);"""), ["operator"])

    def test_find_what_stands_in_any_cell(self):
        self.assertNotIn("apn", self.heads())
        for text, column, part in (("IOT.LAB", "apn", "iot.lab"), (" vodafone", "operator", "Vodafone")):
            self.search(text)
            self.assertEqual(self.names(), [row["capture"] for row in self.rows if part in row[column]])
            self.assertGreater(len(self.names()), 1)

    def test_find_nothing_where_nothing_is(self):
        self.search("nothing has this")
        self.assertEqual(self.names(), [])
        self.assertEqual(self.count(), f"0 of {COUNT} captures")

    def test_show_one_status_network_or_outcome(self):
        for label, column in (("Status", "status"), ("Network", "mcc_mnc"), ("PSM", "psm")):
            for text, count in collections.Counter(row[column] for row in self.rows).items():
                self.choose(label, f"{text or '(none)'} ({count})")
                self.assertEqual(self.names(), self.put_in(**{column: text}))
            self.browser.find("#captures .tools > button").click()
            self.assertEqual(self.count(), f"{COUNT} captures")

    def test_hold_several_filters_at_once(self):
        self.choose("Network", "262/02")
        self.choose("PSM", "no answer")
        self.assertEqual(self.names(), self.put_in(mcc_mnc="262/02", psm="no answer"))
        self.assertGreater(len(self.names()), 1)

    def test_show_the_error_of_a_capture_that_broke(self):
        self.choose("Status", "unreadable")
        self.assertRegex(self.listed("status")[0], "unreadable: can't read captures/.*pcapng")

    def test_lead_to_the_pages_of_captures(self):
        links = self.browser.run("""
            return [...document.querySelectorAll(".list tbody a")].map((link) => [link.textContent, link.href]);""")
        self.assertEqual([name for name, _ in links], [row["capture"] for row in self.rows if row["page"]])
        self.assertGreater(len(links), 10)
        name, address = links[0]
        self.browser.driver.get(address)
        self.browser.wait(lambda: self.browser.run("return document.documentElement.dataset.ready === 'yes'"))
        self.assertIn(name, self.browser.text("#heading"))

    def test_lead_nowhere_without_a_page(self):
        self.open_rows([{"capture": "a.pcap"}])
        self.assertEqual(self.browser.run("return document.querySelectorAll('main a').length"), 0)
        self.browser.run("document.querySelector('.list tr[data-index]').click()")
        self.assertIn("It has no page", self.browser.text(".details"))

    def test_follow_keys_and_show_all_of_a_capture(self):
        for key, place in (("ArrowDown", 0), ("ArrowDown", 1), ("End", COUNT - 1), ("Home", 0)):
            self.browser.run("""
                const list = document.querySelector(".list");
                list.dispatchEvent(new KeyboardEvent("keydown", {key: arguments[0], bubbles: true}));
                """, key)
            row = self.rows[place]
            self.assertEqual(self.browser.text(".details h3"), row["capture"])
        self.assertEqual(list(self.browser.rows_of_facts(".details").values()).count(row["begin"]), 1)
        self.assertEqual(len(self.browser.rows_of_facts(".details")),
                         sum(cell != "" for cell in row.values()))


class histograms(OverviewTest):
    def test_have_a_bar_for_each_of_few_values(self):
        for column in HISTOGRAMS[:3]:
            values = collections.Counter(row[column] for row in self.expected if column in row)
            shown = self.bars(column)
            self.assertEqual([(float(name.split()[0]), count) for name, count in shown],
                             sorted(values.items()), column)

    def test_have_bins_where_values_are_many(self):
        values = [0.3 * 1.1**number for number in range(100)]
        self.open_rows([{"capture": str(number), HISTOGRAMS[3]: repr(value)}
                        for number, value in enumerate([*values, 0, 5])])
        edges = [digit * 10**exponent for exponent in range(-1, 5) for digit in (1, 2, 5)]
        edges = edges[1:edges.index(5000) + 1]
        shown = self.bars(HISTOGRAMS[3])
        self.assertEqual(shown[0], ["0 s or less", 1])
        self.assertEqual([name for name, _ in shown[1:]],
                         [f"{low:g} to {high:g} s" for low, high in zip(edges, edges[1:])])
        self.assertEqual([count for _, count in shown[1:]],
                         [sum(low <= value < high for value in [*values, 5])
                          for low, high in zip(edges, edges[1:])])

    def test_are_told_in_words(self):
        for column in HISTOGRAMS:
            values = sorted(row[column] for row in self.expected if column in row)
            words = self.browser.text(f"#histogram-{column} p")
            least, middle, greatest = (float(number) for number in re.findall(
                r"(?:least|median|greatest) ([\d.]+) s", words))
            self.assertEqual((least, greatest), (values[0], values[-1]))
            self.assertTrue(math.isclose(middle, statistics.median(values), abs_tol=1e-6))
            self.assertIn(f"{len(values)} captures: ", words)
            self.assertIn(f" {COUNT - len(values)} captures do not have it.", words)

    def test_list_the_captures_of_a_bar_and_end_that(self):
        for column in HISTOGRAMS[:3]:
            values = sorted({row[column] for row in self.expected if column in row})
            for place, value in enumerate(values):
                self.bar(column, place).click()
                self.assertEqual(self.names(), self.put_in(**{column: value}))
                self.assertEqual(self.bar(column, place).get_attribute("aria-pressed"), "true")
            self.bar(column, len(values) - 1).click()
            self.assertEqual(self.count(), f"{COUNT} captures")

    def test_list_the_captures_of_a_bin(self):
        values = [1.0 + number / 10 for number in range(40)]
        self.open_rows([{"capture": f"{number:02}", HISTOGRAMS[3]: repr(value)}
                        for number, value in enumerate(values)])
        self.assertEqual(self.bars(HISTOGRAMS[3])[1][0], "2 to 5 s")
        self.bar(HISTOGRAMS[3], 1).click()
        self.assertEqual(self.names(), [f"{number:02}" for number, value in enumerate(values)
                                        if 2 <= value < 5])

    def test_end_their_filter_beside_the_search(self):
        self.bar(HISTOGRAMS[1], 0).click()
        chip = self.browser.find(".chips button")
        self.assertIn("T3412 ext. granted (s): ", chip.text)
        chip.click()
        self.assertEqual(self.count(), f"{COUNT} captures")
        self.assertEqual(self.bar(HISTOGRAMS[1], 0).get_attribute("aria-pressed"), "false")

    def test_end_their_filter_where_all_is_shown(self):
        self.bar(HISTOGRAMS[1], 0).click()
        self.browser.find("#captures .tools > button").click()
        self.assertEqual(self.count(), f"{COUNT} captures")
        self.assertEqual(self.bar(HISTOGRAMS[1], 0).get_attribute("aria-pressed"), "false")

    def test_are_worked_by_the_keyboard(self):
        bar = self.bar(HISTOGRAMS[1], 0)
        bar.send_keys("\n")
        self.assertEqual(bar.get_attribute("aria-pressed"), "true")
        self.assertEqual(self.names(), self.put_in(
            t3412_extended_granted_s=min(row[HISTOGRAMS[1]] for row in self.expected
                                         if HISTOGRAMS[1] in row)))

    def test_say_that_nothing_has_a_value(self):
        self.open_rows([{"capture": "a"}])
        self.assertEqual(self.browser.text(f"#histogram-{HISTOGRAMS[0]} p"), "No capture has it.")
        self.assertEqual(self.bars(HISTOGRAMS[0]), [])


class looks(OverviewTest):
    def tearDown(self):
        self.browser.prefer("light")
        super().tearDown()

    def test_fit_into_a_narrow_window(self):
        self.browser.resize(360, 740)
        self.assertLessEqual(self.browser.run("return document.documentElement.scrollWidth"), 360)

    def test_are_dark_where_that_is_wanted(self):
        self.browser.prefer("dark")
        self.assertEqual(self.browser.run("return getComputedStyle(document.body).backgroundColor"),
                         "rgb(20, 23, 27)")

    def test_have_names_for_all_that_can_be_worked(self):
        self.bar(HISTOGRAMS[0], 0).click()
        nodes = self.browser.command("Accessibility.getFullAXTree")["nodes"]
        worked = [node for node in nodes if node.get("role", {}).get("value") in
                  ("button", "searchbox", "combobox", "checkbox", "grid", "link")]
        self.assertGreater(len(worked), 30)
        self.assertEqual([node["role"]["value"] for node in worked
                          if not node.get("name", {}).get("value")], [])

    def test_print_what_paper_has_room_for(self):
        self.open_rows([{"capture": f"{number:03}", "error": "e"} for number in range(600)])
        self.browser.run("""
            addEventListener("beforeprint", () => {
                const list = document.querySelector(".list");
                window.printed = [list.tBodies[0].rows.length, list.tHead.rows[0].cells.length,
                    list.tBodies[0].rows[0].cells.length, document.querySelector(".print-only").textContent];
            });""")
        pdf = base64.b64decode(self.browser.command("Page.printToPDF", preferCSSPageSize=True)["data"])
        self.assertEqual(self.browser.run("return window.printed"),
                         [500, 8, 8, "The first 500 of 600 captures; the page itself has all."])
        self.assertIn(b"/MediaBox [0 0 594.9", pdf)
        self.assertIn("edrx_requested_s", self.heads())
        self.assertLess(len(self.browser.listed()), 200)


class hostile_captures(OverviewTest):
    def test_show_as_text(self):
        self.open_rows([{column: HOSTILE for column in self.rows[0]}])
        self.show_all_columns()
        self.assertEqual(self.browser.run("return [document.hostile, document.images.length]"), [None, 0])
        self.assertEqual(self.listed("apn"), [HOSTILE])
        self.browser.run("document.querySelector('.list tr[data-index]').click()")
        self.assertIn(HOSTILE, self.browser.text(".details"))
        self.assertEqual(self.browser.run("return [document.hostile, document.images.length]"), [None, 0])

    def test_have_addresses_that_are_nothing_but_paths(self):
        pages = ["javascript:document.hostile=1", "//host/a", "a b#c?d%e.html", "https://host/"]
        self.open_rows([{"capture": str(number), "page": page} for number, page in enumerate(pages)])
        self.assertEqual(self.browser.run("""
            return [...document.querySelectorAll(".list tbody a")].map((link) => link.getAttribute("href"));"""),
            ["./javascript%3Adocument.hostile%3D1", ".///host/a", "./a%20b%23c%3Fd%25e.html",
             "./https%3A//host/"])

    def test_with_long_texts_can_be_worked_with(self):
        self.open_rows([{column: "x" * 100_000 for column in self.rows[0]}])
        self.assertLess(max(len(cell) for cell in self.browser.listed()[0]), 500)
        self.assertLess(len(self.browser.text("#captures .tools")), 2000)


class many_captures(OverviewTest):
    def test_can_be_worked_with(self):
        count = 10_000
        self.browser.resize(1280)
        known = [row for row in self.rows if row["t3412_granted_s"]]
        self.open_rows([{**known[number % len(known)], "capture": f"modem {number:05}.pcapng",
                         "t3324_granted_s": str(number % 7 + 1)} for number in range(count)])
        self.assertLess(len(self.browser.listed()), 100)
        self.assertEqual(self.bars("t3324_granted_s"),
                         [[f"{value + 1} s", len(range(value, count, 7))] for value in range(7)])
        self.search("modem 09876")
        self.assertEqual(self.names(), ["modem 09876.pcapng"])
        self.search("")
        self.bar("t3324_granted_s", 6).click()
        self.assertEqual(self.count(), "1,428 of 10,000 captures")
        self.sort_by("capture")
        self.assertEqual(self.names()[0], "modem 09995.pcapng")
        self.browser.run("""
            const frame = document.querySelector(".list-frame");
            frame.scrollTop = frame.scrollHeight;""")
        self.browser.wait(lambda: self.names()[-1] == "modem 00006.pcapng")
        self.assertLess(len(self.browser.listed()), 100)


class no_captures(OverviewTest):
    def test_give_a_page_that_says_so(self):
        self.open_rows([])
        self.assertEqual(self.browser.text("h1"), "0 captures")
        self.assertEqual(self.browser.rows_of_facts()["time"], "no record")
        self.assertEqual(self.browser.listed(), [])


if __name__ == "__main__":
    unittest.main()
