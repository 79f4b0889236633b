"""The page of kivra-replay --report, as a browser shows it.

The programs are named by the environment, see CMakeLists.txt beside.
"""
import base64
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "tests/captures"))
sys.dont_write_bytecode = True
# pylint: disable=wrong-import-position
import make_captures
import messages
from browser import Browser
from capture_files import WIRESHARK_UPPER_PDU, pcapng, repeated

REPLAY = os.environ["KIVRA_REPLAY"]
SAMPLES = TREE / "examples/captures"
LTEM = SAMPLES / "ltem_attach_psm.pcapng"
NBIOT = SAMPLES / "nbiot_attach.pcapng"
HOSTILE = "</script><script>document.hostile=1</script><img src=x onerror=document.hostile=1>"
SEPARATORS = "\u2028\u2029&amp;<!--"


def exported(name, payload):
    tag = name + bytes(-len(name) % 4)
    return bytes([0, 12]) + len(tag).to_bytes(2, "big") + tag + bytes(4) + payload


def with_number(seconds):
    """As the page shows seconds."""
    text = f"{seconds:.6f}".rstrip("0").rstrip(".") + " s"
    if seconds < 120:
        return text
    unit, name = (60, "min") if seconds < 7200 else (3600, "h") if seconds < 345600 else (86400, "d")
    return f"{text} ({seconds / unit:.1f}".removesuffix(".0") + f" {name})"


def value_text(value):
    unit = " " + value["unit"] if value["unit"] else ""
    return value["value"] + unit + ("" if value.get("known", True) else " (?)")


def last_text(entry):
    return value_text(entry["in_force"]) + (", ended" if "ended_in" in entry else "")


class PageTest(unittest.TestCase):
    """One browser and one folder for all tests of a class; each opens a page anew."""

    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.browser = Browser(cls.folder / "user")
        cls.addClassCleanup(cls.browser.quit)
        cls.pages = {}

    def tearDown(self):
        self.assertEqual(self.browser.complaints(), [])

    @classmethod
    def replay(cls, name, *arguments):
        """Makes NAME.html and NAME.json."""
        subprocess.run([REPLAY, "-q", "--profile", cls.folder / f"{name}-profile.json", "--summary",
                        cls.folder / f"{name}.json", "--report", cls.folder / f"{name}.html",
                        *arguments], check=False, timeout=120)

    @classmethod
    def open(cls, name, *arguments):
        """Opens the page of a run, which is made once, and gives its summary."""
        if name not in cls.pages:
            cls.replay(name, *arguments)
            cls.pages[name] = json.loads((cls.folder / f"{name}.json").read_text())
        cls.browser.open(cls.folder / f"{name}.html")
        return cls.pages[name]

    @classmethod
    def open_sample(cls):
        return cls.open("ltem", LTEM)

    @classmethod
    def open_hour(cls):
        if not (cls.folder / "hour/hour.pcapng").exists():
            subprocess.run([TREE / "tests/captures/make_hour.py", cls.folder / "hour"], check=True)
        return cls.open("hour", cls.folder / "hour/hour.pcapng")


