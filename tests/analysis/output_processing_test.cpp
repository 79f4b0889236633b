#include "analysis/output_processing.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StrEq;
using testing::ThrowsMessage;

const std::string name = "gsm_a.gm.sm.pco_pid_tree";
const std::string quoted_name = '"' + name + '"';

TEST(numbered_names, leave_a_text_without_the_name_alone) {
    EXPECT_EQ(number_repeated_names(""), "");
    EXPECT_EQ(number_repeated_names(R"([{"gsm_a.gm.sm.pco_pid": "1"}])"),
              R"([{"gsm_a.gm.sm.pco_pid": "1"}])");
    EXPECT_EQ(number_repeated_names(name), name);
    EXPECT_EQ(number_repeated_names('"' + name + "1\""), '"' + name + "1\"");
}

TEST(numbered_names, count_from_1_through_the_whole_text) {
    EXPECT_EQ(number_repeated_names("{" + quoted_name + ":1," + quoted_name + ":2}{" + quoted_name +
                                    ":3}"),
              "{\"" + name + "1\":1,\"" + name + "2\":2}{\"" + name + "3\":3}");
}

TEST(numbered_names, keep_both_members_of_one_object) {
    const json parsed =
        json::parse(number_repeated_names("{" + quoted_name + ":\"a\"," + quoted_name + ":\"b\"}"));
    EXPECT_EQ(parsed, (json{{name + "1", "a"}, {name + "2", "b"}}));
}

TEST(numbered_names, do_not_tell_member_names_from_texts) {
    EXPECT_EQ(number_repeated_names("[" + quoted_name + "]"), "[\"" + name + "1\"]");
}

TEST(numbered_names, see_an_occurrence_that_begins_with_the_quote_that_ends_another) {
    EXPECT_EQ(number_repeated_names(quoted_name + name + '"'), '"' + name + "1\"" + name + "2\"");
}

TEST(numbered_names, count_in_8_bits) {
    std::string text;
    std::string expected;
    for (int occurrence = 1; occurrence <= 258; ++occurrence) {
        text += quoted_name + ",";
        expected += '"' + name + std::to_string(occurrence % 256) + "\",";
    }
    EXPECT_EQ(number_repeated_names(text), expected);
    EXPECT_TRUE(expected.ends_with("255\",\"" + name + "0\",\"" + name + "1\",\"" + name + "2\","));
}

class output_processing : public TESTING::scratch_test {
  protected:
    json process(const std::string& output) { return process_output(context_, output); }

    sink_context context_{nullptr, nullptr, "tshark.exe", scratch() / "output.json",
                          "profile.json"};
};

constexpr auto packet =
    R"({"_source": {"layers": {"lte_rrc": {"lte-rrc.defaultPagingCycle": "2"}}}})";

TEST_F(output_processing, of_no_packets_gives_no_result) {
    EXPECT_TRUE(process("[]").is_null());
}

TEST_F(output_processing, hands_each_packet_of_an_array_on_with_one_result_document) {
    EXPECT_EQ(process(R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.defaultPagingCycle": "0"}}}},
                       {"_source": {"layers": {"lte_rrc": {"lte-rrc.onDurationTimer": "0"}}}},
                       {"_source": {"layers": {"lte_rrc": {"lte-rrc.defaultPagingCycle": "1"}}}}])"),
              json::parse(R"({"lte-rrc": {"idrx_int": "0.64", "cdrx_on_duration": "1"}})"));
}

TEST_F(output_processing, visits_the_members_of_an_object_in_the_order_of_their_names) {
    EXPECT_EQ(
        process(R"({"b": {"_source": {"layers": {"lte_rrc": {"lte-rrc.defaultPagingCycle": "0"}}}},
                       "a": {"_source": {"layers": {"lte_rrc": {"lte-rrc.defaultPagingCycle": "1"}}}}})"),
        json::parse(R"({"lte-rrc": {"idrx_int": "0.32"}})"));
}

TEST_F(output_processing, finds_no_packet_in_a_scalar) {
    for (const char* scalar : {"null", "1", "true", R"("_source")"}) {
        EXPECT_TRUE(process(scalar).is_null()) << scalar;
    }
}

TEST_F(output_processing, takes_an_output_that_is_one_packet_for_its_members) {
    EXPECT_TRUE(process(packet).is_null());
}

TEST_F(output_processing, skips_what_is_no_packet_and_goes_on) {
    EXPECT_EQ(process(R"([1, "x", null, ["_source"], {}, {"_source": ["layers"]}, {"_source": {}},
                       {"_source": null}, {"_source": {"layers": 5}}, )" +
                      std::string(packet) + "]"),
              json::parse(R"({"lte-rrc": {"idrx_int": "1.28"}})"));
}

TEST_F(output_processing, keeps_the_last_value_of_a_repeated_name) {
    EXPECT_EQ(process(R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.defaultPagingCycle": "0",
                                                           "lte-rrc.defaultPagingCycle": "3"}}}}])"),
              json::parse(R"({"lte-rrc": {"idrx_int": "2.56"}})"));
}

TEST_F(output_processing, refuses_what_is_no_json) {
    for (const char* text : {"", "{", "tshark: no such file", "[] []", "[1, /* comment */ 2]"}) {
        EXPECT_THAT(([this, text] { process(text); }),
                    ThrowsMessage<json::parse_error>(HasSubstr("parse_error")))
            << text;
    }
}

TEST_F(output_processing, does_not_visit_packets_behind_one_that_fails) {
    EXPECT_ANY_THROW(
        process(R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.defaultPagingCycle": 1}}}}, )" +
                std::string(packet) + "]"));
    EXPECT_EQ(context_.texts.idrx_int, "");
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
