#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include <gmock/gmock.h>

#include "platform/console/folder_watch.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::ElementsAre;
using testing::IsEmpty;

/// Of files, those that end in "pcap"; of folders, those that don't begin with a dot.
const watched_names all_folders{
    .file = [](const fs::path& name) { return name.extension() == ".pcap"; },
    .folder = [](const fs::path& name) { return name.native().front() != '.'; }};
const watched_names no_folders{.file = all_folders.file,
                               .folder = [](const fs::path&) { return false; }};

/// What has happened by now is in the queue by now.
folder_news news_of(folder_watch& watch) {
    return watch.next(std::chrono::milliseconds(0));
}

std::vector<std::string> files_of(folder_watch& watch) {
    std::vector<std::string> names;
    for (const auto& file : news_of(watch).files) {
        names.push_back(file.native());
    }
    return names;
}

class watched_folder : public scratch_test {
  protected:
    watched_folder() { fs::create_directories("lab/night/2"); }
};

TEST_F(watched_folder, tells_first_of_what_stands_there_sorted) {
    for (const char* file : {"lab/b.pcap", "lab/night/2/c.pcap", "lab/a.pcap", "lab/notes.txt"}) {
        write_file(file, "");
    }
    fs::create_directory("lab/d.pcap");
    folder_watch watch("lab", all_folders);
    EXPECT_THAT(files_of(watch), ElementsAre("lab/a.pcap", "lab/b.pcap", "lab/night/2/c.pcap"));
    EXPECT_THAT(files_of(watch), IsEmpty());
}

TEST_F(watched_folder, tells_of_a_file_that_is_closed_after_writing) {
    folder_watch watch("lab", no_folders);
    std::ofstream file("lab/a.pcap");
    file << "some" << std::flush;
    EXPECT_THAT(files_of(watch), IsEmpty());
    file.close();
    EXPECT_THAT(files_of(watch), ElementsAre("lab/a.pcap"));
}

TEST_F(watched_folder, tells_of_a_file_that_is_moved_in) {
    folder_watch watch("lab", no_folders);
    write_file("new", "");
    fs::rename("new", "lab/a.pcap");
    write_file("lab/b.part", "");
    EXPECT_THAT(files_of(watch), ElementsAre("lab/a.pcap"));
    fs::rename("lab/b.part", "lab/b.pcap");
    EXPECT_THAT(files_of(watch), ElementsAre("lab/b.pcap"));
}

TEST_F(watched_folder, waits_for_all_who_write_a_file) {
    std::ofstream first("lab/a.pcap");
    std::ofstream second("lab/a.pcap", std::ios::app);
    folder_watch watch("lab", no_folders);
    EXPECT_THAT(files_of(watch), IsEmpty());
    first.close();
    EXPECT_THAT(files_of(watch), IsEmpty());
    fs::rename("lab/a.pcap", "lab/b.pcap");
    EXPECT_THAT(files_of(watch), IsEmpty());
    second.close();
    EXPECT_THAT(files_of(watch), ElementsAre("lab/b.pcap"));
}

TEST_F(watched_folder, tells_of_a_file_that_others_read) {
    write_file("lab/a.pcap", "");
    const std::ifstream reader("lab/a.pcap");
    folder_watch watch("lab", no_folders);
    EXPECT_THAT(files_of(watch), ElementsAre("lab/a.pcap"));
}

TEST_F(watched_folder, does_not_tell_of_folders_within_it_unless_they_count) {
    write_file("lab/night/a.pcap", "");
    folder_watch watch("lab", no_folders);
    write_file("lab/night/b.pcap", "");
    EXPECT_THAT(files_of(watch), IsEmpty());
    fs::create_directories("lab/.hidden");
    write_file("lab/.hidden/c.pcap", "");
    folder_watch all("lab", all_folders);
    write_file("lab/.hidden/d.pcap", "");
    EXPECT_THAT(files_of(all), ElementsAre("lab/night/a.pcap", "lab/night/b.pcap"));
}

