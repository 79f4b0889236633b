"""scripts/check-docs, scripts/check-includes and scripts/mutate --check find what they are there to find."""
import json
import pathlib
import subprocess
import tempfile
import unittest

SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "scripts"

TREE = {
    "docs/architecture.md": "| `upper/` | above | `lower/`, the ABI | `nlohmann/` |\n"
                            "| `lower/` | below | nothing | the system's |\n",
    "docs/host-guide.md": "", "docs/result-document.md": "", "docs/troubleshooting.md": "",
    "docs/profile.md": "| `a` | `1` | |\n",
    "tests/data/profile_of_defaults.json": json.dumps({"a": "1"}),
    ".ci/run": "scripts/test\n",
    "scripts/test": 'for preset in release; do\n    cmake --preset "$preset" >/dev/null\ndone\n',
}


class scratch_tree(unittest.TestCase):
    def output_of(self, script, *options, **files):
        """What the script says about the tree above with further or other files ("a__b" is a/b)."""
        with tempfile.TemporaryDirectory() as folder:
            for name, content in {**TREE, **files}.items():
                file = pathlib.Path(folder, name)
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(content)
            run = subprocess.run([SCRIPTS / script, *options, folder], capture_output=True, text=True,
                                 check=False)
        self.assertEqual(run.stderr, "")
        self.assertEqual(run.returncode, 1 if run.stdout else 0)
        return run.stdout


class mutants(scratch_tree):
    FIRST = "a-name\nparser/file.cpp\n- one\n+ two\n"

    def complaints(self, mutants, source="one\nother\n"):
        return self.output_of("mutate", "--check", **{
            "parser/file.cpp": source, "tests/mutants/parser.txt": mutants})

    def test_may_break_one_place_each(self):
        self.assertEqual(self.complaints(f"{self.FIRST}\n# more\nb-name\nparser/file.cpp\n- other\n+\n"), "")

    def test_break_several_lines(self):
        self.assertEqual(self.complaints("a\nparser/file.cpp\n- one\n- other\n+ two\n"), "")

    def test_must_fit_the_source(self):
        self.assertIn("stands 0 times", self.complaints(self.FIRST, "three\n"))
        self.assertIn("stands 2 times", self.complaints(self.FIRST, "one one\n"))
        self.assertIn("stands 0 times", self.complaints(self.FIRST.replace("file", "no_file")))

    def test_must_change_something(self):
        self.assertIn("is no mutant", self.complaints("a\nparser/file.cpp\n- one\n+ one\n"))

    def test_are_written_by_the_rules(self):
        for stanza in ("a\n", "a b\nparser/file.cpp\n- one\n+ two\n", "a\nparser/file.cpp\n- one\ntwo\n"):
            self.assertIn("is no mutant", self.complaints(stanza))

    def test_are_of_a_module_with_tests(self):
        self.assertIn("no tests are known", self.complaints("a\nREADME.md\n- one\n+ two\n"))

    def test_have_names_of_their_own(self):
        self.assertIn("a-name is the name of two", self.complaints(f"{self.FIRST}\n{self.FIRST}"))


class includes(scratch_tree):
    def output_of_file(self, name, line):
        return self.output_of("check-includes", **{name: line})

    def test_may_follow_the_table(self):
        for line in ('#include "lower/a.h"', '#include "upper/a.h"', "#include <kivra/a.h>",
                     "#include <nlohmann/json.hpp>", "#include <string>", "#include <stdint.h>"):
            self.assertEqual(self.output_of_file("upper/a.cpp", line), "", line)
        self.assertEqual(self.output_of_file("lower/a.cpp", "#include <sys/wait.h>"), "")

    def test_beyond_the_table_are_found(self):
        for file, line in (("lower/a.cpp", '#include "upper/a.h"'),
                           ("lower/a.h", "#include <nlohmann/json.hpp>"),
                           ("lower/a.h", "#include <kivra/a.h>"),
                           ("upper/a.cpp", "#include <unistd.h>"),
                           ("upper/a.cpp", "# include <sys/wait.h>"),
                           ("upper/a.cpp", "#ifdef _WIN32"),
                           ("other/a.cpp", "")):
            self.assertIn(file, self.output_of_file(file, line), line)

    def test_of_a_part_of_a_module_are_told_from_those_of_the_whole(self):
        table = ("| `a/` | | `a/b/` | nothing |\n"
                 "| `a/b/` | | nothing | nothing |\n"
                 "| `c/` | | `a/` | nothing |\n")
        def output_of(file, line):
            return self.output_of("check-includes", **{"docs/architecture.md": table, file: line})
        self.assertEqual(output_of("a/x.cpp", '#include "a/b/y.h"'), "")
        self.assertIn("a/b/x.cpp", output_of("a/b/x.cpp", '#include "a/y.h"'))
        self.assertIn("c/x.cpp", output_of("c/x.cpp", '#include "a/b/y.h"'))

    def test_in_a_circle_are_found(self):
        self.assertIn("upper/ may include itself", self.output_of("check-includes", **{
            "docs/architecture.md": "| `upper/` | | `middle/` | nothing |\n"
                                    "| `middle/` | | `lower/` | nothing |\n"
                                    "| `lower/` | | `upper/` | nothing |\n"}))

    def test_are_counted_by_units(self):
        files = {f"lower/{name}{end}": "" for name in "abcdefghijkl"
                 for end in (".h", "_posix.cpp", "_windows.cpp")}
        self.assertEqual(self.output_of("check-includes", **files), "")
        self.assertIn("13 units", self.output_of("check-includes", **files, **{"lower/m.h": ""}))