class figures(PageTest):
    """The page says what the summary says."""

    def expect_figures(self, summary):
        measured = summary["measured"]
        names = {"connected": "connected", "silence before release": "silence_before_release",
                 "idle between connections": "idle",
                 "between tracking area updates": "between_area_updates"}
        self.assertEqual(self.browser.rows("measured", "Durations"), [
            [name, str(measured[member]["count"]),
             *(with_number(measured[member][part]) if measured[member]["count"] else ""
               for part in ("minimum_s", "median_s", "maximum_s", "sum_s"))]
            for name, member in names.items()])
        shown = dict(self.browser.rows("measured", "Figures"))
        self.assertEqual(shown["paging messages"], str(measured["paging"]))
        self.assertEqual(shown["connections without beginning or end"], str(measured["incomplete"]))
        timer = measured.get("area_update_timer")
        self.assertEqual(shown["tracking area updates due by"].partition(" s")[0],
                         "" if timer is None else f"{timer['name']} {timer['value_s']:.0f}"
                         if "value_s" in timer else f"{timer['name']} without a time")
        self.assertEqual(shown["malformed messages"], str(summary["unreadable"]["malformed"]))
        self.assertEqual({name.removeprefix("connections for "): int(count)
                          for name, count in shown.items() if name.startswith("connections for ")},
                         measured["causes"])
        self.assertEqual({name: int(count)
                          for name, count in self.browser.rows("measured", "Messages")},
                         summary["messages"])
        self.assertEqual({name: [int(part) for part in parts] for name, *parts, _ in
                          self.browser.rows("measured", "Formats")},
                         {name: [entry["records"], entry["with_result"], entry["failed"]]
                          for name, entry in summary["formats"].items()})

    def expect_settings(self, summary):
        self.assertCountEqual(
            [row[:5] for row in self.browser.rows("settings", "The value in force")],
            [[entry["name"], entry["role"], last_text(entry),
              str(entry["in_force"]["record"]), str(entry["changes"])]
             for entry in summary["settings"]])

    def test_names_no_profile_that_is_not_kept(self):
        self.open("temporary", "--temporary-profile", LTEM)
        for place in ("#answers", "#profile"):
            self.assertIn("ritten for this report, and not kept", self.browser.find(place).text)

    def expect_profile(self, summary):
        self.assertEqual(self.browser.rows("profile", "Values beside what"), [
            [entry["member"], entry["value"], str(entry["record"]), entry.get("truth", ""),
             "\u2260 " + entry["difference"] if "difference" in entry else ""]
            for entry in summary["profile"]["from_the_trace"]])

    def test_of_an_lte_m_attach_are_the_summarys(self):
        summary = self.open_sample()
        self.expect_figures(summary)
        self.expect_settings(summary)
        self.expect_profile(summary)

    def test_of_an_nb_iot_attach_are_the_summarys(self):
        summary = self.open("nbiot", NBIOT)
        self.expect_figures(summary)
        self.expect_settings(summary)
        self.expect_profile(summary)

    def test_of_an_hour_are_the_summarys(self):
        summary = self.open_hour()
        self.expect_figures(summary)
        self.expect_settings(summary)

    def test_of_failures_are_the_summarys(self):
        self.expect_failures(self.open_failures())

    def open_failures(self):
        capture = self.folder / "lab.pcapng"
        capture.write_bytes(LTEM.read_bytes().replace(b"\xf6\x62\xf2\x20", b"\xf6\x00\xf1\x10"))
        return self.open("lab", capture)

    def expect_failures(self, summary):
        self.assertEqual(summary["records"]["failed"], 2)
        self.assertEqual(self.browser.rows("diagnostics", "What went wrong"), [
            [entry["text"], str(entry["count"]), str(entry["first_record"]), entry["meaning"]]
            for entry in summary["diagnostics"]])

    def test_stand_in_the_heading(self):
        summary = self.open_sample()
        heading = self.browser.text("#heading")
        for part in ("ltem_attach_psm.pcapng", summary["measured"]["begin"],
                     summary["measured"]["end"], "22: 20 with a result, 2 without, 0 failed",
                     "kivra-replay ", "TShark (Wireshark) "):
            self.assertIn(part, heading)

    def test_of_a_capture_that_breaks_off_are_incomplete(self):
        cut = self.folder / "cut.pcapng"
        cut.write_bytes(LTEM.read_bytes()[:1500])
        reason, = self.open("cut", cut)["incomplete"]
        self.assertIn(f"can't read {cut}: ", reason)
        self.assertEqual(self.browser.rows_of_facts()["incomplete"], reason)
        self.assertEqual(self.browser.text("#diagnostics p"), f"Incomplete: {reason}")

    def test_of_a_whole_capture_are_not_incomplete(self):
        self.open_sample()
        self.assertNotIn("incomplete", self.browser.rows_of_facts())
        self.assertEqual(self.browser.text("#diagnostics p"), "None.")

    def test_come_with_the_answers(self):
        summary = self.open_sample()
        answers = self.browser.text("#answers")
        self.assertIn("asked 60 s (record 4)granted 120 s, ended (record 20) \u2260 changed", answers)
        self.assertIn("long cycleconfigured 320 ms (record 3)", answers)
        for conclusion in summary["conclusions"]:
            self.assertIn(conclusion["text"], answers)

    def test_of_connections_stand_in_words(self):
        summary = self.open_hour()
        listed = self.browser.rows("timeline", "Connections")
        self.assertEqual([[row[0], row[1], row[2]] for row in listed],
                         [[entry["begin"], with_number(entry["duration_s"]),
                           entry.get("cause", "unknown")]
                          for entry in summary["measured"]["connections"]])


