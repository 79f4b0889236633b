#include "sink/error_capture.h"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::SINK {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class data_errors : public TESTING::scratch_test {
  protected:
    sink_context context_{nullptr, nullptr, "tshark.exe", scratch() / "output.json", ""};
};

TEST_F(data_errors, are_absent_after_a_success) {
    EXPECT_EQ(capture_data_errors(context_, [] {}), 0);
    EXPECT_EQ(context_.last_error_text, "");
    EXPECT_EQ(context_.last_error_code, 0U);
}

TEST_F(data_errors, keep_the_text_of_a_standard_exception) {
    EXPECT_EQ(capture_data_errors(context_, [] { throw std::runtime_error("x"); }), 100);
    EXPECT_EQ(context_.last_error_text, "x");
    EXPECT_EQ(context_.last_error_code, 100U);
}

TEST_F(data_errors, are_unknown_for_anything_else) {
    EXPECT_EQ(capture_data_errors(context_, [] { throw 5; }), 100);
    EXPECT_EQ(context_.last_error_text, "unknown error");
    EXPECT_EQ(context_.last_error_code, 100U);
}

TEST_F(data_errors, stay_after_a_later_success) {
    capture_data_errors(context_, [] { throw std::runtime_error("x"); });
    EXPECT_EQ(capture_data_errors(context_, [] {}), 0);
    EXPECT_EQ(context_.last_error_text, "x");
    EXPECT_EQ(context_.last_error_code, 100U);
}

TEST_F(data_errors, are_replaced_by_later_ones) {
    capture_data_errors(context_, [] { throw std::runtime_error("a long first text"); });
    capture_data_errors(context_, [] { throw std::runtime_error("y"); });
    EXPECT_EQ(context_.last_error_text, "y");
}

TEST_F(data_errors, come_of_an_empty_callable) {
    EXPECT_EQ(capture_data_errors(context_, nullptr), 100);
    EXPECT_EQ(context_.last_error_text, std::bad_function_call().what());
}

class init_errors : public testing::Test {
  protected:
    static void note(void* user_data, const kivra_error* error) {
        static_cast<init_errors*>(user_data)->errors_.emplace_back(error->message, error->code);
    }

    std::vector<std::pair<std::string, std::uint32_t>> errors_;
};

TEST_F(init_errors, are_absent_after_a_success) {
    EXPECT_EQ(capture_init_errors(note, this, [] {}), 0);
    EXPECT_THAT(errors_, IsEmpty());
}

TEST_F(init_errors, report_the_text_of_a_standard_exception_once) {
    EXPECT_EQ(capture_init_errors(note, this, [] { throw std::runtime_error("x"); }), 1);
    EXPECT_THAT(errors_, ElementsAre(Pair("x", 1U)));
}

TEST_F(init_errors, are_unknown_and_fatal_for_anything_else) {
    EXPECT_EQ(capture_init_errors(note, this, [] { throw 5; }), 1);
    EXPECT_THAT(errors_, ElementsAre(Pair("unknown fatal error from pcap sink init", 1U)));
}

TEST_F(init_errors, need_no_callback) {
    EXPECT_EQ(capture_init_errors(nullptr, nullptr, [] { throw std::runtime_error("x"); }), 1);
}

TEST_F(init_errors, survive_a_callback_that_throws) {
    EXPECT_EQ(capture_init_errors([](void*, const kivra_error*) { throw 5; }, nullptr,
                                  [] { throw std::runtime_error("x"); }),
              1);
}

}  // namespace
}  // namespace KIVRA::TSHARK::SINK
