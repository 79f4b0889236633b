#include <gtest/gtest.h>

#include "tests/abi/sessions.h"
#include "tests/support/handles_windows.h"

namespace KIVRA::TSHARK {
namespace {

class sessions_on_windows : public TESTING::sessions {
  protected:
    /// A session that is released, and one that ends by itself.
    void run_sessions() {
        expect_result();
        TESTING::kill_process(TESTING::children().at(0));
        expect_result({TESTING::session_ended});
        expect_result();
        host_.release();
        ASSERT_EQ(init(host_, "on"), 0);
    }
};

TEST_F(sessions_on_windows, leave_no_handle_behind) {
    run_sessions();
    const auto before = TESTING::free_handle_places();
    run_sessions();
    EXPECT_EQ(TESTING::free_handle_places(), before);
}

}  // namespace
}  // namespace KIVRA::TSHARK