class comparisons(PageTest):
    def setUp(self):
        self.browser.resize(1280)
        self.summary = self.open("both", LTEM, "--compare", NBIOT)
        if "other" not in self.pages:
            self.replay("other", NBIOT)
            self.pages["other"] = json.loads((self.folder / "other.json").read_text())
        self.other = self.pages["other"]

    def test_have_the_settings_of_both_and_mark_what_differs(self):
        shown = {(role, name): values for name, role, *values in
                 self.browser.rows("settings", "The values in force")}
        one, other = ({(entry["role"], entry["name"]): last_text(entry)
                       for entry in summary["settings"]} for summary in (self.summary, self.other))
        self.assertEqual(set(shown), set(one) | set(other))
        for key, (first, second, mark) in shown.items():
            self.assertEqual([first, second], [one.get(key, ""), other.get(key, "")])
            self.assertEqual(mark, "" if first == second else "\u2260 only in B" if key not in one
                             else "\u2260 only in A" if key not in other else "\u2260 differs")

    def test_have_what_was_measured_in_both(self):
        shown = {name: values for name, *values in self.browser.rows("measured", "Durations")}
        for statistic, member in (("median", "median_s"), ("sum", "sum_s")):
            self.assertEqual(shown[f"connected: {statistic}"][:2], [
                with_number(summary["measured"]["connected"][member])
                for summary in (self.summary, self.other)])
        self.assertEqual(shown["connected: count"], ["2", "1", "\u2260 \u22121"])
        self.assertEqual(shown["between tracking area updates: count"], ["0", "0", ""])

    def test_have_both_timelines_on_one_axis(self):
        for run, record in (("A", "22"), ("B", "8")):
            found = self.browser.hint_at(f"record {record}: DL-DCCH")
            self.browser.click(*found[:2])
            self.browser.wait(lambda number=record: self.browser.chosen()[0] == number)
            self.assertEqual(self.browser.run("""
                return document.querySelector("#records select[aria-label=Trace]")
                    .selectedOptions[0].textContent"""), f"Trace {run}")
        self.assertTrue(self.browser.range().startswith("+0:00:00 to +1:00:06"))


