// kivra-replay --each as its users run it.
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/replay/sample_captures.h"
#include "tests/support/files.h"
#include "tests/support/privileges_posix.h"
#include "tests/support/process.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* ltem_line = "ltem_attach_psm.pcapng: ok, 22 records, network 262/02, PSM";
constexpr const char* nbiot_line = "nbiot_attach.pcapng: ok, 8 records, network 232/01, PSM";

class each_capture : public scratch_test {
  protected:
    each_capture() {
        fs::create_directories("lab/night");
        fs::create_directory("tmp");
        fs::copy_file(capture_file("ltem_attach_psm.pcapng"), "lab/ltem_attach_psm.pcapng");
        fs::copy_file(capture_file("nbiot_attach.pcapng"), "lab/night/nbiot_attach.pcapng");
    }

    /// With its temporary files in the folder "tmp".
    static process_result run_each(std::vector<std::string> arguments,
                                   const process_setting& setting = {}) {
        arguments.insert(arguments.begin(), {"/usr/bin/env", "TMPDIR=tmp", KIVRA_REPLAY, "--each"});
        return run_process(arguments, setting);
    }
};

TEST_F(each_capture, is_a_trace_of_its_own_with_a_line_in_the_order_given) {
    const auto result = run_each({"lab/night", "lab", "lab/night/nbiot_attach.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.output, std::string("lab/night/") + nbiot_line + " granted\n" + "lab/" +
                                 ltem_line + " granted\n" + "lab/night/" + nbiot_line +
                                 " granted\n"
                                 "\ncaptures\n    ok                         3\n"
                                 "\nPSM\n    granted                    3\n");
}

TEST_F(each_capture, leaves_nothing_behind_unless_told_to) {
    EXPECT_EQ(run_each({"lab", "--recursive", "-q"}).status, 0);
    EXPECT_THAT(names_in("."), ElementsAre("lab", "tmp"));
    EXPECT_THAT(names_in("tmp"), IsEmpty());
    EXPECT_THAT(names_in("lab"), ElementsAre("ltem_attach_psm.pcapng", "night"));
}

TEST_F(each_capture, leaves_nothing_behind_when_nobody_reads_the_lines) {
    constexpr int ended_by_sigpipe = -13;
    const auto result = run_each({"lab"}, {.output_has_no_reader = true});
    EXPECT_EQ(result.status, ended_by_sigpipe);
    EXPECT_EQ(result.error, "");
    EXPECT_THAT(names_in("tmp"), IsEmpty());
}

TEST_F(each_capture, keeps_summaries_and_profiles_that_are_those_of_a_run_of_its_own) {
    ASSERT_EQ(run_each({"lab", "--recursive", "-q", "--summary", "s", "--profile", "p"}).status, 0);
    EXPECT_THAT(names_in("s"), ElementsAre("ltem_attach_psm.pcapng.summary.json", "night"));
    EXPECT_THAT(names_in("p"), ElementsAre("ltem_attach_psm.pcapng.profile.json", "night"));
    ASSERT_EQ(
        run_replay({"-q", "--summary", "own.json", "--profile",
                    "p/night/nbiot_attach.pcapng.profile.json", "lab/night/nbiot_attach.pcapng"})
            .status,
        0);
    EXPECT_EQ(read_file("s/night/nbiot_attach.pcapng.summary.json"), read_file("own.json"));
}

TEST_F(each_capture, costs_only_itself_when_it_is_broken) {
    const auto image = read_file("lab/ltem_attach_psm.pcapng");
    write_file("lab/cut.pcapng", image.substr(0, 1500));
    write_file("lab/junk.pcap", "no capture\n");
    const auto result = run_each({"missing.pcap", "lab"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output,
              std::string("missing.pcap: unreadable\n"
                          "lab/cut.pcapng: broken off, 15 records, network 262/02, PSM granted\n"
                          "lab/junk.pcap: unreadable, 0 records\n"
                          "lab/") +
                  ltem_line +
                  " granted\n"
                  "\ncaptures\n"
                  "    broken off                 1\n"
                  "    ok                         1\n"
                  "    unreadable                 2\n"
                  "\nPSM\n"
                  "    granted                    2\n");
    EXPECT_THAT(result.error, AllOf(HasSubstr("kivra-replay: can't read missing.pcap: "),
                                    HasSubstr("kivra-replay: can't read lab/cut.pcapng: "),
                                    HasSubstr("kivra-replay: can't read lab/junk.pcap: ")));
}

TEST_F(each_capture, is_left_out_where_a_table_can_not_name_it) {
    fs::copy_file("lab/ltem_attach_psm.pcapng", "lab/a\xff.pcapng");
    const auto result = run_each({"lab", "--table", "t.csv", "--report", "pages"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, StartsWith(std::string("lab/") + ltem_line));
    EXPECT_EQ(result.error, "kivra-replay: lab/a\\xff.pcapng is left out: its name is not UTF-8\n");
    EXPECT_THAT(read_file("t.csv"), Not(HasSubstr("\xff")));
    EXPECT_THAT(names_in("pages"), ElementsAre("index.html", "ltem_attach_psm.pcapng.html"));
}

TEST_F(each_capture, in_a_folder_that_can_not_be_read_is_left_out) {
    fs::permissions("tmp", fs::perms::all);
    fs::permissions("lab/night", fs::perms::none);
    const ordinary_user user;
    const auto result = run_each({"lab", "--recursive"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, StartsWith(std::string("lab/") + ltem_line));
    EXPECT_EQ(result.error, "kivra-replay: can't read lab/night: Permission denied\n");
}

TEST_F(each_capture, ends_with_2_when_none_can_be_read) {
    EXPECT_EQ(run_each({"missing.pcap", "none.pcap"}).status, 2);
}

TEST_F(each_capture, does_not_take_a_summary_that_stood_there_before) {
    fs::create_directory("s");
    write_file("s/missing.pcap.summary.json", R"({"records": {"records": 5}})");
    const auto result = run_each({"missing.pcap", "--summary", "s"});
    EXPECT_THAT(result.output, StartsWith("missing.pcap: unreadable\n"));
    EXPECT_THAT(names_in("s"), IsEmpty());
}

TEST_F(each_capture, is_run_with_the_options_of_the_whole) {
    const auto result = run_each({"lab", "--plugin", "missing.so", "--session"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.error, HasSubstr("missing.so"));
    EXPECT_EQ(
        run_each({"lab", "--tshark-directory", "/usr/bin", "--tshark-option=-d",
                  "--tshark-option=udp.port==4730,gsmtap", "--user-dlt", "149=mac-lte-framed"})
            .status,
        0);
}

TEST_F(each_capture, is_told_of_on_a_terminal_while_it_runs) {
    const auto result = run_each({"lab"}, {.error_is_terminal = true});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, StartsWith(std::string("lab/") + ltem_line));
    EXPECT_EQ(run_each({"lab", "-q"}, {.error_is_terminal = true}).error, "");
}

TEST_F(each_capture, is_refused_where_two_would_have_one_file) {
    const auto result =
        run_each({"lab/ltem_attach_psm.pcapng", "lab", "--recursive", "--profile", "p"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error,
              "kivra-replay: lab/ltem_attach_psm.pcapng and lab/ltem_attach_psm.pcapng would have "
              "the same file in the folder of --summary, --profile or --report\n");
    EXPECT_FALSE(fs::exists("p"));
}

TEST_F(each_capture, is_not_written_over) {
    const auto image = read_file("lab/ltem_attach_psm.pcapng");
    const auto result = run_each({"lab", "-o", "lab/ltem_attach_psm.pcapng"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.error, EndsWith(" is a capture to read, not to write\n"));
    EXPECT_EQ(read_file("lab/ltem_attach_psm.pcapng"), image);
}

TEST_F(each_capture, is_a_row_of_the_table_that_is_not_written_over_a_capture) {
    EXPECT_EQ(run_each({"lab", "-q", "--table", "lab.csv"}).status, 0);
    EXPECT_THAT(
        read_file("lab.csv"),
        AllOf(StartsWith("capture,status,error,begin,"),
              HasSubstr("\r\nlab/ltem_attach_psm.pcapng,ok,,2025-11-24T16:00:00.000000Z,")));
    EXPECT_EQ(run_each({"lab", "--table", "lab/ltem_attach_psm.pcapng"}).status, 2);
    EXPECT_EQ(run_each({"lab", "--table", "missing/lab.csv"}).status, 2);
}

TEST_F(each_capture, has_a_page_that_is_that_of_a_run_of_its_own) {
    ASSERT_EQ(
        run_each({"lab", "--recursive", "-q", "--report", "made/pages", "--profile", "p"}).status,
        0);
    EXPECT_THAT(names_in("made/pages"),
                ElementsAre("index.html", "ltem_attach_psm.pcapng.html", "night"));
    ASSERT_EQ(run_replay({"-q", "--profile", "p/night/nbiot_attach.pcapng.profile.json", "--report",
                          "own.html", "lab/night/nbiot_attach.pcapng"})
                  .status,
              0);
    EXPECT_EQ(read_file("made/pages/night/nbiot_attach.pcapng.html"), read_file("own.html"));
}

TEST_F(each_capture, has_the_same_page_and_summary_in_every_run_that_keeps_no_profile) {
    for (const char* run : {"1", "2"}) {
        ASSERT_EQ(run_each({"lab", "-q", "--report", run, "--summary", run}).status, 0);
    }
    for (const char* ending : {".html", ".summary.json"}) {
        const std::string name = std::string("/ltem_attach_psm.pcapng") + ending;
        EXPECT_EQ(read_file('1' + name), read_file('2' + name));
    }
    const auto profile = read_json("1/ltem_attach_psm.pcapng.summary.json").at("profile");
    EXPECT_FALSE(profile.contains("file"));
    EXPECT_EQ(profile.at("written"), true);
}

TEST_F(each_capture, is_in_the_overview_and_in_the_table_with_its_page) {
    ASSERT_EQ(
        run_each({"lab", "--recursive", "-q", "--report", "pages", "--table", "t.csv"}).status, 0);
    const auto overview = read_file("pages/index.html");
    EXPECT_THAT(overview, AllOf(HasSubstr("[\"lab/ltem_attach_psm.pcapng\",\"ok\",0,"),
                                HasSubstr(",\"ltem_attach_psm.pcapng.html\"],\n"),
                                HasSubstr("[\"lab/night/nbiot_attach.pcapng\",0,0,"),
                                HasSubstr(",\"night/nbiot_attach.pcapng.html\"]\n]"),
                                HasSubstr("\"tshark\":\"TShark (Wireshark) "),
                                HasSubstr("\"version\":\"" KIVRA_VERSION "\"")));
    EXPECT_THAT(read_file("t.csv"), AllOf(HasSubstr(",yes,ltem_attach_psm.pcapng.html\r\n"),
                                          HasSubstr(",yes,night/nbiot_attach.pcapng.html\r\n")));
}

TEST_F(each_capture, has_no_page_where_none_was_written) {
    fs::create_directory("pages");
    write_file("pages/missing.pcap.html", "of before");
    const auto result = run_each({"missing.pcap", "lab", "--report", "pages", "--table", "t.csv"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(names_in("pages"), ElementsAre("index.html", "ltem_attach_psm.pcapng.html"));
    EXPECT_THAT(read_file("t.csv"), HasSubstr("\r\nmissing.pcap,unreadable,"));
    EXPECT_THAT(read_file("t.csv"), Not(HasSubstr("missing.pcap.html")));
}

TEST_F(each_capture, does_not_take_a_page_that_stood_there_before) {
    ASSERT_EQ(run_each({"lab", "-q", "--report", "pages"}).status, 0);
    EXPECT_EQ(run_each({"lab", "-q", "--report", "pages", "--plugin", "missing.so"}).status, 2);
    EXPECT_THAT(names_in("pages"), ElementsAre("index.html"));
}

TEST_F(each_capture, leaves_no_part_of_a_page_when_its_process_is_killed) {
    write_tshark("bin",
                 "if [ \"$1\" = --version ]; then exec /usr/bin/tshark --version; fi\n"
                 "ls pages > seen\n"
                 "kill -KILL $PPID\n");
    const auto result = run_each({"lab", "--report", "pages", "--tshark-directory", "bin"});
    EXPECT_THAT(result.output, StartsWith("lab/ltem_attach_psm.pcapng: crashed\n"));
    EXPECT_EQ(read_file("seen"), "index.html\nltem_attach_psm.pcapng.html\n");
    EXPECT_THAT(names_in("pages"), ElementsAre("index.html"));
}

TEST_F(each_capture, is_refused_where_its_page_would_be_the_overview) {
    write_file("index", "");
    const auto result = run_each({"index", "--report", "pages"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error,
              "kivra-replay: the page of index would be the overview's, index.html\n");
    EXPECT_FALSE(fs::exists("pages"));
}

TEST_F(each_capture, is_not_run_where_two_files_would_be_one) {
    fs::create_directory("p");
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--table", "o", "--output", "./tmp/../o"},
          {"--table", "p/index.html", "--report", "p"},
          {"--output", "p/index.html", "--report", "p"}}) {
        auto arguments = options;
        arguments.emplace_back("lab");
        const auto result = run_each(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.error, StartsWith("kivra-replay: can't write two files to "));
        EXPECT_FALSE(fs::exists("o"));
        EXPECT_THAT(names_in("p"), IsEmpty());
    }
}

TEST_F(each_capture, is_not_run_where_a_capture_s_file_would_replace_another_one) {
    fs::create_directory_symlink("lab", "link");
    const auto image = read_file("lab/ltem_attach_psm.pcapng");
    for (const std::string ending : {".html", ".summary.json", ".profile.json"}) {
        const auto second = "lab/ltem_attach_psm.pcapng" + ending;
        write_file(second, image);
        const auto result = run_each({"lab/ltem_attach_psm.pcapng", second, "--report", "link",
                                      "--summary", "link", "--profile", "link"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error,
                  "kivra-replay: a file of lab/ltem_attach_psm.pcapng would replace "
                  "link/ltem_attach_psm.pcapng" +
                      ending + "\n");
        EXPECT_EQ(read_file(second), image);
        fs::remove(second);
    }
}

TEST_F(each_capture, is_not_run_where_its_file_would_replace_the_table_or_the_output) {
    for (const std::string option : {"--table", "--output"}) {
        const auto result =
            run_each({"lab", "--summary", "s", option, "s/ltem_attach_psm.pcapng.summary.json"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error,
                  "kivra-replay: a file of lab/ltem_attach_psm.pcapng would replace "
                  "s/ltem_attach_psm.pcapng.summary.json\n");
        EXPECT_FALSE(fs::exists("s"));
    }
}

TEST_F(each_capture, is_told_of_with_the_file_that_can_not_be_written) {
    for (const std::string option : {"--table", "--output"}) {
        const auto result = run_each({"lab", option, "/dev/full"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error, "kivra-replay: can't write /dev/full: No space left on device\n");
    }
}

TEST_F(each_capture, is_refused_where_two_would_have_one_page) {
    EXPECT_THAT(run_each({"lab", "lab", "--report", "pages"}).error,
                HasSubstr("would have the same file"));
}

TEST_F(each_capture, is_not_written_over_by_the_overview) {
    const auto image = read_file("lab/ltem_attach_psm.pcapng");
    fs::rename("lab/ltem_attach_psm.pcapng", "lab/index.html");
    EXPECT_EQ(run_each({"lab/index.html", "--report", "lab"}).status, 2);
    EXPECT_EQ(read_file("lab/index.html"), image);
}

TEST_F(each_capture, is_not_run_where_the_overview_cannot_be_written) {
    const auto result = run_each({"lab", "--report", "lab/ltem_attach_psm.pcapng"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error,
              "kivra-replay: can't write lab/ltem_attach_psm.pcapng/index.html: Not a directory\n");
}

TEST_F(each_capture, is_not_run_without_a_tshark) {
    const auto result = run_each({"lab", "--tshark-directory", "lab"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(std::ranges::count(result.error, '\n'), 1);
}

class obstacle_to_captures : public each_capture {
  protected:
    obstacle_to_captures() { fs::copy_file("lab/ltem_attach_psm.pcapng", "lab/second.pcapng"); }

    /// Runs both, the second one after these commands.
    static process_result run_after(const std::string& commands,
                                    const std::vector<std::string>& options = {}) {
        write_tshark("bin", "[ \"$1\" != --version ] || exec /usr/bin/tshark --version\n" +
                                commands + "\nexec /usr/bin/tshark \"$@\"\n");
        fs::copy_file(KIVRA_REPLAY, "replay");
        std::vector<std::string> words{"./replay", "--each", "lab",      "--tshark-directory",
                                       "bin",      "--jobs", "1",        "-q",
                                       "--table",  "t.csv",  "--report", "pages"};
        words.insert(words.end(), options.begin(), options.end());
        return run_process(words);
    }

    static void expect_first_alone(const process_result& result, const std::string& why) {
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error, "kivra-replay: " + why + "\n");
        const auto table = read_file("t.csv");
        EXPECT_THAT(table, HasSubstr("lab/ltem_attach_psm.pcapng,ok,"));
        EXPECT_EQ(std::ranges::count(table, '\n'), 2);
        EXPECT_THAT(read_file("pages/index.html"), EndsWith("</html>\n"));
    }
};

TEST_F(obstacle_to_captures, ends_the_run_where_the_program_can_not_be_started) {
    const auto result = run_after("chmod a-x replay");
    expect_first_alone(result,
                       "can't start " + fs::absolute("replay").string() + ": Permission denied");
}

TEST_F(obstacle_to_captures, ends_the_run_where_there_is_no_tshark_any_more) {
    expect_first_alone(run_after("rm bin/tshark"),
                       "tshark not found from path or default installation location");
}

TEST_F(obstacle_to_captures, ends_the_run_where_the_process_can_not_write) {
    expect_first_alone(run_after("[ ! -e once ] || mkdir s/second.pcapng.summary.json; touch once",
                                 {"--summary", "s"}),
                       "can't write s/second.pcapng.summary.json: Is a directory");
}

TEST_F(obstacle_to_captures, ends_the_run_where_a_folder_can_not_be_made) {
    write_file("p", "");
    EXPECT_EQ(run_each({"lab", "--jobs", "1", "--profile", "p"}).error,
              "kivra-replay: can't write p/ltem_attach_psm.pcapng.profile.json: Not a directory\n");
}

TEST_F(obstacle_to_captures, ends_the_run_where_profiles_can_not_be_written) {
    fs::create_directory("p");
    fs::permissions("tmp", fs::perms::all);
    const ordinary_user user;
    EXPECT_EQ(run_each({"lab", "--jobs", "1", "--profile", "p"}).error,
              "kivra-replay: can't write p/ltem_attach_psm.pcapng.profile.json: "
              "Permission denied\n");
}

TEST_F(each_capture, is_reported_when_an_interruption_ends_the_others) {
    // The tshark for the second capture interrupts the run, and does not end before its input does.
    fs::copy("lab/night", "more");
    fs::rename("more/nbiot_attach.pcapng", "more/third.pcapng");
    write_tshark("bin",
                 "if [ \"$1\" = --version ]; then exec /usr/bin/tshark --version; fi\n"
                 "if [ -e interrupted ]; then exec cat >/dev/null; fi\n"
                 "if [ -e second ]; then touch interrupted; kill -INT \"$(cat run)\"; exec cat "
                 ">/dev/null; fi\n"
                 "touch second\n"
                 "exec /usr/bin/tshark \"$@\"\n");
    const auto result = run_process({"/bin/bash", "-c",
                                     "echo $$ > run; TMPDIR=tmp exec " KIVRA_REPLAY
                                     " --each --jobs 1 --tshark-directory bin --report pages"
                                     " lab lab/night more"});
    EXPECT_EQ(result.status, -2);
    EXPECT_EQ(result.output, std::string("lab/") + ltem_line +
                                 " granted\n"
                                 "\ninterrupted: 1 of 3 captures done\n"
                                 "\ncaptures\n    ok                         1\n"
                                 "\nPSM\n    granted                    1\n");
    EXPECT_THAT(read_file("pages/index.html"), HasSubstr("class=\"planned\">3</script>"));
    EXPECT_THAT(names_in("tmp"), IsEmpty());
}

/// Runs it with a tshark that sends it the signal until it has ended.
process_result run_each_against(const std::string& signal) {
    write_tshark("bin",
                 "ps -o ppid= $$ >child\n"
                 "while kill -" +
                     signal + " \"$(cat run)\" 2>/dev/null; do :; done\n");
    return run_process({"/bin/bash", "-c",
                        "echo $$ > run; TMPDIR=tmp exec " KIVRA_REPLAY
                        " --each --tshark-directory bin lab"});
}

TEST_F(each_capture, leaves_nothing_behind_however_often_it_is_interrupted) {
    EXPECT_EQ(run_each_against("INT").status, -SIGINT);
    EXPECT_THAT(names_in("tmp"), IsEmpty());
    EXPECT_EQ(kill(std::stoi(read_file("child")), 0), -1);
}

TEST_F(each_capture, leaves_nothing_behind_when_it_is_terminated) {
    const auto result = run_each_against("TERM");
    EXPECT_EQ(result.status, -SIGTERM);
    EXPECT_EQ(result.output, "\ninterrupted: 0 of 1 captures done\n");
    EXPECT_THAT(names_in("tmp"), IsEmpty());
    EXPECT_EQ(kill(std::stoi(read_file("child")), 0), -1);
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
