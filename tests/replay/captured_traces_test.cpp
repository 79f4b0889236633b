// The same messages in every kind of capture give the same results.
#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>
#include <ostream>
#include <regex>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "tests/replay/capture_image.h"
#include "tests/replay/sample_captures.h"
#include "tests/replay/sample_records.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::Contains;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

using texts = std::vector<std::string>;

/// Ways to run records besides the default one.
const std::vector<texts> roads{{}, {"--plugin", KIVRA_PLUGIN, "--session"}};

struct replayed {
    int status = 0;
    texts lines;
    std::string profile;

    bool operator==(const replayed&) const = default;
};

std::ostream& operator<<(std::ostream& out, const replayed& run) {
    return out << "status " << run.status << ", " << testing::PrintToString(run.lines)
               << ", profile " << run.profile;
}

/// JSON Lines without numbers and timings, and the profile, empty when there is none.
replayed replay(texts arguments, const process_setting& setting = {}) {
    fs::remove("p.json");
    arguments.insert(arguments.end(), {"--json", "--profile", "p.json"});
    const auto result = run_replay(arguments, setting);
    EXPECT_THAT(result.error, HasSubstr(", 0 failed\n"));
    return {result.status, without_numbers(without_timing(result.output)),
            fs::exists("p.json") ? read_file("p.json") : ""};
}