class timelines(PageTest):
    def setUp(self):
        self.browser.resize(1280)
        self.open_sample()
        self.whole = self.browser.range()

    def expect_zoomed(self):
        self.browser.wait(lambda: self.browser.range() != self.whole)

    def expect_whole(self):
        self.browser.wait(lambda: self.browser.range() == self.whole)

    def test_zoom_by_buttons(self):
        self.browser.find("#timeline button[title='Zoom in']").click()
        self.expect_zoomed()
        self.browser.find("#timeline button[title='Show the whole trace']").click()
        self.expect_whole()

    def test_zoom_by_a_drag_and_show_all_by_a_double_click(self):
        left, top, width, _ = self.browser.chart_box()
        self.browser.mouse("mousePressed", left + 100, top + 20, button="left", clickCount=1)
        self.browser.mouse("mouseMoved", left + width / 2, top + 20, button="left", buttons=1)
        self.browser.mouse("mouseReleased", left + width / 2, top + 20, button="left", clickCount=1)
        self.expect_zoomed()
        self.browser.click(left + 50, top + 300, count=2)
        self.expect_whole()

    def test_move_by_a_drag_with_shift(self):
        self.browser.press("+")
        zoomed = self.browser.range()
        left, top, _, _ = self.browser.chart_box()
        shift = 8
        for kind, x in (("mousePressed", 300), ("mouseMoved", 200), ("mouseReleased", 200)):
            self.browser.mouse(kind, left + x, top + 20, button="left", buttons=1, clickCount=1,
                               modifiers=shift)
        self.browser.wait(lambda: self.browser.range() != zoomed)
        self.assertEqual(self.browser.range().split()[-2:], zoomed.split()[-2:])

    def test_zoom_by_the_wheel_with_control(self):
        left, top, width, _ = self.browser.chart_box()
        control = 2
        self.browser.mouse("mouseWheel", left + width / 2, top + 20, deltaX=0, deltaY=-300,
                           modifiers=control)
        self.expect_zoomed()

    def test_zoom_by_two_fingers(self):
        left, top, _, _ = self.browser.chart_box()
        self.browser.command("Emulation.setTouchEmulationEnabled", enabled=True, maxTouchPoints=2)

        def touch(kind, *places):
            self.browser.command("Input.dispatchTouchEvent", type=kind, touchPoints=[
                {"x": left + x, "y": top + 60, "id": number} for number, x in enumerate(places)])

        touch("touchStart", 300, 400)
        touch("touchMove", 200, 500)
        touch("touchEnd")
        self.browser.command("Emulation.setTouchEmulationEnabled", enabled=False)
        self.expect_zoomed()

    def test_zoom_and_move_by_keys(self):
        self.browser.press("+", "+")
        zoomed = self.browser.range()
        self.assertNotEqual(zoomed, self.whole)
        self.browser.press("ArrowRight")
        moved = self.browser.range()
        self.assertNotEqual(moved, zoomed)
        self.browser.press("ArrowLeft")
        self.assertEqual(self.browser.range(), zoomed)
        self.browser.press("0")
        self.assertEqual(self.browser.range(), self.whole)

    def test_do_not_leave_the_trace(self):
        self.browser.press("+", "Home")
        begin = self.browser.range().split()[0]
        self.assertEqual(begin, self.whole.split()[0])
        self.browser.press("ArrowLeft", "-", "-")
        self.assertEqual(self.browser.range(), self.whole)

    def test_go_from_record_to_record_by_keys(self):
        self.browser.press("n", "n")
        self.assertIn("record 2: UL-CCCH, RRCConnectionRequest", self.browser.range())
        self.browser.press("p", "Enter")
        self.assertEqual(self.browser.chosen()[0], "1")

    def test_hint_at_messages_and_what_they_tell(self):
        self.browser.press("n", "n", "n", *["+"] * 10)
        _, _, text = self.browser.hint_at("record 3")
        self.assertIn("DL-CCCH, RRCConnectionSetup", text)
        self.assertIn("2025-11-24T16:00:00.138000Z", text)
        self.assertIn("cdrx_int 30, cdrx_on_duration 10", text)

    def test_show_the_sleep_that_psm_allows_behind_a_release(self):
        # T3412 extended is 70 h, so it is the next request that ends it.
        _, _, text = self.browser.hint_at("PSM allows to sleep")
        self.assertIn("PSM allows to sleep 3580 s (59.7 min)", text)
        self.assertIn("252000 s (70 h) after the release", text)

    def test_shorten_an_hour_of_sleep_and_give_it_its_room(self):
        release = "record 17: DL-DCCH"
        left, _, width, _ = self.browser.chart_box()
        shortened = self.browser.hint_at(release)[0]
        self.browser.find("#timeline button[aria-pressed=true]").click()
        self.browser.wait(lambda: self.browser.hint_at(release)[0] < left + 0.1 * width)
        self.assertGreater(shortened, left + 0.4 * width)
        self.browser.find("#timeline button[aria-pressed=false]").click()
        self.browser.wait(lambda: self.browser.hint_at(release)[0] == shortened)

    def test_of_steady_traffic_shorten_nothing(self):
        self.open_hour()
        self.assertEqual(self.browser.run(
            "return document.querySelectorAll('#timeline [aria-pressed]').length"), 0)

    def test_show_connections_and_their_silence(self):
        _, _, text = self.browser.hint_at("connected 10.9175 s for mo-Signalling")
        self.assertIn("silent for the last 10.4 s, then released", text)

    def test_show_settings_as_they_change(self):
        _, _, text = self.browser.hint_at("broadcast default paging cycle 2.56 s")
        self.assertIn("since record 16", text)

    def test_lead_to_the_list_by_a_click(self):
        x, y, text = self.browser.hint_at("record 22")
        self.assertIn("RRCConnectionRelease", text)
        self.browser.click(x, y)
        self.browser.wait(lambda: self.browser.chosen()[0] == "22")
        self.assertEqual(self.browser.chosen()[1], "Record 22: DL-DCCH, RRCConnectionRelease")

    def test_are_reached_from_the_list(self):
        self.browser.run("document.querySelector('[data-index=\"11\"]').click()")
        self.browser.find(".details button").click()
        self.expect_zoomed()
        self.assertIsNotNone(self.browser.hint_at("record 12"))

    def test_are_drawn_again_for_another_range_and_scheme(self):
        pictures = set()
        for step in (lambda: None, lambda: self.browser.press("+"),
                     lambda: self.browser.prefer("dark")):
            step()
            self.browser.wait(lambda: self.picture() not in pictures)
            pictures.add(self.picture())
        self.browser.prefer("light")

    def picture(self):
        return self.browser.run("return document.querySelector('.chart canvas').toDataURL()")


