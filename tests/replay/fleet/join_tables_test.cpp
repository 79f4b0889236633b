// kivra-replay --each --from-tables as its users run it.
#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "replay/fleet/csv.h"
#include "replay/fleet/fleet_row.h"
#include "tests/replay/sample_captures.h"
#include "tests/support/files.h"
#include "tests/support/process.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::HasSubstr;
using testing::StartsWith;

std::string row_for(const std::string& capture, const std::string& error = "") {
    fleet_row row(fleet_columns().size());
    row[0] = capture;
    row[1] = error.empty() ? "ok" : "unreadable";
    row[2] = error;
    return csv_line({row.begin(), row.end()});
}

std::string table_of(const std::string& rows) {
    return csv_line(fleet_columns()) + rows;
}

class joined_tables : public scratch_test {
  protected:
    joined_tables() {
        write_file("a.csv", table_of(row_for("1.pcap") + row_for("2, \"new\"\r\nlab.pcap")));
        write_file("b.csv", table_of(row_for("0.pcap")));
        write_file("none.csv", table_of(""));
    }

    /// On a PATH without a tshark.
    static process_result join(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(),
                         {"/usr/bin/env", "PATH=/", KIVRA_REPLAY, "--each", "--from-tables"});
        return run_process(arguments);
    }

    static void expect_refused(const std::vector<std::string>& tables, const std::string& why) {
        auto arguments = tables;
        arguments.insert(arguments.begin(), {"--table", "out.csv"});
        const auto result = join(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.error, "kivra-replay: " + why + "\n");
        EXPECT_FALSE(fs::exists("out.csv"));
    }
};

TEST_F(joined_tables, are_what_one_run_would_have_written) {
    fs::create_directories("lab/night");
    fs::copy_file(capture_file("ltem_attach_psm.pcapng"), "lab/ltem.pcapng");
    fs::copy_file(capture_file("nbiot_attach.pcapng"), "lab/night/nbiot.pcapng");
    write_file("lab/night/junk.pcap", "no capture\n");
    const auto at_once =
        run_replay({"--each", "--recursive", "lab", "--table", "at_once.csv", "--jobs", "1"});
    run_replay({"--each", "lab", "--table", "first.csv"});
    run_replay({"--each", "lab/night", "--table", "second.csv"});
    const auto result = join({"--table", "joined.csv", "first.csv", "second.csv"});
    EXPECT_EQ(result.status, at_once.status);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, at_once.output);
    EXPECT_EQ(result.error, at_once.error);
    EXPECT_EQ(read_file("joined.csv"), read_file("at_once.csv"));
}

TEST_F(joined_tables, have_their_rows_in_the_order_given) {
    EXPECT_EQ(join({"b.csv", "none.csv", "a.csv", "-q", "--table", "out.csv"}).status, 0);
    EXPECT_EQ(read_file("out.csv"),
              table_of(row_for("0.pcap") + row_for("1.pcap") + row_for("2, \"new\"\r\nlab.pcap")));
}

TEST_F(joined_tables, have_an_overview_that_leads_to_the_pages_of_the_runs) {
    fs::create_directory("lab");
    fs::copy_file(capture_file("nbiot_attach.pcapng"), "lab/nbiot.pcapng");
    run_replay({"--each", "lab", "--table", "lab.csv", "--report", "pages"});
    fs::remove("pages/index.html");
    EXPECT_EQ(join({"lab.csv", "-q", "--report", "pages"}).status, 0);
    EXPECT_THAT(read_file("pages/index.html"), HasSubstr("\"nbiot.pcapng.html\""));
    EXPECT_TRUE(fs::exists("pages/nbiot.pcapng.html"));
}

TEST_F(joined_tables, are_not_written_over_by_an_overview) {
    fs::create_directory("pages");
    fs::copy_file("a.csv", "pages/index.html");
    const auto result = join({"pages/index.html", "--report", "pages"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: pages/index.html is a table to read, not to write\n");
    EXPECT_EQ(read_file("pages/index.html"), read_file("a.csv"));
}

TEST_F(joined_tables, are_not_joined_where_two_files_would_be_one) {
    for (const std::string option : {"--table", "-o"}) {
        const auto result = join({"a.csv", option, "pages/index.html", "--report", "pages"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error, "kivra-replay: can't write two files to pages/index.html\n");
        EXPECT_FALSE(fs::exists("pages"));
    }
}

TEST_F(joined_tables, may_have_a_capture_twice_that_one_run_had_twice) {
    write_file("twice.csv", table_of(row_for("3.pcap") + row_for("3.pcap")));
    EXPECT_THAT(join({"twice.csv"}).output, HasSubstr("ok                         2\n"));
}

TEST_F(joined_tables, end_with_2_when_no_capture_could_be_read) {
    write_file("bad.csv", table_of(row_for("3.pcap", "can't read 3.pcap: gone")));
    const auto result = join({"bad.csv"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't read 3.pcap: gone\n");
    EXPECT_THAT(result.output, StartsWith("3.pcap: unreadable\n"));
}

TEST_F(joined_tables, are_refused_with_a_capture_that_stands_in_two) {
    write_file("c.csv", table_of(row_for("4.pcap") + row_for("1.pcap")));
    expect_refused({"a.csv", "b.csv", "c.csv"}, "1.pcap stands in a.csv and in c.csv");
    expect_refused({"b.csv", "b.csv"}, "0.pcap stands in b.csv and in b.csv");
}

TEST_F(joined_tables, are_refused_with_other_columns) {
    auto renamed = table_of("");
    renamed.replace(renamed.find("status"), 6, "result");
    auto fewer = table_of("");
    fewer.erase(fewer.rfind(','), fewer.size() - 2 - fewer.rfind(','));
    for (const auto& content : {std::string(), renamed, fewer, table_of("").substr(0, 20)}) {
        write_file("c.csv", content);
        expect_refused({"a.csv", "c.csv"},
                       "c.csv is no table of this version: its columns are others");
    }
}

TEST_F(joined_tables, are_refused_with_a_torn_line) {
    write_file("c.csv", table_of(row_for("3.pcap") + row_for("4.pcap").substr(0, 12)));
    expect_refused({"a.csv", "c.csv"}, "c.csv ends in the middle of a row");
}

TEST_F(joined_tables, are_refused_with_a_line_that_is_no_row) {
    // The last one has all its cells, and the end of a line that is not this table's.
    auto other_end = row_for("4.pcap");
    other_end.erase(other_end.size() - 2, 1);
    for (const std::string& line :
         {std::string("4.pcap,ok\r\n"), std::string("4.pcap\n"), other_end}) {
        write_file("c.csv", table_of(row_for("3.pcap") + line + row_for("5.pcap")));
        expect_refused({"a.csv", "c.csv"}, "c.csv: row 2 is not one of this table");
    }
}

TEST_F(joined_tables, are_refused_where_one_can_not_be_read) {
    expect_refused({"a.csv", "missing.csv"}, "can't read missing.csv: No such file or directory");
    fs::create_directory("folder");
    expect_refused({"folder"}, "can't read folder: Is a directory");
}

TEST_F(joined_tables, are_not_written_over) {
    const auto content = read_file("b.csv");
    for (const char* option : {"--table", "-o"}) {
        const auto result = join({"a.csv", "b.csv", option, "./b.csv"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error, "kivra-replay: ./b.csv is a table to read, not to write\n");
        EXPECT_EQ(read_file("b.csv"), content);
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
