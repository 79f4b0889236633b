#include "replay/fleet/capture_list.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/support/files.h"
#include "tests/support/privileges_posix.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::ElementsAre;
using testing::ThrowsMessage;

/// None of which may be left out.
std::vector<listed_capture> list_all(const std::vector<fs::path>& places, bool recursive) {
    return list_captures(places, recursive, [](const std::string& why) { ADD_FAILURE() << why; });
}

std::vector<std::string> files_of(const std::vector<listed_capture>& captures) {
    std::vector<std::string> files;
    for (const auto& capture : captures) {
        files.push_back(capture.file.generic_string());
    }
    return files;
}

std::vector<std::string> names_of(const std::vector<listed_capture>& captures) {
    std::vector<std::string> names;
    for (const auto& capture : captures) {
        names.push_back(capture.name.generic_string());
    }
    return names;
}

class capture_list : public scratch_test {
  protected:
    capture_list() {
        fs::create_directories("lab/night/2");
        for (const char* file : {"lab/b.pcapng", "lab/a.pcap", "lab/notes.txt", "lab/night/2/z.cap",
                                 "lab/night/c.pcap"}) {
            write_file(file, "");
        }
    }
};

TEST_F(capture_list, has_the_captures_of_a_folder_sorted) {
    EXPECT_THAT(files_of(list_all({"lab"}, false)), ElementsAre("lab/a.pcap", "lab/b.pcapng"));
}

TEST_F(capture_list, looks_into_folders_within_folders_when_told_to) {
    const auto captures = list_all({"lab"}, true);
    EXPECT_THAT(files_of(captures),
                ElementsAre("lab/a.pcap", "lab/b.pcapng", "lab/night/2/z.cap", "lab/night/c.pcap"));
    EXPECT_THAT(names_of(captures),
                ElementsAre("a.pcap", "b.pcapng", "night/2/z.cap", "night/c.pcap"));
}

TEST_F(capture_list, leaves_out_what_is_hidden_unless_it_is_named) {
    fs::create_directory("lab/.copying");
    write_file("lab/.copying/d.pcap", "");
    write_file("lab/.e.pcap", "");
    EXPECT_THAT(files_of(list_all({"lab"}, true)),
                ElementsAre("lab/a.pcap", "lab/b.pcapng", "lab/night/2/z.cap", "lab/night/c.pcap"));
    EXPECT_THAT(files_of(list_all({"lab/.copying", "lab/.e.pcap"}, true)),
                ElementsAre("lab/.copying/d.pcap", "lab/.e.pcap"));
}

TEST_F(capture_list, keeps_the_order_given_and_takes_files_by_name_whatever_they_are) {
    const auto captures = list_all({"lab/notes.txt", "lab", "missing"}, false);
    EXPECT_THAT(files_of(captures),
                ElementsAre("lab/notes.txt", "lab/a.pcap", "lab/b.pcapng", "missing"));
    EXPECT_THAT(names_of(captures), ElementsAre("notes.txt", "a.pcap", "b.pcapng", "missing"));
}

TEST_F(capture_list, knows_compressed_captures_and_capital_letters) {
    fs::create_directory("more");
    for (const char* file : {"more/1.pcapng.gz", "more/2.PCAP", "more/3.cap.zst", "more/4.gz",
                             "more/5.pcap.bak", "more/6.snoop.LZ4"}) {
        write_file(file, "");
    }
    EXPECT_THAT(names_of(list_all({"more"}, false)),
                ElementsAre("1.pcapng.gz", "2.PCAP", "3.cap.zst", "6.snoop.LZ4"));
}

TEST_F(capture_list, leaves_out_folders_within_a_folder_that_can_not_be_read) {
    fs::permissions("lab/night", fs::perms::none);
    const ordinary_user user;
    std::vector<std::string> left_out;
    const auto captures =
        list_captures({"lab"}, true, [&](const std::string& why) { left_out.push_back(why); });
    EXPECT_THAT(files_of(captures), ElementsAre("lab/a.pcap", "lab/b.pcapng"));
    EXPECT_THAT(left_out, ElementsAre("can't read lab/night: Permission denied"));
}

TEST_F(capture_list, refuses_a_folder_that_can_not_be_read) {
    fs::permissions("lab", fs::perms::none);
    const ordinary_user user;
    EXPECT_THAT([] { list_all({"lab"}, true); },
                ThrowsMessage<std::runtime_error>("can't read lab: Permission denied"));
}

TEST_F(capture_list, does_not_follow_links_to_folders) {
    fs::create_directory_symlink("..", "lab/night/up");
    fs::create_symlink("night/c.pcap", "lab/d.pcap");
    EXPECT_THAT(files_of(list_all({"lab"}, true)),
                ElementsAre("lab/a.pcap", "lab/b.pcapng", "lab/d.pcap", "lab/night/2/z.cap",
                            "lab/night/c.pcap"));
}

TEST_F(capture_list, leaves_out_what_a_table_can_not_name) {
    // The third one is a surrogate.
    for (const char* name : {"1\xff.pcap", "2\xc3.pcap", "3\xed\xa0\x80.pcap", "4\xc3\xa9.pcap"}) {
        write_file(fs::path("lab/night/2") / name, "");
    }
    std::vector<std::string> left_out;
    const auto captures = list_captures({"lab/night/2", "5\xff"}, false,
                                        [&](const std::string& why) { left_out.push_back(why); });
    EXPECT_THAT(names_of(captures), ElementsAre("4\xc3\xa9.pcap", "z.cap"));
    EXPECT_THAT(left_out, ElementsAre("lab/night/2/1\\xff.pcap is left out: its name is not UTF-8",
                                      "lab/night/2/2\\xc3.pcap is left out: its name is not UTF-8",
                                      "lab/night/2/3\\xed\\xa0\\x80.pcap is left out: its name is "
                                      "not UTF-8",
                                      "5\\xff is left out: its name is not UTF-8"));
}

TEST_F(capture_list, refuses_a_folder_without_captures) {
    EXPECT_THAT(
        [] {
            list_all({"lab/night/2", "lab/night", "."}, false);
        },
        ThrowsMessage<std::runtime_error>(
            ". has no captures in it (--recursive looks into its folders, too)"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