class sleeps(PageTest):
    """Behind a release, by what the network granted before."""

    ACCEPT, UPDATE_ACCEPT, DETACH = (messages.trace("ltem_attach_psm")[place].data for place in (12, 19, 20))
    UPDATE_ACCEPT_ALONE = bytes.fromhex("074900")

    def hint(self, *nas):
        """That of a sleep behind these messages; nothing where there is none."""
        self.browser.resize(1280)
        request = ("lte_rrc.ul_ccch", bytes.fromhex("4c8c2e65e9a6"))
        trace = [request, *(("nas-eps", data) for data in nas), ("lte_rrc.dl_dcch", bytes.fromhex("2c02"))]
        records = [messages.message(1_780_000_000_000_000 + second * 1_000_000, *message)
                   for second, message in enumerate(trace)]
        records.append(messages.message(1_780_009_000_000_000, *request))
        name = f"sleep-{len(self.pages)}"
        capture = self.folder / f"{name}.pcapng"
        capture.write_bytes(make_captures.exported(records))
        self.open(name, capture)
        found = self.browser.hint_at("PSM allows to sleep")
        return found and found[2]

    def test_last_for_t3412_extended(self):
        self.assertIn("252000 s (70 h) after the release", self.hint(self.ACCEPT))

    def test_last_for_t3412_where_the_extended_one_is_deactivated(self):
        self.assertIn("3240 s (54 min) after the release", self.hint(self.ACCEPT, self.UPDATE_ACCEPT))

    def test_are_none_behind_a_detach(self):
        self.assertIsNone(self.hint(self.ACCEPT, self.DETACH))

    def test_are_none_behind_an_accept_without_timers(self):
        self.assertIsNone(self.hint(self.ACCEPT, self.UPDATE_ACCEPT_ALONE))


