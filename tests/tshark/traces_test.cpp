// The built plug-in with the real tshark, over whole traces: with a tshark for each record, and
// with one for all.
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using TESTING::host;
using testing::IsEmpty;

class traces : public TESTING::scratch_test, public testing::WithParamInterface<const char*> {
  protected:
    void SetUp() override {
        ASSERT_EQ(host_.init({{"tshark_directory", TESTING::tshark_directory().string()},
                              {"file_path", "profile.json"},
                              {"tshark_session", GetParam()}}),
                  0);
    }

    /// Sends a record and gives the text of its result document, empty for none.
    std::string text_of(const json& record) {
        host_.texts.clear();
        host_.logs.clear();
        EXPECT_EQ(host_.data(record["format"], TESTING::bytes_of(record["hex"].get<std::string>()),
                             record["timestamp_us"].get<std::uint64_t>()),
                  0)
            << record["what"] << ": " << host_.last_error().first;
        EXPECT_LE(host_.texts.size(), 1U) << record["what"];
        return host_.texts.empty() ? "" : host_.texts.front();
    }

    json result_of(const json& record) { return json::parse(text_of(record)); }

    /// Sends all records of a trace and compares their result documents; gives the profile's text.
    std::string expect_results(const char* trace) {
        for (const auto& record : TESTING::read_json(TESTING::data_file(trace))) {
            const json& result = record["result"];
            EXPECT_EQ(text_of(record), result.is_null() ? "" : result.dump(4)) << record["what"];
            EXPECT_THAT(host_.messages(), IsEmpty()) << record["what"];
            EXPECT_EQ(host_.logs.size(), record["format"] == "ip" ? 0U : 1U) << record["what"];
        }
        EXPECT_THAT(TESTING::names_in("."), ElementsAre("profile.json"));
        return TESTING::read_file("profile.json");
    }

    host host_;
};

INSTANTIATE_TEST_SUITE_P(session, traces, testing::Values("off", "on"),
                         [](const auto& session) { return std::string(session.param); });

std::string defaults_with(const json& values) {
    json profile = TESTING::read_json(TESTING::data_file("profile_of_defaults.json"));
    profile.update(values);
    return profile.dump(4);
}

TEST_P(traces, of_an_ltem_modem_give_its_results_and_its_profile) {
    EXPECT_EQ(expect_results("ltem_attach_psm.json"),
              defaults_with({{"idrx_int", "2.56"},
                             {"idrx_reps", "32"},
                             {"cdrx_int", "30"},
                             {"cdrx_on_duration", "10"},
                             {"cdrx_inactive_timer", "100"},
                             {"psm", "True"},
                             {"config_lte_psm_req_rat", "00000101"},
                             {"config_lte_psm_req_rptau", "01000111"}}));
}

TEST_P(traces, of_an_nbiot_modem_give_its_results_and_its_profile) {
    EXPECT_EQ(expect_results("nbiot_attach.json"),
              defaults_with({{"idrx_int", "0.64"}, {"idrx_reps", "64"}}));
}

TEST_P(traces, keep_the_pdn_for_the_prefix_of_a_later_advertisement) {
    const json records = TESTING::read_json(TESTING::data_file("ltem_attach_psm.json"));
    const json& attach_accept = records[12];
    const json& advertisement = records[14];
    const json prefix = "2001:0db8:0001:0000:0000:0000:0000:0000";

    EXPECT_EQ(result_of(advertisement),
              (json{{"nas-eps", {{"pdn", {{"ICMPv6_prefix", prefix}}}}}}));
    json pdn = result_of(attach_accept)["nas-eps"]["pdn"];
    EXPECT_FALSE(pdn.contains("ICMPv6_prefix"));
    pdn["ICMPv6_prefix"] = prefix;
    EXPECT_EQ(result_of(advertisement), (json{{"nas-eps", {{"pdn", pdn}}}}));
}

// An attach accept whose protocol configuration options hold two identifiers beside the IPCP one.
TEST_P(traces, keep_every_protocol_configuration_option_apart) {
    const json records = TESTING::read_json(TESTING::data_file("ltem_attach_psm.json"));
    const json dns = result_of(records[12])["nas-eps"]["dns_server_address_config"];
    EXPECT_EQ(dns["ppp.code"], "3");
    EXPECT_THAT(dns.dump(), testing::HasSubstr("8.8.4.4"));
}

TEST_P(traces, of_a_lab_network_fail_the_record_that_names_it) {
    const json records = TESTING::read_json(TESTING::data_file("ltem_attach_psm.json"));
    std::string payload = TESTING::bytes_of(records[12]["hex"].get<std::string>());
    const std::string vodafone = TESTING::bytes_of("f662f220");
    const std::string lab = TESTING::bytes_of("f600f110");
    payload.replace(payload.find(vodafone), lab.size(), lab);
    EXPECT_EQ(host_.data("nas-eps", payload), 100);
    EXPECT_EQ(host_.last_error(), TESTING::error_entry("invalid stoi argument", 100U));
    EXPECT_THAT(host_.texts, IsEmpty());
    EXPECT_THAT(host_.logs, IsEmpty());
    EXPECT_THAT(TESTING::names_in("."), IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK
