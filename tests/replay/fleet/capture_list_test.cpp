#include "replay/fleet/capture_list.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::ElementsAre;
using testing::ThrowsMessage;

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
    EXPECT_THAT(files_of(list_captures({"lab"}, false)), ElementsAre("lab/a.pcap", "lab/b.pcapng"));
}

TEST_F(capture_list, looks_into_folders_within_folders_when_told_to) {
    const auto captures = list_captures({"lab"}, true);
    EXPECT_THAT(files_of(captures),
                ElementsAre("lab/a.pcap", "lab/b.pcapng", "lab/night/2/z.cap", "lab/night/c.pcap"));
    EXPECT_THAT(names_of(captures),
                ElementsAre("a.pcap", "b.pcapng", "night/2/z.cap", "night/c.pcap"));
}

TEST_F(capture_list, leaves_out_what_is_hidden_unless_it_is_named) {
    fs::create_directory("lab/.copying");
    write_file("lab/.copying/d.pcap", "");
    write_file("lab/.e.pcap", "");
    EXPECT_THAT(files_of(list_captures({"lab"}, true)),
                ElementsAre("lab/a.pcap", "lab/b.pcapng", "lab/night/2/z.cap", "lab/night/c.pcap"));
    EXPECT_THAT(files_of(list_captures({"lab/.copying", "lab/.e.pcap"}, true)),
                ElementsAre("lab/.copying/d.pcap", "lab/.e.pcap"));
}

TEST_F(capture_list, keeps_the_order_given_and_takes_files_by_name_whatever_they_are) {
    const auto captures = list_captures({"lab/notes.txt", "lab", "missing"}, false);
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
    EXPECT_THAT(names_of(list_captures({"more"}, false)),
                ElementsAre("1.pcapng.gz", "2.PCAP", "3.cap.zst", "6.snoop.LZ4"));
}

TEST_F(capture_list, refuses_a_folder_without_captures) {
    EXPECT_THAT(
        [] {
            list_captures({"lab/night/2", "lab/night", "."}, false);
        },
        ThrowsMessage<std::runtime_error>(
            ". has no captures in it (--recursive looks into its folders, too)"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
