"""kivra-replay.exe below Wine gives, byte for byte, what kivra-replay of the system below gives.

The programs are named by the environment, see CMakeLists.txt beside.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "tests/captures"))
sys.dont_write_bytecode = True
# pylint: disable=wrong-import-position
from capture_files import RAW_IP, WIRESHARK_UPPER_PDU, pcap, pcapng, repeated

WINE = [os.environ["KIVRA_WINE"], os.environ["KIVRA_WINE_PREFIX"]]
BUILD = pathlib.Path(os.environ["KIVRA_BUILD"])
NATIVE_BUILD = pathlib.Path(os.environ["KIVRA_NATIVE_BUILD"])
OBJDUMP = os.environ["KIVRA_OBJDUMP"]

REPLAY = BUILD / "kivra-replay.exe"
NATIVE_REPLAY = NATIVE_BUILD / "kivra-replay"
TSHARK = "Z:" + str(BUILD / "tests/wine/real")
NATIVE_TSHARK = "/usr/bin"
FIRST_LINE = BUILD / "tests/wine/first_line.exe"
SAMPLES = ["ltem_attach_psm", "nbiot_attach"]

# What the two systems say of the same error; Wine's texts are not Windows' own.
REASONS = {
    "Directory name invalid": "Is a directory",
    "File not found": "No such file or directory",
    "Module not found": "FOLDER/missing.dll: cannot open shared object file: "
                        "No such file or directory",
}


def comparable(data, folder):
    """Without all that may differ: names of folders, reasons of the system, and times taken."""
    text = data.decode("utf-8", "surrogateescape")
    text = text.replace(f"{WINE[1]}/dosdevices/z:", "").replace(TSHARK, NATIVE_TSHARK)
    text = text.replace(str(folder), "FOLDER")
    # Where lines break depends on the folder's name.
    text = re.sub(r"\nincomplete\n.*?\n\n", lambda lines: " ".join(lines[0].split()), text, flags=re.DOTALL)
    for reason, native_reason in REASONS.items():
        text = re.sub(f": {reason}$", f": {native_reason}", text, flags=re.MULTILINE)
    return re.sub(r"tshark processing took: \d+ms", "tshark processing took: 0ms", text)


def exported_pdu(name, payload):
    tag = name.encode()
    tag += bytes(-len(tag) % 4)
    return bytes([0, 12, 0, len(tag)]) + tag + bytes(4) + payload


def files_in(folder):
    return {str(file.relative_to(folder)): file.read_bytes()
            for file in folder.rglob("*") if file.is_file()}


class replay_below_wine(unittest.TestCase):
    maxDiff = 4000

    @classmethod
    def setUpClass(cls):
        if not NATIVE_REPLAY.exists():
            raise RuntimeError(f"{NATIVE_REPLAY} is not built: cmake --build --preset release")
        shared = tempfile.TemporaryDirectory()
        cls.addClassCleanup(shared.cleanup)
        cls.captures = pathlib.Path(shared.name)
        subprocess.run([TREE / "tests/captures/make_captures.py", cls.captures], check=True)
        for sample in SAMPLES:
            shutil.copy(TREE / f"examples/captures/{sample}.pcapng", cls.captures)

    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="kivra-test-")
        self.addCleanup(scratch.cleanup)
        self.folders = [pathlib.Path(scratch.name, name) for name in ("windows", "linux")]
        for folder in self.folders:
            folder.mkdir()

    def write(self, name, data):
        for folder in self.folders:
            (folder / name).write_bytes(data)

    def copy(self, capture, name="capture"):
        self.write(name, (self.captures / capture).read_bytes())

    def windows(self, *command, **setting):
        return subprocess.run([*WINE, *command], cwd=self.folders[0], capture_output=True,
                              check=False, **setting)

    def replay(self, *arguments, tshark=True, data=b""):
        """What comes of both programs: output, errors, status and files, after a comparison."""
        options = [["--tshark-directory", place] if tshark else []
                   for place in (TSHARK, NATIVE_TSHARK)]
        here = self.windows(REPLAY, *options[0], *arguments, input=data)
        there = subprocess.run(
            [NATIVE_REPLAY, *options[1], *arguments], cwd=self.folders[1], input=data,
            capture_output=True, check=False,
            env={**os.environ, **({} if tshark else {"PATH": "/nowhere"})})
        for part in ("stderr", "stdout"):
            self.assertEqual(*(comparable(getattr(result, part), folder)
                               for result, folder in zip((here, there), self.folders)))
        self.assertEqual(here.returncode, there.returncode)
        self.assertEqual(*({name: comparable(content, folder)
                            for name, content in files_in(folder).items()
                            if not name.startswith("plugin")} for folder in self.folders))
        return there

    def test_both_samples_as_json_lines(self):
        for sample in SAMPLES:
            with self.subTest(sample):
                self.copy(f"{sample}.pcapng")
                result = self.replay("--json", "--summary", "summary.json", "capture")
                self.assertEqual(result.returncode, 0)
                self.assertLessEqual({"kivra-profile.json", "summary.json"}, files_in(self.folders[0]).keys())

    def test_both_samples_as_tables(self):
        for sample in SAMPLES:
            with self.subTest(sample):
                self.copy(f"{sample}.pcapng")
                self.assertEqual(self.replay("capture").returncode, 0)

    def test_every_record_when_asked_to(self):
        self.copy("nbiot_attach.pcapng")
        self.assertEqual(self.replay("--all", "capture").returncode, 0)

    def test_messages_that_other_protocols_carry(self):
        for capture in ("gsmtap_ethernet.pcap", "mixed.pcapng", "gsmtap_compressed.pcap.gz"):
            with self.subTest(capture):
                self.copy(f"ltem_attach_psm/{capture}")
                self.assertIn("\nprofile ", self.replay("capture").stdout.decode())
                self.replay("--json", "--summary", "summary.json", "capture")
                self.assertIn("summary.json", files_in(self.folders[0]))

    def test_compressed_exported_pdus(self):
        self.copy("messages/nas_in_rrc_compressed.pcapng.gz")
        self.assertEqual(self.replay("--json", "capture").stdout.count(b"\n"), 1)

    def test_raw_ip(self):
        router_advertisement = bytes.fromhex(
            "6000000000303aff fe800000000000000000000000000001 ff020000000000000000000000000001"
            "8600000040000000 0000000000000000 030440c0ffffffffffffffff00000000"
            "20010db8000100000000000000000000")
        self.write("capture", pcap(RAW_IP, [(1, router_advertisement)]))
        self.assertIn("2001:0db8:0001", self.replay("capture").stdout.decode())

    def test_two_thousand_records(self):
        self.write("capture", repeated((self.captures / "ltem_attach_psm.pcapng").read_bytes(),
                                       2000))
        self.assertEqual(self.replay("--json", "capture").stdout.count(b"\n"), 2000)

    def test_records_that_go_wrong(self):
        sample = (self.captures / "ltem_attach_psm.pcapng").read_bytes()
        self.write("lab.pcapng", sample.replace(b"\xf6\x62\xf2\x20", b"\xf6\x00\xf1\x10"))
        self.write("nameless.pcapng", pcapng([WIRESHARK_UPPER_PDU], [(0, bytes(4) + b"m")]))
        snapped = bytearray(pcap(WIRESHARK_UPPER_PDU, [(0, exported_pdu("ip", b"m"))]))
        snapped[36] = 99
        self.write("snapped.pcap", bytes(snapped))
        result = self.replay("lab.pcapng", "nameless.pcapng", "snapped.pcap")
        self.assertEqual(result.returncode, 1)
        self.assertIn("invalid stoi argument", result.stdout.decode())
        self.assertIn("cut short by the snapshot length", result.stdout.decode())

    def test_a_malformed_message(self):
        self.copy("messages/nas_malformed.pcapng")
        self.replay("capture")

    def test_names_with_blanks_and_of_any_alphabet(self):
        self.copy("nbiot_attach.pcapng", "ä 日本.pcapng")
        self.replay("ä 日本.pcapng", "--profile", "Profil ü 日本.json", "--output", "Bericht 日本.txt")
        files = files_in(self.folders[0])
        self.assertIn("Profil ü 日本.json", files)
        report = files["Bericht 日本.txt"]
        self.assertIn("\nprofile Profil ü 日本.json\n".encode(), report)
        self.assertNotIn(b"\r", report)
        self.assertFalse(report.startswith(b"\xef\xbb\xbf"))

    def test_the_standard_input(self):
        for capture in ("nbiot_attach.pcapng", "nbiot_attach/gsmtap_ethernet.pcap"):
            with self.subTest(capture):
                result = self.replay("-", data=(self.captures / capture).read_bytes())
                self.assertEqual(result.returncode, 0)

    def test_several_captures(self):
        for sample in SAMPLES:
            self.copy(f"{sample}.pcapng", sample)
        self.assertEqual(self.replay("--json", *SAMPLES).returncode, 0)

    def test_each_of_many_captures(self):
        for sample in SAMPLES:
            self.copy(f"{sample}.pcapng", sample)
        self.write("broken", b"no capture at all")
        result = self.replay("--each", "--jobs", "2", "--table", "table.csv", *SAMPLES, "broken")
        self.assertEqual(result.returncode, 1)
        result = self.replay("--each", "--from-tables", "table.csv", tshark=False)
        self.assertEqual(result.returncode, 1)

    def test_pages_of_many_captures(self):
        for sample in SAMPLES:
            self.copy(f"{sample}.pcapng", sample)
        result = self.windows(REPLAY, "--each", "--report", "pages", "--tshark-directory", TSHARK,
                              *SAMPLES)
        self.assertEqual(result.returncode, 0)
        self.assertEqual({name for name in files_in(self.folders[0]) if name.startswith("pages")},
                         {f"pages/{name}.html" for name in ("index", *SAMPLES)})

    def test_following_a_folder(self):
        result = self.windows(REPLAY, "--each", "--watch", "--table", "table.csv",
                              "--tshark-directory", TSHARK, ".")
        self.assertEqual(result.returncode, 2)
        self.assertIn(b"folders can't be watched on this system", result.stderr)

    def test_the_plugin(self):
        for folder, build, suffix in zip(self.folders, (BUILD, NATIVE_BUILD), ("dll", "so")):
            shutil.copy(build / f"kivra-tshark-sink.{suffix}", folder / "plugin ä.dll")
        self.copy("nbiot_attach.pcapng")
        for options in ([], ["--session"]):
            with self.subTest(options):
                result = self.replay("--plugin", "plugin ä.dll", *options, "capture")
                self.assertEqual(result.returncode, 0)

    def test_refusals(self):
        self.write("text", b"no capture at all")
        self.copy("nbiot_attach.pcapng")
        for folder in self.folders:
            (folder / "folder").mkdir()
        for arguments, reason in (
                (["text"], "isn't a capture file in a format TShark understands"),
                (["folder"], "folder: Is a directory"),
                (["missing"], "missing: No such file or directory"),
                (["capture", "--output", "missing/report"], "can't write missing/report: "),
                (["capture", "--output", "./capture"], "is a capture to read, not to write"),
                (["capture", "--nosuch"], "--nosuch"),
                (["capture", "--plugin", "missing.dll"], "can't load the plug-in: "),
                ([], "CAPTURE is required")):
            with self.subTest(arguments):
                result = self.replay(*arguments)
                self.assertEqual(result.returncode, 2)
                self.assertIn(reason, result.stderr.decode())

    def test_a_missing_tshark(self):
        self.copy("nbiot_attach.pcapng")
        for arguments, reason in ((["capture"], "no tshark on PATH; "),
                                  (["capture", "--tshark-directory", "nowhere"],
                                   "tshark not found from path or default installation")):
            with self.subTest(arguments):
                result = self.replay(*arguments, tshark=False)
                self.assertEqual(result.returncode, 2)
                self.assertIn(reason, result.stderr.decode())

    def test_a_capture_that_breaks_off(self):
        self.copy("broken/cut.pcapng")
        self.assertEqual(self.replay("capture").returncode, 2)

    def test_help(self):
        self.assertEqual(self.replay("--help", tshark=False).returncode, 0)

    def first_line(self, then, *arguments):
        self.copy("nbiot_attach.pcapng")
        return self.windows(FIRST_LINE, then, "capture", "Z:" + str(REPLAY), "-",
                            "--tshark-directory", TSHARK, *arguments)

    def test_a_live_capture(self):
        result = self.first_line("close", "--json")
        self.assertEqual(result.stderr, b"8 records, 0 failed\nstatus 0\n")
        self.assertEqual(result.stdout.count(b"\n"), 8)

    def test_ctrl_c(self):
        result = self.first_line("interrupt", "--json")
        self.assertEqual(result.stderr, b"8 records, 0 failed\nstatus C000013A\n")
        self.assertEqual(result.stdout.count(b"\n"), 8)

    def test_a_reader_that_goes_away(self):
        result = self.first_line("leave")
        self.assertEqual(result.stderr, b"status 2\n")

    def test_a_closed_standard_output(self):
        self.copy("nbiot_attach.pcapng")
        result = subprocess.run(
            ["bash", "-c", 'exec "$@" >&-', "-", *WINE, REPLAY, "--json", "--tshark-directory", TSHARK,
             "capture"], cwd=self.folders[0], stderr=subprocess.PIPE, check=False)
        self.assertEqual(result.stderr, b"kivra-replay: can't write the report: Bad file descriptor\n")
        self.assertEqual(result.returncode, 2)

    def test_that_only_windows_is_needed(self):
        for file, libraries in ((REPLAY, {"KERNEL32.dll", "msvcrt.dll", "SHELL32.dll"}),
                                (BUILD / "kivra-tshark-sink.dll", {"KERNEL32.dll", "msvcrt.dll"})):
            listing = subprocess.run([OBJDUMP, "-p", file], capture_output=True, text=True,
                                     check=True).stdout
            self.assertEqual(set(re.findall(r"DLL Name: (.*)", listing)), libraries)


if __name__ == "__main__":
    unittest.main()