class lists(PageTest):
    def setUp(self):
        self.browser.resize(1280)
        self.open_sample()

    def test_have_every_record(self):
        lines = subprocess.run([REPLAY, "--json", "--profile", self.folder / "p", LTEM],
                               check=True, capture_output=True, text=True).stdout.splitlines()
        self.assertEqual([row[:2] for row in self.browser.listed()],
                         [[str(record["number"]), record["time"]]
                          for record in map(json.loads, lines)])
        for record in map(json.loads, lines):
            self.browser.run("document.querySelector(`[data-index='${arguments[0]}']`).click()",
                             record["number"] - 1)
            self.assertEqual(self.browser.result(), record["result"])
            self.assertIn(record["format"], self.browser.text(".details"))
            for setting in record.get("settings", []):
                self.assertIn(setting["name"] + setting["role"] + value_text(setting),
                              self.browser.text(".details table"))

    def test_name_channels_and_directions(self):
        channels = {row[3]: row[2] for row in self.browser.listed()}
        self.assertEqual(channels["Attach request, PDN connectivity request"], "NAS uplink \u2191")
        self.assertEqual(channels["Authentication request"], "NAS downlink \u2193")
        self.assertEqual(channels["Detach request"], "NAS uplink \u2191")
        self.assertEqual(channels["UL-CCCH, RRCConnectionRequest"], "RRC uplink \u2191")
        self.assertEqual(channels["DL-CCCH, RRCConnectionSetup"], "RRC downlink \u2193")
        self.assertEqual(channels["IPv6 packet"], "IP")

    def test_find_messages_values_and_numbers(self):
        for text, numbers in (("tracking AREA update", ["20"]), ("#7", ["7"]),
                              ("iot.example.mnc002", ["12", "13"]), ("17:00:06.15", ["22"]),
                              ("nothing has this", [])):
            self.browser.search(text)
            self.assertEqual([row[0] for row in self.browser.listed()], numbers, text)

    def test_sort_by_a_column_and_back(self):
        self.browser.find(".list thead th:nth-child(4) button").click()
        messages = [row[3] for row in self.browser.listed()]
        self.assertEqual(messages, sorted(messages))
        self.browser.find(".list thead th:nth-child(4) button").click()
        self.assertEqual([row[3] for row in self.browser.listed()], sorted(messages, reverse=True))
        self.assertEqual(self.browser.find(".list thead th:nth-child(4)").get_attribute("aria-sort"),
                         "descending")

    def test_show_one_channel(self):
        self.browser.run("""
            const channel = document.querySelector("#records select[aria-label=Channel]");
            channel.value = "0";
            channel.dispatchEvent(new Event("change"));""")
        self.assertEqual({row[2] for row in self.browser.listed()}, {"RRC uplink \u2191"})
        self.assertEqual(self.browser.text("#records .status"), "3 of 22 records")

    def test_follow_keys(self):
        for key, number in (("ArrowDown", "1"), ("ArrowDown", "2"), ("End", "22"), ("ArrowUp", "21"),
                            ("Home", "1")):
            self.browser.run("""
                const list = document.querySelector(".list");
                list.dispatchEvent(new KeyboardEvent("keydown", {key: arguments[0], bubbles: true}));
                """, key)
            self.assertEqual(self.browser.chosen()[0], number)

    def test_are_reached_from_the_tables(self):
        self.browser.find("#profile button.link").click()
        self.assertEqual(self.browser.chosen()[0], "12")


class looks(PageTest):
    HEADS = ["record", "time", "channel", "message", "what it tells"]

    def tearDown(self):
        self.browser.prefer("light")
        self.browser.resize(1280)
        super().tearDown()

    def test_fit_into_a_narrow_window(self):
        self.browser.resize(360, 740)
        self.open_sample()
        self.assertLessEqual(self.browser.run("return document.documentElement.scrollWidth"), 360)

    def test_show_what_was_measured_without_scrolling(self):
        self.open_sample()
        self.assertEqual(self.browser.run("""
            return [...document.querySelectorAll("#measured .table-frame")]
                .filter((frame) => frame.scrollWidth > frame.clientWidth)
                .map((frame) => frame.querySelector("caption").textContent);"""), [])

    def test_are_dark_where_that_is_wanted(self):
        self.open_sample()
        light = self.browser.run("return getComputedStyle(document.body).backgroundColor")
        self.browser.prefer("dark")
        dark = self.browser.run("return getComputedStyle(document.body).backgroundColor")
        self.assertEqual([light, dark], ["rgb(255, 255, 255)", "rgb(20, 23, 27)"])

    def test_can_be_reached_by_the_keyboard(self):
        self.open_sample()
        reached = self.browser.run("""
            return [".chart", ".list", "#records input[type=search]", "#timeline button",
                "details summary"].filter((part) => {
                    const found = document.querySelector(part);
                    found.focus();
                    return document.activeElement === found;
                });""")
        self.assertEqual(len(reached), 5)

    def test_have_names_for_all_that_can_be_worked(self):
        self.open_sample()
        nodes = self.browser.command("Accessibility.getFullAXTree")["nodes"]
        nameless = [node["role"]["value"] for node in nodes
                    if node.get("role", {}).get("value") in
                    ("button", "searchbox", "combobox", "checkbox", "application", "grid", "link")
                    and not node.get("name", {}).get("value")]
        self.assertEqual(nameless, [])

    def test_print_the_first_rows_and_say_so(self):
        capture = self.folder / "600.pcapng"
        capture.write_bytes(repeated(LTEM.read_bytes(), 600))
        self.open("600", capture)
        self.browser.run("""
            addEventListener("beforeprint", () => {
                window.printed = [document.querySelectorAll(".list tbody tr").length,
                    document.querySelector(".print-only").textContent];
                window.heads = [...document.querySelectorAll(".list thead th")].map((head) => head.innerHTML);
            });""")
        pdf = base64.b64decode(self.browser.command("Page.printToPDF", preferCSSPageSize=True)["data"])
        self.assertEqual(self.browser.run("return window.printed"),
                         [500, "The first 500 of 600 records; the page itself has all."])
        self.assertIn(b"/MediaBox [0 0 594.9", pdf)
        # On all sheets but the first, Chromium leaves out buttons.
        self.assertEqual(self.browser.run("return window.heads"), self.HEADS)
        self.assertEqual(self.browser.run("""
            return [...document.querySelectorAll(".list thead button")].map((button) => button.textContent);"""),
            self.HEADS)
        self.assertLess(len(self.browser.listed()), 100)


