#include <sys/resource.h>

#include <system_error>

#include <gtest/gtest.h>

#include "platform/console/journal_file.h"
#include "tests/support/files.h"
#include "tests/support/limits_posix.h"

namespace KIVRA::TSHARK::PLATFORM {
namespace {

class journal_on_posix : public TESTING::scratch_test {};

TEST_F(journal_on_posix, tells_of_a_text_that_fits_in_part) {
    journal_file file("rows");
    file.append("one\r\n");
    const TESTING::limit_guard limit(RLIMIT_FSIZE, 7);
    EXPECT_THROW(file.append("two\r\n"), std::system_error);
    EXPECT_EQ(TESTING::read_file("rows"), "one\r\ntw");
}

}  // namespace
}  // namespace KIVRA::TSHARK::PLATFORM
