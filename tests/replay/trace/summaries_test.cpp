// The summary that kivra-replay writes for programs, and what its records say beside it.
#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/replay/capture_image.h"
#include "tests/replay/sample_captures.h"
#include "tests/replay/sample_records.h"
#include "tests/support/files.h"
#include "tests/support/process.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsSupersetOf;

class summaries : public scratch_test {
  protected:
    /// Runs kivra-replay, which writes "summary.json".
    /// @return its status
    static int summarise(const fs::path& capture) {
        return run_replay({"-q", "--summary", "summary.json", capture}).status;
    }

    static json summary_of(const fs::path& capture) {
        summarise(capture);
        return read_json("summary.json");
    }

    /// What "summary.json" has against the schema.
    static std::string complaints() {
        const auto result = run_process(
            {KIVRA_SUMMARY_VALIDATOR, KIVRA_SUMMARY_SCHEMA, fs::absolute("summary.json")});
        EXPECT_EQ(result.error, "");
        EXPECT_EQ(result.status, result.output.empty() ? 0 : 1);
        return result.output;
    }

    static void write_capture(const std::vector<image_packet>& packets) {
        write_file("capture.pcapng", capture_image(exported_pdu_link_type, packets));
    }
};

TEST_F(summaries, measure_an_hour_as_its_times_were_chosen) {
    EXPECT_EQ(summary_of(fs::path(KIVRA_HOUR) / "hour.pcapng")["measured"],
              read_json(fs::path(KIVRA_HOUR) / "hour.json"));
}

TEST_F(summaries, for_people_keep_within_80_columns) {
    for (const fs::path& capture :
         {capture_file("ltem_attach_psm.pcapng"), capture_file("nbiot_attach.pcapng"),
          fs::path(KIVRA_HOUR) / "hour.pcapng"}) {
        const auto result = run_replay({capture});
        std::istringstream lines(result.output.substr(result.output.find("\nmessages\n")));
        int count = 0;
        for (std::string line; std::getline(lines, line); ++count) {
            EXPECT_LE(line.size(), 80U) << line;
        }
        EXPECT_GT(count, 20) << capture;
    }
}

TEST_F(summaries, of_an_lte_m_attach_follow_the_schema) {
    EXPECT_EQ(summarise(capture_file("ltem_attach_psm.pcapng")), 0);
    EXPECT_EQ(complaints(), "");
}

TEST_F(summaries, of_an_nb_iot_attach_follow_the_schema) {
    EXPECT_EQ(summarise(capture_file("nbiot_attach.pcapng")), 0);
    EXPECT_EQ(complaints(), "");
}

TEST_F(summaries, of_a_run_that_keeps_no_profile_follow_the_schema) {
    run_replay({"-q", "--temporary-profile", "--summary", "summary.json",
                capture_file("nbiot_attach.pcapng")});
    EXPECT_EQ(complaints(), "");
    EXPECT_FALSE(read_json("summary.json").at("profile").contains("file"));
}

TEST_F(summaries, of_an_hour_follow_the_schema) {
    EXPECT_EQ(summarise(fs::path(KIVRA_HOUR) / "hour.pcapng"), 0);
    EXPECT_EQ(complaints(), "");
}

TEST_F(summaries, of_nothing_follow_the_schema) {
    write_capture({});
    EXPECT_EQ(summarise("capture.pcapng"), 1);
    EXPECT_EQ(complaints(), "");
}

TEST_F(summaries, of_failures_follow_the_schema) {
    auto far = lab_network_accept();
    far.timestamp = 300'000'000'000'000'000;
    write_capture({lab_network_accept(),
                   {end_of_tags() + "m", 0},
                   {exported_pdu_image("lte-rrc.ul_ccch", "m"), 0},
                   {exported_pdu_image("nas-eps", "\x07"), 0},
                   far});
    EXPECT_EQ(summarise("capture.pcapng"), 1);
    EXPECT_EQ(complaints(), "");
    const auto summary = read_json("summary.json");
    EXPECT_EQ(summary["records"]["failed"], 3);
    EXPECT_EQ(summary["formats"]["lte-rrc.ul_ccch"]["nearest"], "lte_rrc.ul_ccch");
    EXPECT_EQ(summary["formats"][""]["failed"], 1);
    EXPECT_EQ(summary["measured"]["end"], "300000000000000000 us");
}

TEST_F(summaries, of_a_whole_capture_are_not_incomplete) {
    EXPECT_EQ(summary_of(capture_file("nbiot_attach.pcapng"))["incomplete"], json::array());
}

