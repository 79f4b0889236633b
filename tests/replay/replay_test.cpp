// kivra-replay as its users run it: as a process, with the built plug-in and the real tshark.
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "replay/capture.h"
#include "tests/replay/capture_image.h"
#include "tests/support/files.h"
#include "tests/support/process.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* prefix_document =
    "{\n"
    "    \"nas-eps\": {\n"
    "        \"pdn\": {\n"
    "            \"ICMPv6_prefix\": \"2001:0db8:0001:0000:0000:0000:0000:0000\"\n"
    "        }\n"
    "    }\n"
    "}\n";

const image_packet ip_packet{exported_pdu_image("ip", router_advertisement()), 0};
const image_packet nameless_packet{end_of_tags() + "m", 0};

/// The first packet of a sample: system information with both the paging cycle and repetitions.
image_packet system_information(const char* sample) {
    capture source(capture_file(sample));
    const auto packet = source.next().value();
    const std::string message(packet.payload.begin(), packet.payload.end());
    return {exported_pdu_image(packet.format, message), packet.timestamp};
}

class kivra_replay : public scratch_test {
  protected:
    static process_result run(std::vector<std::string> arguments,
                              const process_setting& setting = {}) {
        arguments.insert(arguments.begin(), KIVRA_REPLAY);
        return run_process(arguments, setting);
    }

    static void write_capture(const char* name, const std::vector<image_packet>& packets) {
        write_file(name, capture_image(exported_pdu_link_type, packets));
    }

    /// A folder with a shell script for a tshark.
    static void write_tshark(const fs::path& directory, const std::string& script) {
        fs::create_directories(directory);
        write_file(directory / "tshark", "#!/bin/sh\n" + script);
        fs::permissions(directory / "tshark", fs::perms::owner_all);
    }

    static void expect_refusal(const process_result& result, const std::string& reason) {
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_THAT(result.error, AllOf(StartsWith("kivra-replay: "), HasSubstr(reason)));
        EXPECT_TRUE(one_line(result.error)) << result.error;
    }

    static bool one_line(const std::string& text) { return text.find('\n') == text.size() - 1; }
};

