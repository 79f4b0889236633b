#include "profile/parameter_file.h"

#include <algorithm>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::PROFILE {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// The smallest set of texts that a file is written from.
profile_texts least_texts() {
    profile_texts texts;
    texts.idrx_int = "1.28";
    texts.idrx_reps = "16";
    return texts;
}

profile_texts all_texts() {
    profile_texts texts = least_texts();
    texts.t3324_bitmask = "00000101";
    texts.t3412_extended_bitmask = "01000111";
    texts.cdrx_inactive_timer = "100";
    texts.cdrx_int = "30";
    texts.cdrx_on_duration = "10";
    return texts;
}

bool all_empty(const profile_texts& texts) {
    return texts.t3324_bitmask.empty() && texts.t3412_extended_bitmask.empty() &&
           texts.cdrx_inactive_timer.empty() && texts.idrx_reps.empty() && texts.idrx_int.empty() &&
           texts.cdrx_int.empty() && texts.cdrx_on_duration.empty();
}

class parameter_file : public TESTING::scratch_test {
  protected:
    explicit parameter_file(const fs::path& file = "profile.json")
        : context_(nullptr, nullptr, "tshark.exe", scratch() / "output.json", file) {}

    std::string write(const profile_texts& texts) {
        context_.texts = texts;
        write_parameter_file(context_);
        return TESTING::read_file("profile.json");
    }

    sink_context context_;
};

TEST_F(parameter_file, holds_the_defaults_byte_for_byte) {
    EXPECT_EQ(write(least_texts()),
              TESTING::read_file(TESTING::data_file("profile_of_defaults.json")));
}

TEST_F(parameter_file, takes_seven_values_from_the_trace) {
    json expected = TESTING::read_json(TESTING::data_file("profile_of_defaults.json"));
    expected.update({{"cdrx_inactive_timer", "100"},
                     {"cdrx_int", "30"},
                     {"cdrx_on_duration", "10"},
                     {"psm", "True"},
                     {"config_lte_psm_req_rat", "00000101"},
                     {"config_lte_psm_req_rptau", "01000111"}});
    EXPECT_EQ(write(all_texts()), expected.dump(4));
}

TEST_F(parameter_file, has_31_texts_in_ascending_order_and_no_newline_at_its_end) {
    const std::string content = write(all_texts());
    const json profile = json::parse(content);
    EXPECT_EQ(profile.size(), 31U);
    EXPECT_TRUE(std::ranges::all_of(profile, [](const json& value) { return value.is_string(); }));
    EXPECT_TRUE(content.ends_with("\n}"));
    EXPECT_THAT(content, testing::Not(testing::HasSubstr("\r")));
}

TEST_F(parameter_file, keeps_psm_int_whatever_the_trace_says) {
    EXPECT_EQ(json::parse(write(all_texts()))["psm_int"], "3600");
}

TEST_F(parameter_file, has_no_psm_with_t3324_alone) {
    profile_texts texts = least_texts();
    texts.t3324_bitmask = "00000101";
    EXPECT_EQ(write(texts), TESTING::read_file(TESTING::data_file("profile_of_defaults.json")));
}

TEST_F(parameter_file, has_no_psm_with_t3412_extended_alone) {
    profile_texts texts = least_texts();
    texts.t3412_extended_bitmask = "01000111";
    EXPECT_EQ(write(texts), TESTING::read_file(TESTING::data_file("profile_of_defaults.json")));
}

