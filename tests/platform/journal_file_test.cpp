#include "platform/console/journal_file.h"

#include <system_error>

#include <gmock/gmock.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

using namespace TESTING;

class journal : public scratch_test {};

TEST_F(journal, is_made_and_grows) {
    journal_file file("rows");
    EXPECT_EQ(read_file("rows"), "");
    file.append("one\r\n");
    file.append("two\r\n");
    EXPECT_EQ(read_file("rows"), "one\r\ntwo\r\n");
}

TEST_F(journal, goes_on_behind_what_stood_there) {
    write_file("rows", "one\r\n");
    journal_file file("rows");
    file.append("two\r\n");
    EXPECT_EQ(read_file("rows"), "one\r\ntwo\r\n");
}

TEST_F(journal, is_cut_and_goes_on_there) {
    write_file("rows", "one\r\ntw");
    journal_file file("rows");
    file.cut(5);
    EXPECT_EQ(read_file("rows"), "one\r\n");
    file.append("2\r\n");
    EXPECT_EQ(read_file("rows"), "one\r\n2\r\n");
}

TEST_F(journal, belongs_to_one_at_a_time) {
    {
        const journal_file file("rows");
        EXPECT_THROW(journal_file("rows"), file_in_use);
    }
    EXPECT_NO_THROW(journal_file("rows"));
}

TEST_F(journal, can_not_be_in_a_folder_that_is_not_there) {
    EXPECT_THROW(journal_file("missing/rows"), std::system_error);
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