TEST_F(kivra_replay, shows_every_record_of_an_lte_m_attach_and_the_profile) {
    const auto result = run({capture_file("ltem_attach_psm.pcapng")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "22 records, 0 failed\n");
    EXPECT_THAT(
        result.output,
        AllOf(HasSubstr("\nrecord 1  2025-11-24T16:00:00.000000Z  lte_rrc.bcch_dl_sch_br\n{\n"),
              HasSubstr("\"connection_state\": \"rrcConnectionSetup\""),
              HasSubstr("\nrecord 15  2025-11-24T16:00:00.637500Z  ip\n{\n"),
              HasSubstr("\"ICMPv6_prefix\": \"2001:0db8:0001:0000:0000:0000:0000:0000\""),
              HasSubstr("\nrecord 22  2025-11-24T17:00:06.153500Z  lte_rrc.dl_dcch\n{\n"),
              Not(HasSubstr("record 23")), Not(HasSubstr("failed")), Not(HasSubstr("log ("))));
    EXPECT_THAT(result.output,
                AllOf(HasSubstr("\"mcc\": \"Germany\""), HasSubstr("\"mnc\": \"Vodafone D2 GmbH\""),
                      HasSubstr("\"apn\": \"iot.example.mnc002.mcc262.gprs\""),
                      HasSubstr("\"APN_AMBR_downlink_kbps\": 568"),
                      HasSubstr("\"APN_AMBR_uplink_kbps\": 576"), HasSubstr("\"8.8.8.8\""),
                      HasSubstr("\"8.8.4.4\""), HasSubstr("\"tac\": \"20001\"")));
    EXPECT_THAT(result.output, EndsWith("\nprofile kivra-profile.json\n"
                                        "    cdrx_inactive_timer        100\n"
                                        "    cdrx_int                   30\n"
                                        "    cdrx_on_duration           10\n"
                                        "    config_lte_psm_req_rat     00000101\n"
                                        "    config_lte_psm_req_rptau   01000111\n"
                                        "    idrx_int                   2.56\n"
                                        "    idrx_reps                  32\n"
                                        "    psm                        True\n"
                                        "    and 23 members at their defaults\n"));
    EXPECT_THAT(names_in("."), ElementsAre("kivra-profile.json"));
    EXPECT_EQ(read_json("kivra-profile.json").size(), 31U);
}

TEST_F(kivra_replay, shows_every_record_of_an_nb_iot_attach_and_the_profile) {
    const auto result = run({capture_file("nbiot_attach.pcapng"), "--profile", "nb iot.json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "8 records, 0 failed\n");
    EXPECT_THAT(result.output, AllOf(HasSubstr("\"code\": 50,\n            \"reason\": "
                                               "\"PDN type IPv4 only allowed\""),
                                     HasSubstr("\"code\": 27,\n            \"reason\": "
                                               "\"Missing or unknown APN\"")));
    EXPECT_THAT(
        result.output,
        AllOf(HasSubstr("\nrecord 1  2025-11-25T19:46:40.000000Z  lte_rrc.bcch_dl_sch.nb\n"),
              HasSubstr("\nrecord 8  "), Not(HasSubstr("\nrecord 9  ")),
              HasSubstr("\nprofile nb iot.json\n"),
              HasSubstr("    idrx_int                   0.64\n"),
              HasSubstr("    idrx_reps                  64\n")));
    EXPECT_THAT(names_in("."), ElementsAre("nb iot.json"));
}

TEST_F(kivra_replay, takes_raw_ip_captures) {
    for (const auto link_type : {101U, 228U, 229U}) {
        write_file("ip.pcap",
                   capture_image(link_type, {{router_advertisement(), 1}}, {.pcapng = false}));
        const auto result = run({"ip.pcap"});
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.output,
                    HasSubstr(std::string("\nrecord 1  1970-01-01T00:00:00.000001Z  ip\n") +
                              prefix_document));
    }
}

TEST_F(kivra_replay, numbers_the_records_of_each_capture) {
    write_capture("a.pcapng", {ip_packet, ip_packet});
    write_capture("b.pcapng", {ip_packet});
    const auto result = run({"a.pcapng", "b.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "3 records, 0 failed\n");
    const auto record = [](int number) {
        return "\nrecord " + std::to_string(number) + "  1970-01-01T00:00:00.000000Z  ip\n" +
               prefix_document;
    };
    EXPECT_THAT(result.output, HasSubstr("\ncapture a.pcapng\n" + record(1) + record(2) +
                                         "\ncapture b.pcapng\n" + record(1) + "\nprofile "));
}

TEST_F(kivra_replay, reports_records_that_fail_and_goes_on) {
    write_tshark("broken", "echo 'no JSON'\n");
    write_capture("c.pcapng", {nameless_packet,
                               {exported_pdu_image("nas-eps", "m"), 0},
                               {exported_pdu_image("ip", "m"), 0, 99U},
                               ip_packet});
    const auto result = run({"c.pcapng", "--tshark-directory", "broken"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "4 records, 3 failed\n");
    EXPECT_THAT(
        result.output,
        AllOf(HasSubstr("  (no format)\nfailed: no dissector name among the packet's tags\n"),
              HasSubstr("  nas-eps\nfailed: [json.exception.parse_error.101]"),
              HasSubstr("  ip\nfailed: cut short by the snapshot length: 13 of 99 bytes"),
              HasSubstr(std::string("  ip\n") + prefix_document)));
    EXPECT_THAT(names_in("."), ElementsAre("broken", "c.pcapng"));
}

TEST_F(kivra_replay, says_which_records_give_nothing) {
    write_capture("c.pcapng", {{exported_pdu_image("http", "GET"), 0}});
    const auto result = run({"c.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("  http\nno result\n"));
}

TEST_F(kivra_replay, calls_the_plugin_in_order) {
    write_capture("c.pcapng", {{exported_pdu_image("log", "one"), 7},
                               nameless_packet,
                               {exported_pdu_image("fail", "two"), 8}});
    const auto result = run({"--plugin", KIVRA_RECORDING_PLUGIN, "--tshark-directory", "/t",
                             "--profile", "p.json", "c.pcapng"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(read_file("calls"),
              "version\n"
              "init_parameters\n"
              "init tshark_directory=/t file_path=p.json\n"
              "data log one 7\n"
              "data fail two 8\n"
              "complete\n"
              "release\n");
    EXPECT_THAT(result.output,
                AllOf(StartsWith("plug-in " KIVRA_RECORDING_PLUGIN ", version 1.22.3\n"
                                 "tshark in /t\n"),
                      HasSubstr("  log\nno result\nlog (level 3): x mapping not found\n\n"),
                      HasSubstr("  fail\nfailed: failed on two\n")));
}

TEST_F(kivra_replay, finds_tshark_on_path) {
    write_tshark("bin", "exit 1\n");
    write_capture("c.pcapng", {ip_packet});
    const environment_guard kept("PATH");
    set_environment("PATH", "/nowhere:" + scratch().string() + "/bin");
    const auto result = run({"c.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("\ntshark in " + scratch().string() + "/bin\n"));
}

TEST_F(kivra_replay, finds_the_plugin_of_an_installation) {
    fs::create_directory("bin");
    fs::create_directories("lib/kivra");
    fs::copy_file(KIVRA_REPLAY, "bin/kivra-replay");
    fs::copy_file(KIVRA_RECORDING_PLUGIN, "lib/kivra/kivra-tshark-sink.so");
    write_capture("c.pcapng", {});
    const auto result = run_process({"bin/kivra-replay", "c.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, StartsWith("plug-in " + scratch().string() +
                                          "/lib/kivra/kivra-tshark-sink.so, version 1.22.3\n"));
}

TEST_F(kivra_replay, prints_help_and_version) {
    const auto help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("--tshark-directory"));
    EXPECT_EQ(help.error, "");
    const auto version = run({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "kivra-replay " KIVRA_VERSION "\n");
}

TEST_F(kivra_replay, refuses_a_wrong_command_line) {
    expect_refusal(run({}), "CAPTURE is required");
    expect_refusal(run({"c.pcapng", "--nosuch"}), "--nosuch");
    expect_refusal(run({"c.pcapng", "--profile"}), "--profile");
    expect_refusal(run({"c.pcapng", "--profile", ""}), "must not be empty");
    expect_refusal(run({""}), "must not be empty");
}

TEST_F(kivra_replay, refuses_captures_that_can_not_be_read_before_any_record_is_run) {
    write_capture("good.pcapng", {ip_packet});
    write_file("text.pcapng", "no capture at all");
    write_file("ethernet.pcap", capture_image(1, {}, {.pcapng = false}));
    const auto refused = [](const char* name) {
        return run({"good.pcapng", name, "--plugin", KIVRA_RECORDING_PLUGIN});
    };
    expect_refusal(refused("missing.pcapng"), "missing.pcapng: No such file or directory");
    expect_refusal(refused("text.pcapng"), "text.pcapng: unknown file format");
    expect_refusal(refused("."), "Is a directory");
    expect_refusal(refused("ethernet.pcap"), "ethernet.pcap: unsupported link type EN10MB");
    EXPECT_FALSE(fs::exists("calls"));
}

TEST_F(kivra_replay, refuses_a_plugin_that_can_not_be_loaded) {
    write_capture("c.pcapng", {ip_packet});
    expect_refusal(run({"c.pcapng", "--plugin", "missing.so"}), "can't load the plug-in: ");
    expect_refusal(run({"c.pcapng", "--plugin", "c.pcapng"}), "can't load the plug-in: ");
    expect_refusal(run({"c.pcapng", "--plugin", KIVRA_INCOMPLETE_PLUGIN}),
                   "undefined symbol: kivra_sink_init_parameters");
}

TEST_F(kivra_replay, refuses_to_run_without_its_plugin) {
    fs::copy_file(KIVRA_REPLAY, "kivra-replay");
    write_capture("c.pcapng", {ip_packet});
    expect_refusal(run_process({"./kivra-replay", "c.pcapng"}),
                   "no plug-in: neither " + scratch().string() + "/kivra-tshark-sink.so nor ");
}

TEST_F(kivra_replay, refuses_to_run_without_tshark) {
    const environment_guard kept("PATH");
    set_environment("PATH", "/nowhere");
    write_capture("c.pcapng", {ip_packet});
    expect_refusal(run({"c.pcapng"}), "no tshark on PATH; name its folder with --tshark-directory");
    expect_refusal(run({"c.pcapng", "--tshark-directory", "/nowhere"}),
                   "the plug-in can't start: tshark not found from path or default installation "
                   "location");
}

TEST_F(kivra_replay, shows_what_a_broken_capture_gives_and_goes_on_with_the_next) {
    const auto whole = capture_image(exported_pdu_link_type,
                                     {system_information("ltem_attach_psm.pcapng"), ip_packet});
    write_file("broken.pcapng", whole.substr(0, whole.size() - 10));
    write_capture("next.pcapng", {ip_packet});
    const auto result = run({"broken.pcapng", "next.pcapng"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.error, AllOf(StartsWith("kivra-replay: can't read broken.pcapng: "),
                                    EndsWith("\n2 records, 0 failed\n")));
    EXPECT_THAT(result.output, AllOf(HasSubstr("\"idrx_int\": \"1.28\""),
                                     HasSubstr("capture next.pcapng"), HasSubstr(prefix_document),
                                     HasSubstr("\nprofile kivra-profile.json\n"
                                               "    idrx_int                   1.28\n"
                                               "    idrx_reps                  16\n"
                                               "    and 29 members at their defaults\n")));
}

TEST_F(kivra_replay, shows_no_profile_of_an_earlier_run) {
    write_file("kivra-profile.json", R"({"idrx_int": "5.12"})");
    write_capture("c.pcapng", {ip_packet});
    const auto result = run({"c.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output,
                AllOf(EndsWith("\nprofile kivra-profile.json: not written by this run: the "
                               "records did not give both idrx_int and idrx_reps\n"),
                      Not(HasSubstr("5.12"))));
}

TEST_F(kivra_replay, replaces_the_profile_of_an_earlier_run) {
    write_file("kivra-profile.json", R"({"idrx_int": "5.12"})");
    write_capture("c.pcapng", {system_information("nbiot_attach.pcapng")});
    const auto result = run({"c.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("    idrx_int                   0.64\n"));
}

TEST_F(kivra_replay, says_that_the_profile_can_not_be_written) {
    write_capture("c.pcapng", {system_information("nbiot_attach.pcapng")});
    const auto result = run({"c.pcapng", "--profile", "missing/p.json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output,
                EndsWith("\nprofile missing/p.json: not written by this run: the path can't be "
                         "written (No such file or directory)\n"));
}

TEST_F(kivra_replay, ends_and_tidies_up_when_nobody_reads_its_output) {
    const auto result = run({capture_file("nbiot_attach.pcapng")}, {.output_has_no_reader = true});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't write the report\n");
    EXPECT_THAT(names_in("."), IsEmpty());
}

TEST_F(kivra_replay, cancels_and_releases_when_its_output_can_not_be_written) {
    write_capture("c.pcapng", {{exported_pdu_image("document", "m"), 7}});
    const auto result =
        run({"c.pcapng", "--plugin", KIVRA_RECORDING_PLUGIN}, {.output = "/dev/full"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't write the report\n");
    EXPECT_THAT(read_file("calls"), EndsWith("\ncancel\nrelease\n"));
}

TEST_F(kivra_replay, shows_its_progress_on_a_terminal_and_clears_it) {
    write_capture("c.pcapng", {ip_packet, ip_packet});
    const auto result = run({"c.pcapng"}, {.error_is_terminal = true});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.error, AllOf(HasSubstr("#"), HasSubstr("] 100%  record 2"),
                                    EndsWith("\r\033[K"), Not(HasSubstr("records"))));
    EXPECT_THAT(result.output, Not(HasSubstr("%")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
