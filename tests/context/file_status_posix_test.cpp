#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "context/file_status.h"
#include "context/sink_context.h"
#include "context/unique_path.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::ThrowsMessage;

class file_status_on_posix : public TESTING::scratch_test {};

/// A name that the system refuses to look up.
const std::string impossible_name(5000, 'x');

TEST_F(file_status_on_posix, names_the_query_that_failed) {
    EXPECT_THAT([] { entry_exists(impossible_name); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("exists")));
}

TEST_F(file_status_on_posix, that_can_not_be_told_does_not_stop_a_release) {
    ASSERT_THROW(entry_exists(impossible_name), fs::filesystem_error);
    const sink_context context(nullptr, nullptr, "t", impossible_name, "");
}

TEST_F(file_status_on_posix, names_the_working_directory_that_is_gone) {
    fs::create_directory("gone");
    fs::current_path("gone");
    fs::remove(scratch() / "gone");
    EXPECT_THAT([] { working_directory(); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("current_path()")));
    EXPECT_THAT([] { unique_path("tshark", "json"); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("current_path()")));
}

TEST_F(file_status_on_posix, a_unique_path_too_long_to_query_is_an_error) {
    EXPECT_THAT([] { unique_path(impossible_name, "json"); },
                ThrowsMessage<fs::filesystem_error>(HasSubstr("exists")));
}

}  // namespace
}  // namespace KIVRA::TSHARK
