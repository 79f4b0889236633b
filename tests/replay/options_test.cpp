#include "replay/options.h"

#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

std::variant<options, std::string> read(const std::vector<std::string>& arguments) {
    return read_command_line(arguments);
}

TEST(command_line, needs_only_a_capture) {
    const auto wanted = std::get<options>(read({"a.pcapng"}));
    EXPECT_THAT(wanted.captures, ElementsAre("a.pcapng"));
    EXPECT_EQ(wanted.profile, "kivra-profile.json");
    EXPECT_EQ(wanted.plugin, "");
    EXPECT_EQ(wanted.tshark_directory, "");
    EXPECT_EQ(wanted.report, "");
    EXPECT_EQ(wanted.output, "");
    EXPECT_FALSE(wanted.session);
    EXPECT_FALSE(wanted.json);
    EXPECT_FALSE(wanted.quiet);
}

TEST(command_line, takes_a_slash_for_the_begin_of_a_path) {
    const auto wanted = std::get<options>(read({"/captures/x.pcap", "/json"}));
    EXPECT_THAT(wanted.captures, ElementsAre("/captures/x.pcap", "/json"));
    EXPECT_FALSE(wanted.json);
}

TEST(command_line, takes_all_options_and_captures_in_any_order) {
    const auto wanted =
        std::get<options>(read({"first file.pcap", "--plugin", "p.so", "--session",
                                "--tshark-directory=/t s", "--json", "--quiet", "--output", "o.txt",
                                "--profile", "out.json", "--report", "r.html", "b.pcapng"}));
    EXPECT_EQ(wanted.report, "r.html");
    EXPECT_THAT(wanted.captures, ElementsAre("first file.pcap", "b.pcapng"));
    EXPECT_EQ(wanted.plugin, "p.so");
    EXPECT_TRUE(wanted.session);
    EXPECT_EQ(wanted.tshark_directory, "/t s");
    EXPECT_EQ(wanted.profile, "out.json");
    EXPECT_EQ(wanted.output, "o.txt");
    EXPECT_TRUE(wanted.json);
    EXPECT_TRUE(wanted.quiet);
}

TEST(command_line, takes_captures_behind_an_option_that_may_be_repeated) {
    const auto wanted = std::get<options>(
        read({"--user-dlt", "149=a", "1", "2", "--user-dlt=150=b", "3", "4", "--tshark-option",
              "-n", "5", "6", "--tshark-option=-l", "7", "8"}));
    EXPECT_THAT(wanted.captures, ElementsAre("1", "2", "3", "4", "5", "6", "7", "8"));
    EXPECT_THAT(wanted.extraction.tshark_options, ElementsAre("-n", "-l"));
    ASSERT_EQ(wanted.extraction.user_link_types.size(), 2U);
    EXPECT_EQ(wanted.extraction.user_link_types[0].number, 149);
    EXPECT_EQ(wanted.extraction.user_link_types[1].number, 150);
}

TEST(command_line, takes_each_capture_as_a_trace_of_its_own) {
    const auto wanted = std::get<options>(
        read({"--each", "--recursive", "--jobs", "3", "--report", "pages", "lab"}));
    EXPECT_EQ(wanted.report, "pages");
    EXPECT_TRUE(wanted.each);
    EXPECT_TRUE(wanted.recursive);
    EXPECT_EQ(wanted.jobs, 3U);
    EXPECT_EQ(wanted.profile, "");
    EXPECT_EQ(wanted.summary, "");
}

TEST(command_line, refuses_for_each_capture_what_is_of_one_stream) {
    for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{
             {"--json"}, {"--all"}, {"--report", "pages", "--compare", "b.pcapng"}}) {
        auto arguments = wrong;
        arguments.insert(arguments.end(), {"--each", "a.pcapng"});
        EXPECT_THAT([&] { read(arguments); },
                    ThrowsMessage<std::runtime_error>(
                        AllOf(HasSubstr(wrong.size() > 2 ? "--compare" : wrong.front()),
                              HasSubstr("one stream of records"))));
    }
    EXPECT_THAT(
        [] {
            read({"--each", "-"});
        },
        ThrowsMessage<std::runtime_error>(HasSubstr("standard input")));
}

TEST(command_line, takes_what_is_for_each_capture_only_with_each) {
    EXPECT_THAT(
        [] {
            read({"--recursive", "lab"});
        },
        ThrowsMessage<std::runtime_error>(HasSubstr("--recursive requires --each")));
    EXPECT_THAT(
        [] {
            read({"--jobs", "2", "lab"});
        },
        ThrowsMessage<std::runtime_error>(HasSubstr("--jobs requires --each")));
    EXPECT_THAT(
        [] {
            read({"--from-tables", "a.csv"});
        },
        ThrowsMessage<std::runtime_error>(HasSubstr("--from-tables requires --each")));
    EXPECT_THAT(
        [] {
            read({"--watch", "lab"});
        },
        ThrowsMessage<std::runtime_error>(HasSubstr("--watch requires --each")));
}

TEST(command_line, refuses_for_tables_what_is_of_captures_that_are_run) {
    EXPECT_TRUE(std::get<options>(read({"--each", "--from-tables", "a.csv"})).from_tables);
    for (const std::vector<std::string>& wrong :
         std::vector<std::vector<std::string>>{{"--recursive"},
                                               {"--watch"},
                                               {"--jobs", "2"},
                                               {"--summary", "s"},
                                               {"--profile", "p"},
                                               {"--plugin", "p.so"},
                                               {"--tshark-directory", "/"},
                                               {"--user-dlt", "149=mac-lte-framed"},
                                               {"--tshark-option", "-n"}}) {
        auto arguments = wrong;
        arguments.insert(arguments.end(), {"--each", "--from-tables", "a.csv"});
        EXPECT_THAT(
            [&] { read(arguments); },
            ThrowsMessage<std::runtime_error>(
                wrong.front() + " is for captures that are run, and --from-tables runs none"));
    }
}

