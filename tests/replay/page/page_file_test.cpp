#include "replay/page/page_file.h"

#include <filesystem>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

constexpr page_frame frame{.head = "<head>", .tail = "<tail>"};

class page_files : public TESTING::scratch_test {};

TEST_F(page_files, have_blocks_of_data_within_their_frame) {
    page_file file("page.html", frame);
    file.begin_block("rows");
    file.write("[1]");
    file.end_block();
    file.finish();
    EXPECT_EQ(TESTING::read_file("page.html"),
              "<head><script type=\"application/json\" class=\"rows\">[1]</script>\n<tail>");
}

TEST_F(page_files, are_whole_with_their_end) {
    page_file("page.html", frame).finish();
    EXPECT_TRUE(is_whole_page("page.html", frame));
}

TEST_F(page_files, do_not_stay_without_their_end) {
    { page_file("page.html", frame).write("<tail>, and more"); }
    EXPECT_FALSE(std::filesystem::exists("page.html"));
}

TEST_F(page_files, are_not_whole_without_their_end) {
    TESTING::write_file("page.html", "<head><tail>, and more");
    EXPECT_FALSE(is_whole_page("page.html", frame));
}

TEST_F(page_files, are_not_whole_where_there_is_less_than_an_end) {
    TESTING::write_file("page.html", "tail>");
    EXPECT_FALSE(is_whole_page("page.html", frame));
    EXPECT_FALSE(is_whole_page("missing.html", frame));
}

TEST_F(page_files, notice_a_last_write_that_fails) {
    // So little that it is written with the end.
    EXPECT_THROW(page_file("/dev/full", frame).finish(), std::runtime_error);
}

TEST_F(page_files, that_are_links_stay) {
    TESTING::write_file("target", "");
    std::filesystem::create_symlink("target", "page.html");
    { const page_file file("page.html", frame); }
    EXPECT_TRUE(std::filesystem::is_symlink("page.html"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
