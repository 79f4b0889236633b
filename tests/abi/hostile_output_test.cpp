#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

using nlohmann::json;
using testing::Each;
using testing::HasSubstr;
using TESTING::host;
using testing::IsEmpty;

std::string nas_packet(const std::string& dissection) {
    return R"([{"_source": {"layers": {"frame": {"frame.number": "1"}, "nas-eps": )" + dissection +
           "}}}]";
}

std::string nested_arrays(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

/// What tshark might write were it broken or replaced, for one record or for a session. Whatever
/// comes, the working files are gone afterwards, and the next record is analysed as if nothing had
/// been.
class hostile_output : public TESTING::scratch_test,
                       public testing::WithParamInterface<const char*> {
  protected:
    void SetUp() override {
        const auto tools = TESTING::narrow_text(TESTING::fake_tshark_directory());
        ASSERT_EQ(host_.init({{"tshark_directory", tools},
                              {"file_path", "profile.json"},
                              {"tshark_session", GetParam()}}),
                  0);
    }
    void TearDown() override {
        expect_no_working_files();
        host_.texts.clear();
        TESTING::fake_tshark_prints(nas_packet(R"({"PDN address": {"a": "b"}})"));
        EXPECT_EQ(host_.data("nas-eps", ""), 0);
        EXPECT_EQ(host_.document()["nas-eps"]["pdn"]["a"], "b");
        expect_no_working_files();
    }

    static void expect_no_working_files() {
        for (const auto& name : TESTING::names_in(".")) {
            EXPECT_TRUE(name.starts_with("fake_tshark")) << name;
        }
    }

    void expect_failure(const std::string& output, const std::string& reason) {
        TESTING::fake_tshark_prints(output);
        EXPECT_EQ(host_.data("nas-eps", ""), 100);
        EXPECT_THAT(host_.last_error().first, HasSubstr(reason));
        EXPECT_EQ(host_.last_error().second, 100U);
        EXPECT_THAT(host_.texts, IsEmpty());
        EXPECT_THAT(host_.messages(), Each("tshark session ended, record is dissected by a tshark "
                                           "of its own"));
        if (GetParam() == std::string("off")) {
            EXPECT_THAT(host_.messages(), IsEmpty());
        }
        host_.logs.clear();
    }

    host host_;
};

INSTANTIATE_TEST_SUITE_P(session, hostile_output, testing::Values("off", "on"),
                         [](const auto& session) { return std::string(session.param); });

TEST_P(hostile_output, may_be_nested_as_deeply_as_the_limit) {
    TESTING::fake_tshark_prints(nested_arrays(1'000));
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
}

TEST_P(hostile_output, is_copied_and_handed_back_when_nested_as_deeply_as_the_limit) {
    std::string subtree = R"("end")";
    for (int level = 0; level < 995; ++level) {
        subtree.insert(0, R"({"a":)").append("}");
    }
    TESTING::fake_tshark_prints(nas_packet(R"({"PDN address": )" + subtree + "}"));
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    EXPECT_EQ(host_.document()["nas-eps"]["pdn"], json::parse(subtree));
}

TEST_P(hostile_output, fails_when_nested_more_deeply) {
    expect_failure(nested_arrays(1'001), "output of tshark is nested more than 1000 levels deep");
}

TEST_P(hostile_output, fails_when_nested_absurdly) {
    expect_failure(nested_arrays(1'000'000),
                   "output of tshark is nested more than 1000 levels deep");
}

TEST_P(hostile_output, fails_when_it_opens_brackets_without_end) {
    expect_failure(std::string(1'000'000, '['), "parse_error.101");
}

TEST_P(hostile_output, fails_with_invalid_utf8_in_a_text_and_in_a_name) {
    expect_failure(nas_packet("{\"PDN address\": {\"a\": \"\xC3(\"}}"), "ill-formed UTF-8");
    expect_failure(nas_packet("{\"\xF8\x88\": {}}"), "ill-formed UTF-8");
    expect_failure("\xFF\xFE[", "parse_error.101");
}

TEST_P(hostile_output, fails_with_half_a_surrogate_pair) {
    expect_failure(nas_packet(R"({"a": "\ud800"})"), "surrogate U+D800..U+DBFF must be followed");
}

TEST_P(hostile_output, fails_with_a_number_beyond_all_bounds) {
    expect_failure(nas_packet(R"({"PDN address": 1e999})"), "number overflow parsing '1e999'");
}

TEST_P(hostile_output, keeps_a_number_with_many_digits_as_a_floating_one) {
    TESTING::fake_tshark_prints(
        nas_packet(R"({"PDN address": {"a": )" + std::string(300, '9') + "}}"));
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    EXPECT_EQ(host_.document()["nas-eps"]["pdn"]["a"], 1e300);
}

TEST_P(hostile_output, fails_with_texts_that_are_numbers_out_of_range) {
    expect_failure(nas_packet(R"({"EPS mobile identity - GUTI": {"e212.gummei.mcc": ")" +
                              std::string(100, '9') + R"(", "e212.gummei.mnc": "1"}})"),
                   "stoi argument out of range");
    expect_failure(nas_packet(R"({"EPS mobile identity - GUTI": {"e212.gummei.mcc": "-",)"
                              R"("e212.gummei.mnc": "1"}})"),
                   "invalid stoi argument");
}

TEST_P(hostile_output, fails_where_a_text_stands_in_place_of_an_object_and_the_reverse) {
    expect_failure(nas_packet(R"({"EPS mobile identity - GUTI": {"e212.gummei.mcc": {},)"
                              R"("e212.gummei.mnc": "1"}})"),
                   "type must be string, but is object");
    TESTING::fake_tshark_prints(nas_packet(R"("a text")"));
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
}

TEST_P(hostile_output, fails_wherever_it_is_cut_off) {
    const std::string whole = nas_packet(R"({"PDN address": {"a\"": [1.5e3, true, null]}})");
    for (std::size_t size = 0; size < whole.size(); size += 3) {
        expect_failure(whole.substr(0, size), "parse_error.101");
    }
}

TEST_P(hostile_output, fails_with_something_behind_the_document) {
    expect_failure("[][]", "parse_error.101");
    expect_failure("[]}", "parse_error.101");
}

TEST_P(hostile_output, may_be_100_mebibytes_long) {
    TESTING::fake_tshark_runs(
        R"(printf '[{"_source": {"layers": {"frame": {"frame.number": "1"}, "nas-eps": {"filler": "'; )"
        R"(head -c 104857600 /dev/zero | tr '\0' x; )"
        R"(printf '", "PDN address": {"a": "found"}}}}}]')");
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    EXPECT_EQ(host_.document()["nas-eps"]["pdn"]["a"], "found");
}

TEST_P(hostile_output, fails_when_it_is_100_mebibytes_of_zeros) {
    TESTING::fake_tshark_runs("head -c 104857600 /dev/zero");
    EXPECT_EQ(host_.data("nas-eps", ""), 100);
    EXPECT_THAT(host_.last_error().first, HasSubstr("parse_error.101"));
}

}  // namespace
}  // namespace KIVRA::TSHARK