TEST_F(summaries, of_captures_that_break_off_are_incomplete_and_follow_the_schema) {
    const auto image = read_file(capture_file("ltem_attach_psm.pcapng"));
    write_file("cut.pcapng", image.substr(0, 1500));
    write_file("junk.pcapng", "no capture");
    const auto result =
        run_replay({"-q", "--summary", "summary.json", "cut.pcapng", "junk.pcapng"});
    EXPECT_EQ(complaints(), "");
    const auto summary = read_json("summary.json");
    std::string errors;
    for (const auto& text : summary["incomplete"]) {
        errors += "kivra-replay: " + text.get<std::string>() + '\n';
    }
    EXPECT_EQ(errors, result.error);
    EXPECT_EQ(std::ranges::count(errors, '\n'), 2);
}

TEST_F(summaries, count_what_could_not_be_read) {
    const auto ciphered = sample_capture("messages/nas_ciphered.pcapng");
    run_replay({"-q", "--summary", "summary.json", "--user-dlt=149=mac-lte-framed", ciphered,
                ciphered, ciphered, sample_capture("messages/nas_malformed.pcapng"),
                sample_capture("messages/rrc_malformed.pcapng"),
                sample_capture("messages/rrc_ciphered_mac_lte.pcap")});
    EXPECT_EQ(read_json("summary.json")["unreadable"],
              json({{"malformed", 2}, {"ciphered_nas", 3}, {"encrypted_rrc_packets", 1}}));
}

TEST_F(summaries, of_values_that_are_not_known_follow_the_schema) {
    // A tracking area update request with eDRX, without a word on the radio access.
    constexpr std::string_view request{
        "\x07\x48\x00\x0b\xf6\x62\xf2\x20\x80\x03\xc8\xc2\xe6\x5e\x9a\x6e\x01\x14", 18};
    write_capture({{exported_pdu_image("nas-eps", request), 0}});
    EXPECT_EQ(summarise("capture.pcapng"), 0);
    EXPECT_EQ(complaints(), "");
    const auto settings = read_json("summary.json")["settings"];
    EXPECT_THAT(
        settings,
        testing::Contains(testing::ResultOf(
            [](const json& entry) { return entry["in_force"].value("known", true); }, false)));
}

/// An accept with T3412, and three updates an hour apart.
class area_update_summaries : public summaries {
  protected:
    /// @param timer what the accept says of it
    static void write_updates(const std::string& timer) {
        const std::string request("\x07\x48\x00\x0b\xf6\x62\xf2\x20\x80\x03\xc8\xc2\xe6\x5e\x9a",
                                  15);
        const std::string accept = std::string("\x07\x49\x00", 3) + timer;
        std::vector<image_packet> packets{{exported_pdu_image("nas-eps", accept), 0}};
        constexpr std::uint64_t hour = 3'600'000'000;
        for (std::uint64_t i = 1; i <= 3; ++i) {
            packets.push_back({exported_pdu_image("nas-eps", request), i * hour});
        }
        write_capture(packets);
    }
};

TEST_F(area_update_summaries, have_the_timer_beside_the_updates) {
    write_updates({'\x5a', '\x49'});
    const auto result = run_replay({"--summary", "summary.json", "capture.pcapng"});
    EXPECT_THAT(
        result.output,
        HasSubstr("\nmeasured\n"
                  "    between area updates            2 x, 3600 s (60 min) to 3600 s (60 min),\n"
                  "                                    median 3600 s (60 min)\n"
                  "    area updates due                every 3240 s (54 min), which is T3412\n"));
    EXPECT_EQ(complaints(), "");
    const auto measured = read_json("summary.json")["measured"];
    EXPECT_EQ(measured["between_area_updates"]["median_s"], 3600);
    EXPECT_EQ(measured["area_update_timer"],
              json({{"name", "T3412"}, {"value_s", 3240}, {"record", 1}}));
}

TEST_F(area_update_summaries, have_a_timer_that_is_deactivated_without_a_time) {
    write_updates({'\x5a', '\xe0'});
    EXPECT_THAT(run_replay({"--summary", "summary.json", "capture.pcapng"}).output,
                HasSubstr("\n    area updates due                deactivated: T3412\n"));
    EXPECT_EQ(complaints(), "");
    EXPECT_EQ(read_json("summary.json")["measured"]["area_update_timer"],
              json({{"name", "T3412"}, {"record", 1}}));
}