class hostile_captures(PageTest):
    def test_show_as_text(self):
        name = "<img src=x onerror=document.hostile=1>'\".pcapng"
        capture = self.folder / name
        # Names end at a zero byte; these have none.
        formats = [HOSTILE.encode(), SEPARATORS.encode(), b"\xed\xa0\x80\xff", b"x" * 60_000]
        odd = pcapng([WIRESHARK_UPPER_PDU], [(0, exported(format, b"m")) for format in formats])
        sample = LTEM.read_bytes().replace(b"\x03iot\x07example", b"\x03<b>\x07<img x>")
        capture.write_bytes(sample + odd)
        summary = self.open("hostile", capture)
        self.assertEqual(self.browser.run("return [document.hostile, document.images.length]"),
                         [None, 0])
        self.assertIn(name, self.browser.text("#heading"))
        shown = [row[0] for row in self.browser.rows("measured", "Formats")]
        self.assertEqual(shown, list(summary["formats"]))
        self.assertIn(HOSTILE, [row.rstrip("\0") for row in shown])
        self.assertIn("\ufffd", "".join(shown))
        values = {row[0]: row[2] for row in self.browser.rows("settings", "The value in force")}
        self.assertEqual(values["APN"], "<b>.<img x>.mnc002.mcc262.gprs")
        self.browser.search("document.hostile")
        self.browser.run("document.querySelector('.list tr[data-index]').click()")
        self.assertIn(HOSTILE, self.browser.text(".details"))

    def test_with_long_texts_can_be_worked_with(self):
        self.open_sample()
        page = self.folder / "long.html"
        long_name = ("<script>" * 12_500).replace("<", "\\u003c")
        text = (self.folder / "ltem.html").read_text()
        self.assertIn('"Authentication request"', text)
        page.write_text(text.replace('"Authentication request"', f'"{long_name}"'))
        self.browser.open(page)
        self.browser.search("<script><script>")
        self.assertEqual([row[0] for row in self.browser.listed()], ["6"])
        self.assertLess(len(self.browser.listed()[0][3]), 500)
        self.browser.press("n", "n", "n", "n", "n", "n")
        self.assertLess(len(self.browser.range()), 500)


class long_captures(PageTest):
    def make(self, count):
        capture = self.folder / f"{count}.pcapng"
        capture.write_bytes(repeated(LTEM.read_bytes(), count))
        return capture

    def test_of_two_thousand_records_give_a_small_page(self):
        self.open("2000", self.make(2000))
        self.assertLess((self.folder / "2000.html").stat().st_size, 2 << 20)

    def test_of_a_hundred_thousand_records_can_be_worked_with(self):
        self.open("100000", self.make(100_000))
        self.assertLess(len(self.browser.listed()), 100)
        whole = self.browser.range()
        self.browser.press("+", "+", "+")
        self.browser.wait(lambda: self.browser.range() != whole)
        self.browser.search("#98765")
        self.assertEqual([row[0] for row in self.browser.listed()], ["98765"])
        self.browser.search("")
        self.browser.find(".list thead th:nth-child(1) button").click()
        self.assertEqual(self.browser.listed()[0][0], "100000")


class empty_captures(PageTest):
    def test_give_a_page_that_says_so(self):
        capture = self.folder / "empty.pcapng"
        capture.write_bytes(pcapng([WIRESHARK_UPPER_PDU], []))
        self.open("empty", capture)
        self.assertIn("There is no record.", self.browser.text("#timeline"))
        self.assertIn("no record", self.browser.text("#heading"))


if __name__ == "__main__":
    unittest.main()