class documents(scratch_tree):
    def complaint_about(self, text, **files):
        return self.output_of("check-docs", **{"a.md": text, **files})

    def test_that_are_right_pass(self):
        self.assertEqual(self.complaint_about(
            "# A b\n[x](#a-b) [y](docs/host-guide.md) `cmake --preset release` `scripts/test`\n"
            "<!-- from: c.c part -->\n```c\nint a;\n```\n"
            "<!-- run -->\n```sh\nprintf '1\\n2\\n3\\n'\n```\n<!-- prints -->\n```\n1\n...\n3\n```\n"
            "```text\nplain\n```\n",
            **{"c.c": "/* [part] */\n    int a;\n/* [/part] */\n"}), "")

    def test_with_a_block_of_unknown_origin_are_found(self):
        self.assertIn("a.md:1: a block", self.complaint_about("```sh\ntrue\n```\n"))
        self.assertIn("a.md:1: a command", self.complaint_about("```text\ncmake -B x\n```\n"))

    def test_with_a_snippet_that_differs_are_found(self):
        text = "<!-- from: c.c part -->\n```c\nint b;\n```\n"
        self.assertIn("differs", self.complaint_about(text, **{"c.c": "[part]\nint a;\n[/part]\n"}))
        self.assertIn("no [part]", self.complaint_about(text, **{"c.c": ""}))
        self.assertIn("no c.c", self.complaint_about(text))

    def test_with_a_result_that_differs_are_found(self):
        text = '<!-- result: t 1 -->\n```json\n{\n    "a": 1\n}\n```\n'
        for value, expected in ((1, ""), (2, "differs")):
            trace = json.dumps([{"result": {"a": value}}])
            output = self.complaint_about(text, **{"tests/data/t.json": trace})
            self.assertIn(expected, output)
            self.assertEqual(bool(expected), bool(output))

    def test_with_a_command_that_fails_are_found(self):
        self.assertIn("ends with 1", self.complaint_about("<!-- run -->\n```sh\nfalse\ntrue\n```\n"))

    def test_with_an_output_that_was_not_printed_are_found(self):
        self.assertIn("was not printed", self.complaint_about(
            "<!-- run -->\n```sh\necho 1\n```\n<!-- prints -->\n```\n2\n```\n"))

    def test_with_a_command_that_nothing_runs_are_found(self):
        for command in ("cmake --preset debug", "ctest --preset release", "scripts/none",
                        "cmake --preset release && cmake --build x"):
            self.assertIn("a.md:1: ", self.complaint_about(f"`{command}`\n"), command)
        self.assertIn("no test runs", self.complaint_about("`scripts/lone`\n",
                                                           **{"scripts/lone": ""}))

    def test_with_a_dead_link_are_found(self):
        self.assertIn("leads nowhere", self.complaint_about("[x](b.md)\n"))
        self.assertIn("no such heading", self.complaint_about("[x](docs/host-guide.md#b)\n"))

    def test_that_lack_a_text_of_the_sources_are_found(self):
        source = {"sink/a.cpp": 'throw std::runtime_error("no way"); /* "a b" in a comment */'}
        self.assertIn("no way", self.complaint_about("", **source))
        self.assertEqual(self.complaint_about("", **source, **{
            "docs/troubleshooting.md": "| `no way` |\n"}), "")

    def test_need_no_text_of_the_sources_without_words(self):
        self.assertEqual(self.complaint_about("", **{"sink/a.cpp": r'const char* head = "[\n  {";'}), "")

    def test_that_lack_a_member_of_the_profile_are_found(self):
        self.assertIn("`a`", self.complaint_about("", **{"docs/profile.md": "| `a` | `2` |\n"}))


if __name__ == "__main__":
    unittest.main()