TEST_F(parameter_file, falls_back_to_0_for_each_missing_cdrx_value_alone) {
    const auto written_without = [this](std::string profile_texts::*missing) {
        profile_texts texts = all_texts();
        (texts.*missing).clear();
        return json::parse(write(texts));
    };
    json profile = written_without(&profile_texts::cdrx_int);
    EXPECT_EQ(profile["cdrx_int"], "0");
    EXPECT_EQ(profile["cdrx_on_duration"], "10");
    EXPECT_EQ(profile["cdrx_inactive_timer"], "100");
    profile = written_without(&profile_texts::cdrx_on_duration);
    EXPECT_EQ(profile["cdrx_int"], "30");
    EXPECT_EQ(profile["cdrx_on_duration"], "0");
    EXPECT_EQ(profile["cdrx_inactive_timer"], "100");
    profile = written_without(&profile_texts::cdrx_inactive_timer);
    EXPECT_EQ(profile["cdrx_int"], "30");
    EXPECT_EQ(profile["cdrx_on_duration"], "10");
    EXPECT_EQ(profile["cdrx_inactive_timer"], "0");
}

TEST_F(parameter_file, clears_all_texts_after_a_write) {
    write(all_texts());
    EXPECT_TRUE(all_empty(context_.texts));
}

TEST_F(parameter_file, is_neither_made_nor_are_texts_cleared_without_idrx_int) {
    context_.texts = all_texts();
    context_.texts.idrx_int.clear();
    write_parameter_file(context_);
    EXPECT_FALSE(fs::exists("profile.json"));
    EXPECT_EQ(context_.texts.t3324_bitmask, "00000101");
    EXPECT_EQ(context_.texts.idrx_reps, "16");
}

TEST_F(parameter_file, is_neither_made_nor_are_texts_cleared_without_idrx_reps) {
    context_.texts = all_texts();
    context_.texts.idrx_reps.clear();
    write_parameter_file(context_);
    EXPECT_FALSE(fs::exists("profile.json"));
    EXPECT_EQ(context_.texts.t3324_bitmask, "00000101");
    EXPECT_EQ(context_.texts.idrx_int, "1.28");
}

TEST_F(parameter_file, replaces_an_older_longer_file_whole) {
    TESTING::write_file("profile.json", std::string(10'000, 'x'));
    EXPECT_EQ(write(least_texts()),
              TESTING::read_file(TESTING::data_file("profile_of_defaults.json")));
}

TEST_F(parameter_file, writes_non_ascii_texts_as_they_are) {
    profile_texts texts = least_texts();
    texts.cdrx_int = "\xC3\xA4";
    EXPECT_THAT(write(texts), testing::HasSubstr("\"cdrx_int\": \"\xC3\xA4\""));
}

TEST_F(parameter_file, refuses_a_text_that_is_no_utf8_and_keeps_everything) {
    context_.texts = all_texts();
    context_.texts.cdrx_int = "\xFF";
    EXPECT_THAT([this] { write_parameter_file(context_); },
                testing::ThrowsMessage<json::type_error>(testing::HasSubstr("type_error.316")));
    EXPECT_FALSE(fs::exists("profile.json"));
    EXPECT_EQ(context_.texts.idrx_int, "1.28");
}

class parameter_file_without_path : public parameter_file {
  protected:
    parameter_file_without_path() : parameter_file("") {}
};

TEST_F(parameter_file_without_path, is_neither_made_nor_are_texts_cleared) {
    context_.texts = all_texts();
    write_parameter_file(context_);
    EXPECT_TRUE(TESTING::names_in(".").empty());
    EXPECT_EQ(context_.texts.idrx_int, "1.28");
    EXPECT_EQ(context_.texts.t3412_extended_bitmask, "01000111");
}

class parameter_file_out_of_reach : public parameter_file {
  protected:
    parameter_file_out_of_reach() : parameter_file("no/such/folder/profile.json") {}
};

TEST_F(parameter_file_out_of_reach, is_not_reported_and_the_texts_are_cleared) {
    context_.texts = all_texts();
    write_parameter_file(context_);
    EXPECT_TRUE(all_empty(context_.texts));
    EXPECT_EQ(context_.last_error_text, "");
    EXPECT_TRUE(TESTING::names_in(".").empty());
}

}  // namespace
}  // namespace KIVRA::TSHARK::PROFILE