TEST_F(watched_folder, tells_of_new_folders_within_it) {
    folder_watch watch("lab", all_folders);
    fs::create_directories("lab/1/2");
    write_file("lab/1/2/a.pcap", "");
    EXPECT_THAT(files_of(watch), ElementsAre("lab/1/2/a.pcap"));
    write_file("lab/1/2/b.pcap", "");
    EXPECT_THAT(files_of(watch), ElementsAre("lab/1/2/b.pcap"));
    fs::create_directories("new/3");
    write_file("new/3/d.pcap", "");
    write_file("new/3/c.pcap", "");
    fs::rename("new", "lab/new");
    EXPECT_THAT(files_of(watch), ElementsAre("lab/new/3/c.pcap", "lab/new/3/d.pcap"));
    write_file("lab/new/3/e.pcap", "");
    EXPECT_THAT(files_of(watch), ElementsAre("lab/new/3/e.pcap"));
}

TEST_F(watched_folder, calls_files_by_the_new_name_of_their_folder) {
    folder_watch watch("lab", all_folders);
    fs::rename("lab/night", "lab/day");
    write_file("lab/day/2/a.pcap", "");
    EXPECT_THAT(files_of(watch), testing::Each("lab/day/2/a.pcap"));
    write_file("lab/day/2/b.pcap", "");
    EXPECT_THAT(files_of(watch), ElementsAre("lab/day/2/b.pcap"));
}

TEST_F(watched_folder, tells_no_more_of_a_folder_that_was_moved_away) {
    fs::create_directory("lab/nights");
    folder_watch watch("lab", all_folders);
    fs::rename("lab/night", "away");
    write_file("away/2/a.pcap", "");
    write_file("lab/nights/b.pcap", "");
    EXPECT_THAT(files_of(watch), ElementsAre("lab/nights/b.pcap"));
    // Another one of that name is another folder.
    fs::create_directories("lab/night/2");
    write_file("lab/night/2/a.pcap", "");
    EXPECT_THAT(files_of(watch), ElementsAre("lab/night/2/a.pcap"));
    write_file("away/2/a.pcap", "");
    EXPECT_THAT(files_of(watch), IsEmpty());
}

TEST_F(watched_folder, does_not_follow_links_to_folders) {
    fs::create_directory("elsewhere");
    write_file("elsewhere/a.pcap", "");
    fs::create_directory_symlink("../elsewhere", "lab/link");
    folder_watch watch("lab", all_folders);
    EXPECT_THAT(files_of(watch), IsEmpty());
}

TEST_F(watched_folder, lists_all_again_where_news_was_lost) {
    // As many as the system keeps, one after the other.
    const auto most = std::stoul(read_file("/proc/sys/fs/inotify/max_queued_events"));
    write_file("lab/night/old.pcap", "");
    folder_watch watch("lab", all_folders);
    files_of(watch);
    for (std::size_t count = 0; count <= most / 2; ++count) {
        write_file("lab/1.txt", "");
        write_file("lab/2.txt", "");
    }
    write_file("lab/night/new.pcap", "");
    std::vector<fs::path> files;
    for (auto news = news_of(watch); files.empty(); news = news_of(watch)) {
        files = news.files;
    }
    EXPECT_THAT(files, ElementsAre("lab/night/new.pcap", "lab/night/old.pcap"));
    write_file("lab/night/2/a.pcap", "");
    EXPECT_THAT(files_of(watch), ElementsAre("lab/night/2/a.pcap"));
}

TEST_F(watched_folder, says_when_it_is_gone) {
    folder_watch removed("lab/night/2", no_folders);
    EXPECT_FALSE(news_of(removed).is_gone);
    fs::remove("lab/night/2");
    EXPECT_TRUE(news_of(removed).is_gone);
    folder_watch moved("lab", all_folders);
    fs::remove("lab/night");
    EXPECT_FALSE(news_of(moved).is_gone);
    fs::rename("lab", "away");
    EXPECT_TRUE(news_of(moved).is_gone);
}

TEST_F(watched_folder, has_to_be_there) {
    EXPECT_THROW(folder_watch("missing", no_folders), std::system_error);
    write_file("file", "");
    EXPECT_THROW(folder_watch("file", no_folders), std::system_error);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
