#include "context/sink_context.h"

#include <memory>

#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/support/parser_probe.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using TESTING::log_recorder;

class sink_contexts : public TESTING::scratch_test {
  protected:
    std::unique_ptr<sink_context> make() {
        return std::make_unique<sink_context>(&log_, &log_recorder::callback, "dir/tshark.exe",
                                              scratch() / "output.json", "");
    }

    log_recorder log_;
};

TEST_F(sink_contexts, begin_with_nothing_known) {
    const auto context = make();
    EXPECT_EQ(context->last_error_text, "");
    EXPECT_EQ(context->last_error_code, 0U);
    EXPECT_TRUE(context->carried_state.is_null());
    EXPECT_TRUE(context->parameter_file.empty());
    EXPECT_EQ(context->texts.t3324_bitmask, "");
    EXPECT_EQ(context->texts.t3412_extended_bitmask, "");
    EXPECT_EQ(context->texts.cdrx_inactive_timer, "");
    EXPECT_EQ(context->texts.idrx_reps, "");
    EXPECT_EQ(context->texts.idrx_int, "");
    EXPECT_EQ(context->texts.cdrx_int, "");
    EXPECT_EQ(context->texts.cdrx_on_duration, "");
}

TEST_F(sink_contexts, keep_their_paths) {
    const auto context = make();
    EXPECT_EQ(context->tshark_executable, "dir/tshark.exe");
    EXPECT_EQ(context->tshark_output, scratch() / "output.json");
}

TEST_F(sink_contexts, log_with_their_address_and_the_hosts_user_data) {
    const auto context = make();
    context->log(KIVRA_LOG_ERROR, "a message");
    ASSERT_EQ(log_.entries.size(), 1U);
    EXPECT_EQ(log_.entries.front().caller, context.get());
    EXPECT_EQ(log_.entries.front().level, 5U);
    EXPECT_EQ(log_.entries.front().message, "a message");
}

TEST_F(sink_contexts, do_not_call_a_null_log_callback) {
    const sink_context context(&log_, nullptr, "t", scratch() / "output.json", "");
    context.log(KIVRA_LOG_ERROR, "a message");
    EXPECT_TRUE(log_.entries.empty());
    const sink_context other(&log_, &log_recorder::callback, "t", scratch() / "output.json", "");
    other.log(KIVRA_LOG_ERROR, "a message");
    EXPECT_EQ(log_.entries.size(), 1U);
}

TEST_F(sink_contexts, delete_tsharks_output_and_nothing_else_in_the_end) {
    TESTING::write_file("output.json", "[]");
    TESTING::write_file("profile.json", "{}");
    {
        const sink_context context(&log_, &log_recorder::callback, "t", scratch() / "output.json",
                                   "profile.json");
    }
    EXPECT_EQ(TESTING::names_in("."), std::vector<std::string>{"profile.json"});
}

TEST_F(sink_contexts, delete_an_empty_folder_at_the_place_of_tsharks_output_in_the_end) {
    fs::create_directory("output.json");
    make();
    EXPECT_TRUE(TESTING::names_in(".").empty());
}

TEST_F(sink_contexts, end_well_without_an_output) {
    make();
    EXPECT_TRUE(TESTING::names_in(".").empty());
}

TEST_F(sink_contexts, leave_a_folder_that_cannot_be_removed_in_place) {
    fs::create_directories("output.json/inside");
    make();
    EXPECT_TRUE(fs::exists("output.json/inside"));
}

}  // namespace
}  // namespace KIVRA::TSHARK