texts with(texts arguments, const texts& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

bool is_of_format(const std::string& line, const std::string& begin) {
    return line.find(R"("format":")" + begin) != std::string::npos;
}

texts picked(const texts& lines, const std::function<bool(const std::string&)>& is_wanted) {
    texts result;
    std::ranges::copy_if(lines, std::back_inserter(result), is_wanted);
    return result;
}

struct sample_case {
    const char* file;
    texts options = {};
};

std::ostream& operator<<(std::ostream& out, const sample_case& sample) {
    return out << sample.file;
}

class captured_traces : public scratch_test,
                        public testing::WithParamInterface<std::tuple<const char*, sample_case>> {
  protected:
    static std::string trace() { return std::get<0>(GetParam()); }
    static sample_case sample() { return std::get<1>(GetParam()); }

    static texts capture_and_options() {
        return with({sample_capture(trace() + "/" + sample().file)}, sample().options);
    }

    static replayed reference() {
        return replay({sample_capture(trace() + "/exported_pdu.pcapng")});
    }
};

std::string name_of(const testing::TestParamInfo<captured_traces::ParamType>& test) {
    const std::string name =
        std::string(std::get<0>(test.param)) + "_" + std::get<1>(test.param).file;
    return std::regex_replace(name, std::regex("[^a-z0-9]"), "_");
}

const auto traces = testing::Values("ltem_attach_psm", "nbiot_attach");

class whole_traces : public captured_traces {};

TEST_P(whole_traces, give_what_exported_pdus_give) {
    const auto expected = reference();
    for (const auto& road : roads) {
        EXPECT_EQ(replay(with(capture_and_options(), road)), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(
    all, whole_traces,
    testing::Combine(traces, testing::Values(sample_case{"gsmtap_raw_ip.pcap"},
                                             sample_case{"gsmtap_ethernet.pcap"},
                                             sample_case{"gsmtap_cooked.pcap"},
                                             sample_case{"gsmtap_cooked_v2.pcap"},
                                             sample_case{"gsmtap_big_endian.pcap"},
                                             sample_case{"gsmtap_big_endian.pcapng"},
                                             sample_case{"gsmtap_compressed.pcap.gz"},
                                             sample_case{"gsmtap_compressed.pcapng.gz"},
                                             sample_case{"mixed.pcapng"})),
    name_of);

class traces_without_ip : public captured_traces {};

TEST_P(traces_without_ip, give_what_exported_pdus_give) {
    auto expected = reference();
    expected.lines =
        picked(expected.lines, [](const auto& line) { return !is_of_format(line, "ip"); });
    for (const auto& road : roads) {
        EXPECT_EQ(replay(with(capture_and_options(), road)), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(
    all, traces_without_ip,
    testing::Combine(traces, testing::Values(sample_case{"gsmtap_exported_by_port.pcapng"},
                                             sample_case{"gsmtap_ipv4.pcap"})),
    name_of);

class nas_of_traces : public captured_traces {};

TEST_P(nas_of_traces, gives_what_exported_pdus_give) {
    const auto expected = replay({sample_capture(trace() + "/exported_pdu_nas.pcapng")});
    for (const auto& road : roads) {
        EXPECT_EQ(replay(with(capture_and_options(), road)), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(
    all, nas_of_traces,
    testing::Combine(traces, testing::Values(sample_case{"user_dlt_nas.pcap",
                                                         {"--user-dlt", "148=nas-eps"}},
                                             sample_case{"s1ap_150.pcap", {"--user-dlt=150=s1ap"}},
                                             sample_case{"s1ap_exported.pcapng"})),
    name_of);

class core_network_traces : public captured_traces {};

TEST_P(core_network_traces, give_nas_and_ip_as_exported_pdus_do) {
    const auto expected = picked(reference().lines, [](const auto& line) {
        return is_of_format(line, "nas-eps") || is_of_format(line, "ip");
    });
    for (const auto& road : roads) {
        EXPECT_EQ(replay(with(capture_and_options(), road)), (replayed{0, expected, ""}));
    }
}

INSTANTIATE_TEST_SUITE_P(all, core_network_traces,
                         testing::Combine(traces,
                                          testing::Values(sample_case{"s1ap_ethernet.pcap"},
                                                          sample_case{"s1ap_cooked.pcap"},
                                                          sample_case{"s1ap_cooked_v2.pcap"})),
                         name_of);

class mac_traces : public captured_traces {};

/// A line without the record's time: what stands inside an RRC message has the time of that one.
std::string without_time(const std::string& line) {
    static const std::regex time(R"("time":"[^"]*",)");
    return std::regex_replace(line, time, "");
}

TEST_P(mac_traces, give_rrc_as_exported_pdus_do_and_the_nas_in_it) {
    const auto expected = reference();
    texts nas;
    for (const auto& line : expected.lines) {
        if (is_of_format(line, "nas-eps")) {
            nas.push_back(without_time(line));
        }
    }
    const auto is_rrc = [](const auto& line) { return is_of_format(line, "lte_rrc."); };
    for (const auto& road : roads) {
        const auto result = replay(with(capture_and_options(), road));
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(picked(result.lines, is_rrc), picked(expected.lines, is_rrc));
        const auto others = picked(result.lines, std::not_fn(is_rrc));
        EXPECT_THAT(others, Not(IsEmpty()));
        for (const auto& line : others) {
            EXPECT_THAT(nas, Contains(without_time(line)));
        }
        EXPECT_EQ(result.profile, expected.profile);
    }
}

INSTANTIATE_TEST_SUITE_P(
    all, mac_traces,
    testing::Combine(
        traces,
        testing::Values(sample_case{"mac_lte_147.pcap", {"--user-dlt", "147=mac-lte-framed"}},
                        sample_case{"mac_lte_149.pcap", {"--user-dlt", "149=mac-lte-framed"}},
                        sample_case{"mac_lte_exported.pcapng"},
                        sample_case{
                            "mac_lte_udp.pcap",
                            {"--tshark-option=--enable-heuristic", "--tshark-option=mac_lte_udp"}},
                        sample_case{"mac_lte_udp_149.pcap",
                                    {"--user-dlt", "149=udp", "--tshark-option=--enable-heuristic",
                                     "--tshark-option=mac_lte_udp"}})),
    name_of);

class piped_traces : public captured_traces {};

TEST_P(piped_traces, give_what_exported_pdus_give) {
    const auto expected = reference();
    const auto file = sample_capture(trace() + "/" + sample().file).string();
    fs::copy(file, "capture");
    for (const std::string capture : {"cat capture | " KIVRA_REPLAY " -",
                                      KIVRA_REPLAY " <(cat capture)", KIVRA_REPLAY " - <capture"}) {
        fs::remove("p.json");
        const auto result = run_process({"/bin/bash", "-c", capture + " --json --profile p.json"});
        EXPECT_EQ(result.status, 0) << capture << result.error;
        EXPECT_EQ(without_numbers(result.output), expected.lines) << capture;
        EXPECT_EQ(read_file("p.json"), expected.profile) << capture;
    }
}

INSTANTIATE_TEST_SUITE_P(
    all, piped_traces,
    testing::Combine(traces, testing::Values(sample_case{"exported_pdu.pcapng"},
                                             sample_case{"gsmtap_raw_ip.pcap"},
                                             sample_case{"gsmtap_ethernet.pcap"},
                                             sample_case{"gsmtap_big_endian.pcapng"},
                                             sample_case{"gsmtap_compressed.pcap.gz"},
                                             sample_case{"gsmtap_compressed.pcapng.gz"},
                                             sample_case{"mixed.pcapng"})),
    name_of);

class captures_by_tshark : public scratch_test {};

TEST_F(captures_by_tshark, give_the_same_through_a_plugin_without_a_session) {
    const std::string capture = sample_capture("nbiot_attach/gsmtap_ethernet.pcap");
    EXPECT_EQ(replay({capture, "--plugin", KIVRA_PLUGIN}), replay({capture}));
}

TEST_F(captures_by_tshark, may_be_exported_by_wireshark) {
    for (const auto& [capture, tap] : {std::pair("gsmtap_ethernet.pcap", "OSI layer 4"),
                                       std::pair("s1ap_ethernet.pcap", "OSI layer 3")}) {
        const std::string original = sample_capture(std::string("nbiot_attach/") + capture);
        const auto exported = run_process(
            {tshark_directory() / "tshark", "-r", original, "-U", tap, "-w", "exported.pcapng"});
        ASSERT_EQ(exported.status, 0) << exported.error;
        EXPECT_EQ(replay({"exported.pcapng"}), replay({original}));
    }
}

TEST_F(captures_by_tshark, may_use_wiresharks_table_of_user_link_types) {
    fs::create_directories("home/.config/wireshark");
    write_file("home/.config/wireshark/user_dlts",
               "\"User 1 (DLT=148)\",\"nas-eps\",\"0\",\"\",\"0\",\"\"\n");
    const environment_guard kept("HOME");
    const environment_guard kept_configuration("XDG_CONFIG_HOME");
    set_environment("HOME", scratch() / "home");
    set_environment("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ(replay({sample_capture("nbiot_attach/user_dlt_nas.pcap")}),
              replay({sample_capture("nbiot_attach/exported_pdu_nas.pcapng")}));
}

TEST_F(captures_by_tshark, start_one_tshark_besides) {
    write_noting_tshark();
    replay({sample_capture("nbiot_attach/gsmtap_ethernet.pcap"), "--tshark-directory", "bin"});
    const auto calls = without_numbers(read_file("calls"));
    EXPECT_THAT(calls, SizeIs(2));
    EXPECT_THAT(calls, Contains("-Y nas-eps||lte_rrc -r - -T json -l"));
}

TEST_F(captures_by_tshark, may_need_more_than_the_layers_from_some_packet_on) {
    // GSMTAP, S1AP, GSMTAP.
    const std::string gsmtap = sample_capture("nbiot_attach/gsmtap_ethernet.pcap");
    const std::string s1ap = sample_capture("nbiot_attach/s1ap_ethernet.pcap");
    constexpr std::size_t head = 24;
    write_file("c.pcap",
               read_file(gsmtap) + read_file(s1ap).substr(head) + read_file(gsmtap).substr(head));
    write_noting_tshark();
    const auto first = replay({gsmtap}).lines;
    const auto expected = with(with(first, replay({s1ap}).lines), first);
    EXPECT_THAT(replay({"c.pcap", "--tshark-directory", "bin"}).lines, ElementsAreArray(expected));
    const auto calls = picked(without_numbers(read_file("calls")), [](const auto& call) {
        return call.find("io,phs") != std::string::npos;
    });
    ASSERT_THAT(calls, SizeIs(2));
    EXPECT_THAT(calls[0], HasSubstr(" -j frame lte_rrc"));
    EXPECT_THAT(calls[1], Not(HasSubstr(" -j ")));
}

TEST_F(captures_by_tshark, give_several_messages_of_a_packet) {
    const auto formats_and_times = [](const replayed& run) {
        texts begins;
        for (const auto& line : run.lines) {
            begins.push_back(line.substr(0, line.find(",\"result\"")));
        }
        return begins;
    };
    EXPECT_THAT(formats_and_times(replay({sample_capture("messages/several_in_a_packet.pcap")})),
                ElementsAreArray({R"({"time":"2025-11-24T16:00:00.430500Z","format":"nas-eps")",
                                  R"({"time":"2025-11-24T16:00:00.430500Z","format":"nas-eps")"}));
    EXPECT_THAT(
        formats_and_times(replay({sample_capture("messages/several_in_a_mac_pdu.pcap"),
                                  "--user-dlt=149=mac-lte-framed"})),
        ElementsAreArray({R"({"time":"2025-11-24T16:00:11.037500Z","format":"lte_rrc.dl_dcch")",
                          R"({"time":"2025-11-24T16:00:11.037500Z","format":"lte_rrc.dl_dcch")"}));
}

/// The formats of a capture's records, read by tshark.
texts formats_of(const char* capture, const texts& options) {
    texts formats;
    for (const auto& line : replay(with({sample_capture(capture)}, options)).lines) {
        formats.push_back(nlohmann::json::parse(line).at("format").get<std::string>());
    }
    return formats;
}

/// An option that changes nothing, but that tshark reads the capture.
const texts by_tshark{"--tshark-option=-n"};

TEST_F(captures_by_tshark, fail_the_messages_of_packets_that_were_cut_short) {
    const auto pieces =
        pieces_of_pcap(read_file(sample_capture("nbiot_attach/gsmtap_ethernet.pcap")));
    // An RRC message with a NAS message inside, without its last byte.
    auto packet = pieces.at(4);
    constexpr std::size_t packet_head = 16;
    const auto whole = packet.size() - packet_head;
    packet.pop_back();
    packet[8] = static_cast<char>(whole - 1);
    write_file("c.pcap", pieces.at(0) + packet);
    const auto result = run_replay({"--json", "c.pcap"});
    EXPECT_EQ(result.error, "2 records, 2 failed\n");
    EXPECT_THAT(
        without_numbers(result.output),
        testing::Each(HasSubstr("cut short by the snapshot length: " + std::to_string(whole - 1) +
                                " of " + std::to_string(whole) + " bytes captured")));
}

TEST_F(captures_by_tshark, give_nas_inside_rrc_a_record_behind_it) {
    EXPECT_THAT(formats_of("messages/nas_in_rrc.pcapng", by_tshark),
                ElementsAreArray({"lte_rrc.dl_dcch", "nas-eps"}));
    EXPECT_THAT(formats_of("messages/nas_in_rrc_setup.pcapng", by_tshark),
                ElementsAreArray({"lte_rrc.ul_dcch", "nas-eps"}));
}

TEST_F(captures_by_tshark, give_nas_inside_rrc_once_within_a_second) {
    EXPECT_THAT(formats_of("messages/nas_in_rrc_again_at_once.pcapng", by_tshark),
                ElementsAreArray({"lte_rrc.dl_dcch", "nas-eps"}));
    EXPECT_THAT(formats_of("messages/nas_in_rrc_again_before.pcapng", by_tshark),
                ElementsAreArray({"nas-eps", "lte_rrc.dl_dcch"}));
    EXPECT_THAT(formats_of("messages/nas_in_rrc_setup_again.pcapng", by_tshark),
                ElementsAreArray({"lte_rrc.ul_dcch", "nas-eps"}));
}

TEST_F(captures_by_tshark, give_nas_inside_rrc_again_beyond_a_second) {
    EXPECT_THAT(formats_of("messages/nas_in_rrc_again_later.pcapng", by_tshark),
                ElementsAreArray({"lte_rrc.dl_dcch", "nas-eps", "nas-eps"}));
}

TEST_F(captures_by_tshark, give_nas_inside_rrc_in_each_direction_and_radio) {
    for (const std::string trace : {"ltem_attach_psm", "nbiot_attach"}) {
        const auto nas = replay({sample_capture(trace + "/exported_pdu_nas.pcapng")}).lines;
        auto inner = replay({sample_capture(trace + "/nas_in_rrc.pcapng"), by_tshark[0]}).lines;
        std::erase_if(inner, [](const auto& line) { return is_of_format(line, "lte_rrc."); });
        EXPECT_EQ(inner, nas);
    }
}

TEST_F(captures_by_tshark, leave_nas_inside_exported_pdus_in_its_record) {
    EXPECT_THAT(formats_of("messages/nas_in_rrc.pcapng", {}),
                ElementsAreArray({"lte_rrc.dl_dcch"}));
    EXPECT_THAT(formats_of("messages/nas_in_rrc_again_later.pcapng", {}),
                ElementsAreArray({"lte_rrc.dl_dcch", "nas-eps"}));
    EXPECT_THAT(formats_of("messages/nas_in_rrc_compressed.pcapng.gz", {}),
                ElementsAreArray({"lte_rrc.dl_dcch"}));
}

TEST_F(captures_by_tshark, are_read_with_the_users_options_and_analysed_without) {
    write_noting_tshark();
    const std::string capture = sample_capture("nbiot_attach/exported_pdu.pcapng");
    const auto expected = replay({capture});
    EXPECT_EQ(replay({capture, "--tshark-directory", "bin", "--tshark-option=-o",
                      "--tshark-option=gsmtap.obsolete:x", "--tshark-option=-n"})
                  .status,
              2);
    fs::remove("calls");
    EXPECT_EQ(replay({capture, "--tshark-directory", "bin", "--tshark-option=-n"}), expected);
    const auto calls = without_numbers(read_file("calls"));
    ASSERT_THAT(calls, SizeIs(2));
    EXPECT_THAT(calls, Contains("-Y nas-eps||lte_rrc -r - -T json -l"));
    EXPECT_THAT(calls, Contains(testing::EndsWith(" -n")));
}

TEST_F(captures_by_tshark, that_are_exported_pdus_need_none) {
    write_noting_tshark();
    replay({sample_capture("nbiot_attach/exported_pdu.pcapng"), "--tshark-directory", "bin"});
    EXPECT_EQ(read_file("calls"), "-Y nas-eps||lte_rrc -r - -T json -l\n");
}

TEST_F(captures_by_tshark, may_send_gsmtap_to_another_port) {
    auto image = read_file(sample_capture("nbiot_attach/gsmtap_ethernet.pcap"));
    constexpr std::string_view port{"\x12\x79\x12\x79", 4};
    constexpr std::string_view other{"\x12\x7a\x12\x7a", 4};
    for (auto place = image.find(port); place != std::string::npos; place = image.find(port)) {
        image.replace(place, port.size(), other);
    }
    write_file("c.pcap", image);
    EXPECT_EQ(replay({"c.pcap"}).status, 1);
    EXPECT_EQ(replay({"c.pcap", "--tshark-option=-d", "--tshark-option=udp.port==4730,gsmtap"}),
              replay({sample_capture("nbiot_attach/exported_pdu.pcapng")}));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