TEST(command_line, takes_one_folder_and_a_table_to_watch) {
    EXPECT_TRUE(std::get<options>(read({"--each", "--watch", "lab", "--table", "t.csv"})).watch);
    EXPECT_THAT(
        [] {
            read({"--each", "--watch", "lab"});
        },
        ThrowsMessage<std::runtime_error>(
            "--watch needs --table, which says what captures are done"));
    EXPECT_THAT(
        [] {
            read({"--each", "--watch", "lab", "cellar", "--table", "t.csv"});
        },
        ThrowsMessage<std::runtime_error>("--watch is for one folder"));
    EXPECT_THAT(
        [] {
            read({"--each", "--watch", "lab", "--table", "t.csv", "--profile", "p"});
        },
        ThrowsMessage<std::runtime_error>(HasSubstr("--profile is not for --watch")));
    EXPECT_THAT(
        [] {
            read({"--each", "--watch", "lab", "--table", "t.csv", "--report", "r"});
        },
        ThrowsMessage<std::runtime_error>(
            "--report is not for --watch; make one of its table with --from-tables"));
}

TEST(command_line, takes_short_forms) {
    const auto wanted = std::get<options>(read({"-q", "-o", "o.txt", "a.pcapng"}));
    EXPECT_TRUE(wanted.quiet);
    EXPECT_EQ(wanted.output, "o.txt");
}

TEST(command_line, takes_a_dash_for_a_capture_once) {
    EXPECT_THAT(std::get<options>(read({"-", "--json", "a.pcapng"})).captures,
                ElementsAre("-", "a.pcapng"));
    EXPECT_THAT(
        [] {
            read({"-", "-"});
        },
        ThrowsMessage<std::runtime_error>("the standard input can be read only once"));
}

TEST(command_line, has_a_session_with_a_plugin_only) {
    EXPECT_THAT(
        [] {
            read({"a.pcap", "--session"});
        },
        ThrowsMessage<std::runtime_error>(AllOf(HasSubstr("--plugin"), HasSubstr("--session"))));
}

TEST(command_line, takes_a_capture_whose_name_looks_like_an_option_behind_two_dashes) {
    EXPECT_THAT(std::get<options>(read({"--", "--profile"})).captures, ElementsAre("--profile"));
}

TEST(command_line, asks_for_the_version) {
    EXPECT_EQ(std::get<std::string>(read({"--version"})), "kivra-replay " KIVRA_VERSION "\n");
}

TEST(command_line, asks_for_help) {
    EXPECT_THAT(
        std::get<std::string>(read({"--help"})),
        AllOf(HasSubstr("CAPTURE"), HasSubstr("--plugin FILE"), HasSubstr("--tshark-directory DIR"),
              HasSubstr("--profile FILE"), HasSubstr("--session"), HasSubstr("--json"),
              HasSubstr("-q,--quiet"), HasSubstr("-o,--output FILE"),
              HasSubstr("kivra-profile.json"), HasSubstr("Exit status:")));
}

TEST(command_line, has_a_page_in_a_file_only) {
    EXPECT_THAT(
        [] {
            read({"a.pcap", "--report", "-"});
        },
        ThrowsMessage<std::runtime_error>(
            AllOf(HasSubstr("--report"), HasSubstr("must be a file"))));
}

TEST(command_line, compares_in_a_page) {
    const auto wanted = std::get<options>(
        read({"--report", "r.html", "--compare", "b1.pcap", "a.pcap", "--compare", "b2.pcap"}));
    EXPECT_THAT(wanted.captures, ElementsAre("a.pcap"));
    EXPECT_THAT(wanted.compared, ElementsAre("b1.pcap", "b2.pcap"));
    EXPECT_THAT(
        [] {
            read({"a.pcap", "--compare", "b.pcap"});
        },
        ThrowsMessage<std::runtime_error>(AllOf(HasSubstr("--compare"), HasSubstr("--report"))));
    EXPECT_THAT(
        [] {
            read({"-", "--report", "r.html", "--compare", "-"});
        },
        ThrowsMessage<std::runtime_error>("the standard input can be read only once"));
}

TEST(command_line, is_wrong_without_a_capture) {
    EXPECT_THAT([] { read({}); },
                ThrowsMessage<std::runtime_error>("CAPTURE is required (see kivra-replay --help)"));
}

TEST(command_line, is_wrong_with_an_unknown_option) {
    EXPECT_THAT(
        [] {
            read({"a.pcap", "--nosuch"});
        },
        ThrowsMessage<std::runtime_error>(HasSubstr("--nosuch")));
}

TEST(command_line, is_wrong_with_an_option_that_lacks_its_value) {
    EXPECT_THAT(
        [] {
            read({"a.pcap", "--profile"});
        },
        ThrowsMessage<std::runtime_error>(HasSubstr("--profile")));
}

TEST(command_line, is_wrong_with_an_empty_value) {
    for (const auto* option :
         {"--plugin=", "--tshark-directory=", "--profile=", "--output=", "--report="}) {
        EXPECT_THAT(
            [&] {
                read({"a.pcap", option, ""});
            },
            ThrowsMessage<std::runtime_error>(HasSubstr("must not be empty")));
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