TEST_F(area_update_summaries, have_no_timer_where_none_is_granted) {
    write_updates({});
    EXPECT_THAT(run_replay({"--summary", "summary.json", "capture.pcapng"}).output,
                testing::Not(HasSubstr("area updates due")));
    EXPECT_EQ(complaints(), "");
    EXPECT_FALSE(read_json("summary.json")["measured"].contains("area_update_timer"));
}

TEST_F(area_update_summaries, for_people_have_no_timer_without_updates) {
    const auto result = run_replay({capture_file("ltem_attach_psm.pcapng")});
    EXPECT_THAT(result.output, HasSubstr("\nmeasured\n"));
    EXPECT_THAT(result.output, testing::Not(HasSubstr("area updates due")));
}

TEST_F(summaries, with_a_member_more_do_not_follow_the_schema) {
    const auto summary = summary_of(capture_file("ltem_attach_psm.pcapng"));
    for (const char* const place :
         {"", "/records", "/formats/ip", "/unreadable", "/settings/0", "/settings/0/in_force",
          "/measured", "/measured/connected", "/measured/area_update_timer",
          "/measured/connections/0", "/conclusions/0", "/profile", "/profile/from_the_trace/0"}) {
        auto changed = summary;
        changed.at(json::json_pointer(place))["more"] = 1;
        write_file("summary.json", changed.dump());
        EXPECT_NE(complaints(), "") << place;
    }
}

TEST_F(summaries, with_a_member_less_do_not_follow_the_schema) {
    const auto summary = summary_of(capture_file("ltem_attach_psm.pcapng"));
    for (const auto& [name, value] : summary.items()) {
        auto changed = summary;
        changed.erase(name);
        write_file("summary.json", changed.dump());
        EXPECT_THAT(complaints(), HasSubstr("'" + name + "' is a required property"));
    }
}

/// The octets of its codes, and the name that settings have for it.
struct network {
    std::string_view octets;
    const char* name;
};

/// An attach accept of a network that result documents do not have.
class networks_without_results : public summaries, public testing::WithParamInterface<network> {
  protected:
    networks_without_results() {
        constexpr std::size_t attach_accept = 12;
        auto accept = records_of("ltem_attach_psm.pcapng").at(attach_accept);
        constexpr std::string_view known_network = "\x62\xf2\x20";
        for (std::size_t place = 0;
             (place = accept.data.find(known_network, place)) != std::string::npos;) {
            accept.data.replace(place, known_network.size(), GetParam().octets);
        }
        write_capture({accept});
    }

    /// In words, such as "granted T3324 10 s".
    static std::vector<std::string> told(const json& settings) {
        std::vector<std::string> list;
        for (const auto& entry : settings) {
            const auto& value = entry.contains("in_force") ? entry["in_force"] : entry;
            list.push_back(
                entry["role"].get<std::string>() + ' ' + entry["name"].get<std::string>() + ' ' +
                value["value"].get<std::string>() + ' ' + value["unit"].get<std::string>());
        }
        return list;
    }

    static void expect_settings(const json& settings) {
        EXPECT_THAT(told(settings), IsSupersetOf(std::vector<std::string>{
                                        "granted T3324 10 s", "granted T3412 extended 252000 s",
                                        "granted T3412 3240 s",
                                        std::string("granted operator ") + GetParam().name + ' '}));
    }
};

TEST_P(networks_without_results, show_their_settings_beside_the_error) {
    const auto result = run_replay({"--json", "capture.pcapng"});
    EXPECT_EQ(result.status, 1);
    const auto line = json::parse(result.output);
    EXPECT_EQ(line["error"], "invalid stoi argument");
    EXPECT_FALSE(line.contains("result"));
    expect_settings(line["settings"]);
}

TEST_P(networks_without_results, have_their_settings_in_the_summary) {
    EXPECT_EQ(summarise("capture.pcapng"), 1);
    const auto summary = read_json("summary.json");
    EXPECT_EQ(summary["records"], json({{"records", 1}, {"with_result", 0}, {"failed", 1}}));
    EXPECT_EQ(summary["diagnostics"][0]["text"], "invalid stoi argument");
    expect_settings(summary["settings"]);
}

INSTANTIATE_TEST_SUITE_P(all, networks_without_results,
                         testing::Values(network{{"\x00\xf1\x10", 3}, "001/01 Test network"},
                                         network{{"\x99\xf9\x07", 3}, "999/70"},
                                         network{{"\x09\xf1\x07", 3},
                                                 "901/70 Clementvale Baltic OÜ"}));

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
