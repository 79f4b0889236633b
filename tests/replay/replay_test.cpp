// kivra-replay as its users run it: as a process, with the built plug-in and the real tshark.
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "replay/input/capture.h"
#include "tests/replay/capture_image.h"
#include "tests/replay/sample_captures.h"
#include "tests/replay/sample_records.h"
#include "tests/support/files.h"
#include "tests/support/process.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::AllOf;
using testing::AnyOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* prefix_details =
    "IPv6 packet; PDN prefix 2001:0db8:0001:0000:0000:0000:0000:0000\n";

const image_packet ip_packet{exported_pdu_image("ip", router_advertisement()), 0};
const image_packet nameless_packet{end_of_tags() + "m", 0};

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
        AllOf(HasSubstr("\n        1  2025-11-24T16:00:00.000000Z  BCCH-DL-SCH BR, "
                        "SystemInformation-BR-r13 [SIB2]; idrx_int 1.28, idrx_reps 16\n"),
              HasSubstr("  DL-CCCH, RRCConnectionSetup; cdrx_int 30, cdrx_on_duration 10, "
                        "cdrx_inactive_timer 100\n"),
              HasSubstr("\n       10  2025-11-24T16:00:00.331200Z  ESM information request\n"),
              HasSubstr("\n       15  2025-11-24T16:00:00.637500Z  IPv6 packet; "
                        "PDN prefix 2001:0db8:0001:0000:0000:0000:0000:0000, "),
              HasSubstr("\n       22  2025-11-24T17:00:06.153500Z  DL-DCCH, RRCConnectionRelease\n"
                        "\n22 records: 20 with a result, 2 without, 0 failed\n"),
              Not(HasSubstr("log: "))));
    EXPECT_THAT(result.output,
                AllOf(HasSubstr("  Attach accept, Activate default EPS bearer context request; "
                                "T3324 10 seconds (00000101), "),
                      HasSubstr(", operator 262/2 Vodafone D2 GmbH, Germany, "),
                      HasSubstr(", apn iot.example.mnc002.mcc262.gprs, "),
                      HasSubstr(", APN-AMBR downlink 568 kbit/s, APN-AMBR uplink 576 kbit/s, "),
                      HasSubstr(", primary DNS server 8.8.8.8, secondary DNS server 8.8.4.4\n"),
                      HasSubstr(", tac 20001, ")));
    EXPECT_THAT(
        result.output,
        HasSubstr(
            "\nprofile kivra-profile.json\n"
            "    cdrx_inactive_timer             100         record 12\n"
            "        DRX inactivity timer 100 PDCCH subframes\n"
            "    cdrx_int                        30          record 12\n"
            "        long DRX cycle 320 ms; differs: place in a table of timers, not\n"
            "        milliseconds\n"
            "    cdrx_on_duration                10          record 12\n"
            "        on-duration timer 10 PDCCH subframes\n"
            "    config_lte_psm_req_rat          00000101    record 13\n"
            "        T3324 10 s granted\n"
            "    config_lte_psm_req_rptau        01000111    record 13\n"
            "        T3412 extended 252000 s granted\n"
            "    idrx_int                        2.56        record 16\n"
            "        default paging cycle 2.56 s\n"
            "    idrx_reps                       32          record 16\n"
            "        MPDCCH repetitions for paging 32\n"
            "    psm                             True        record 13\n"
            "        PSM granted: T3324 10 s\n"
            "    psm_int                         3600        record 20\n"
            "        T3412 extended deactivated granted; differs: at its default: the profile\n"
            "        never takes it\n"
            "    at their defaults: cdrx_len 7, chip 5, "));
    EXPECT_THAT(names_in("."), ElementsAre("kivra-profile.json"));
    EXPECT_EQ(read_json("kivra-profile.json").size(), 31U);
}

TEST_F(kivra_replay, shows_every_record_of_an_nb_iot_attach_and_the_profile) {
    const auto result = run({capture_file("nbiot_attach.pcapng"), "--profile", "nb iot.json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "8 records, 0 failed\n");
    EXPECT_THAT(
        result.output,
        AllOf(HasSubstr("        1  2025-11-25T19:46:40.000000Z  BCCH-DL-SCH NB, "
                        "SystemInformation-NB [SIB2]; idrx_int 0.64, idrx_reps 64\n"),
              HasSubstr(", ESM cause 50: PDN type IPv4 only allowed\n"),
              HasSubstr("  Attach reject, PDN connectivity reject; EMM cause 19: ESM failure, "
                        "ESM cause 27: Missing or unknown APN\n"),
              HasSubstr("\nprofile nb iot.json\n"),
              HasSubstr("    idrx_int                        0.64        record 1\n"
                        "        default paging cycle 2.56 s; differs: a quarter of it: NB-IoT's "
                        "cycles\n        read as LTE's\n"),
              HasSubstr("    idrx_reps                       64          record 1\n"
                        "        NPDCCH repetitions for paging 64\n")));
    EXPECT_THAT(names_in("."), ElementsAre("nb iot.json"));
}

TEST_F(kivra_replay, runs_in_folders_whose_names_mean_something_to_a_shell) {
    for (const char* name :
         {R"(a"; touch INJECTED; "b)", "$(touch INJECTED)", "`touch INJECTED`",
          R"(a\"; touch INJECTED; \)", "%PATH%", "a\ntouch INJECTED\n", "-touch"}) {
        fs::create_directories(fs::path(name) / name);
        fs::create_symlink("/usr/bin/tshark", fs::path(name) / name / "tshark.exe");
        fs::current_path(name);
        for (const auto& options :
             std::vector<std::vector<std::string>>{{}, {"--plugin", KIVRA_PLUGIN}}) {
            std::vector<std::string> arguments{capture_file("nbiot_attach.pcapng"),
                                               "--tshark-directory", scratch() / name / name};
            arguments.insert(arguments.end(), options.begin(), options.end());
            const auto result = run(arguments);
            EXPECT_EQ(result.status, 0) << name;
            EXPECT_EQ(result.error, "8 records, 0 failed\n") << name;
            EXPECT_EQ(read_json("kivra-profile.json")["idrx_int"], "0.64") << name;
            fs::remove("kivra-profile.json");
        }
        fs::current_path(scratch());
        EXPECT_THAT(names_in(name), ElementsAre(name));
        EXPECT_THAT(names_in(fs::path(name) / name), ElementsAre("tshark.exe"));
        EXPECT_FALSE(fs::exists("INJECTED"));
    }
}

TEST_F(kivra_replay, takes_raw_ip_captures) {
    for (const auto link_type : {101U, 228U, 229U}) {
        write_file("ip.pcap",
                   capture_image(link_type, {{router_advertisement(), 1}}, {.pcapng = false}));
        const auto result = run({"ip.pcap"});
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(
            result.output,
            HasSubstr(std::string("\n        1  1970-01-01T00:00:00.000001Z  ") + prefix_details));
    }
}

TEST_F(kivra_replay, takes_several_captures_for_one_stream) {
    write_capture("a.pcapng", {ip_packet, ip_packet});
    write_capture("b.pcapng", {ip_packet});
    const auto result = run({"a.pcapng", "b.pcapng", "--all"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "3 records, 0 failed\n");
    const auto record = [](int number) {
        return "        " + std::to_string(number) + "  1970-01-01T00:00:00.000000Z  " +
               prefix_details;
    };
    EXPECT_THAT(result.output, HasSubstr("message\n" + record(1) + record(2) + record(3) + "\n"));
}

TEST_F(kivra_replay, shows_records_once_that_come_before_what_needs_another_look) {
    const std::string gsmtap = sample_capture("nbiot_attach/gsmtap_ethernet.pcap");
    const std::string s1ap = sample_capture("nbiot_attach/s1ap_ethernet.pcap");
    constexpr std::size_t head = 24;
    write_file("c.pcap", read_file(gsmtap) + read_file(s1ap).substr(head));
    EXPECT_EQ(run({"--json", "c.pcap"}).output, run({"--json", gsmtap, s1ap}).output);
}

TEST_F(kivra_replay, reads_the_standard_input) {
    write_capture("c.pcapng", {ip_packet});
    const auto result = run({"-"}, {.input = "c.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "1 record, 0 failed\n");
    write_file("c.pcapng", "no capture");
    const auto refused = run({"-"}, {.input = "c.pcapng"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.error,
              "kivra-replay: can't read standard input: The standard input isn't a capture file in "
              "a format TShark understands.\n"
              "0 records, 0 failed\n");
}

TEST_F(kivra_replay, reads_pipes) {
    write_capture("c.pcapng", {ip_packet, ip_packet});
    const auto result =
        run_process({"/bin/bash", "-c", "cat c.pcapng | " KIVRA_REPLAY " - <(cat c.pcapng)"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "4 records, 0 failed\n");
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
        AllOf(HasSubstr("  unknown message; failed: no dissector name among the packet's tags\n"),
              HasSubstr("  nas-eps; failed: [json.exception.parse_error.101]"),
              HasSubstr("  IPv6 packet; failed: cut short by the snapshot length: 13 of 99 bytes"),
              HasSubstr(prefix_details),
              HasSubstr("        What tshark printed is no JSON: tshark ended early, or it is not "
                        "tshark.\n")));
    EXPECT_THAT(names_in("."), ElementsAre("broken", "c.pcapng"));
}

TEST_F(kivra_replay, says_what_became_of_a_lab_network) {
    write_capture("c.pcapng", {lab_network_accept()});
    const auto result = run({"c.pcapng"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(
        result.output,
        AllOf(HasSubstr("  Attach accept, Activate default EPS bearer context request; failed: "
                        "invalid stoi argument\n"),
              HasSubstr("    1 x invalid stoi argument (first in record 1)\n"),
              HasSubstr("lab\n        networks such as 001/01 do so every time.")));
}

TEST_F(kivra_replay, prints_json_lines) {
    write_tshark("broken", "echo 'no JSON'\n");
    write_capture("c.pcapng", {{exported_pdu_image("http", "GET"), 250},
                               {exported_pdu_image("nas-eps", "m"), 0},
                               ip_packet});
    const auto result = run({"c.pcapng", "--json", "--tshark-directory", "broken"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "3 records, 1 failed\n");
    EXPECT_EQ(result.output,
              R"({"number":1,"time":"1970-01-01T00:00:00.000250Z","format":"http",)"
              R"("result":null,"log":[]})"
              "\n"
              R"({"number":2,"time":"1970-01-01T00:00:00.000000Z","format":"nas-eps",)"
              R"("error":"[json.exception.parse_error.101] parse error at line 1, column 2: )"
              R"(syntax error while parsing value - invalid literal; last read: 'no'",)"
              R"("log":[{"level":3,"message":"tshark session ended, record is dissected by a )"
              R"(tshark of its own"}]})"
              "\n"
              R"({"number":3,"time":"1970-01-01T00:00:00.000000Z","format":"ip",)"
              R"("result":{"nas-eps":{"pdn":{"ICMPv6_prefix":)"
              R"("2001:0db8:0001:0000:0000:0000:0000:0000"}}},"log":[]})"
              "\n");
}

TEST_F(kivra_replay, marks_malformed_messages_in_json_lines) {
    const auto line_of = [](const char* capture, const std::vector<std::string>& options) {
        std::vector<std::string> arguments{sample_capture(capture), "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return run(arguments).output;
    };
    for (const auto& options :
         std::vector<std::vector<std::string>>{{}, {"--plugin", KIVRA_PLUGIN, "--session"}}) {
        for (const auto* capture :
             {"messages/nas_malformed.pcapng", "messages/rrc_malformed.pcapng"}) {
            EXPECT_THAT(line_of(capture, options), HasSubstr(R"(,"malformed":true,"log":[)"));
        }
        for (const auto* capture :
             {"messages/nas_ciphered.pcapng", "messages/nas_integrity_protected.pcapng"}) {
            EXPECT_THAT(line_of(capture, options), Not(HasSubstr("malformed")));
        }
    }
}

TEST_F(kivra_replay, tells_what_could_not_be_read) {
    const auto result = run({sample_capture("messages/nas_ciphered.pcapng"),
                             sample_capture("messages/nas_malformed.pcapng"),
                             sample_capture("messages/rrc_malformed.pcapng"),
                             sample_capture("messages/rrc_ciphered_mac_lte.pcap"),
                             "--user-dlt=149=mac-lte-framed"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(
        result.output,
        AllOf(HasSubstr("Z  Ciphered NAS message\n"), HasSubstr("Z  Attach accept [malformed]; "),
              HasSubstr("Z  DL-CCCH, RRCConnectionSetup [malformed]\n"),
              HasSubstr("\nnot readable, or not to the end\n"
                        "    malformed messages              2 (first in record 2)\n"
                        "    ciphered NAS messages           1 (first in record 1)\n"
                        "    encrypted RRC signalling        1 packet\n")));
}

TEST_F(kivra_replay, marks_what_the_modem_asks_for) {
    EXPECT_THAT(
        run({capture_file("ltem_attach_psm.pcapng")}).output,
        AllOf(HasSubstr("Z  Attach request, PDN connectivity request; requested T3324 1 "
                        "minutes (00100001), requested T3412 extended "),
              HasSubstr("\n    requested T3324                 1 minutes (00100001) (record 5)\n"),
              HasSubstr(
                  "\n    T3324                           10 seconds (00000101) (record 13), ")));
}

TEST_F(kivra_replay, shows_records_that_tell_nothing_new_in_one_line) {
    const auto paging =
        exported_pdu_image("lte_rrc.pcch", std::string("\x40\x0c\x8c\x2e\x65\xe9\xa0", 7));
    write_capture("c.pcapng", {{paging, 1}, {paging, 2}, {paging, 3}, ip_packet});
    EXPECT_THAT(run({"c.pcapng"}).output,
                HasSubstr("        1  1970-01-01T00:00:00.000001Z  PCCH, Paging\n"
                          "      2-3                               2 x PCCH, Paging\n"
                          "        4  1970-01-01T00:00:00.000000Z  IPv6 packet; "));
}

TEST_F(kivra_replay, says_nothing_to_people_when_asked_to) {
    write_capture("c.pcapng", {ip_packet, nameless_packet});
    const auto quiet = run({"c.pcapng", "--quiet"});
    EXPECT_EQ(quiet.status, 1);
    EXPECT_EQ(quiet.output, "");
    EXPECT_EQ(quiet.error, "");
    const auto lines = run({"c.pcapng", "--quiet", "--json"}, {.error_is_terminal = true});
    EXPECT_THAT(lines.output, StartsWith("{\"number\":1,"));
    EXPECT_EQ(lines.error, "");
}

TEST_F(kivra_replay, writes_its_report_to_a_file) {
    write_capture("c.pcapng", {ip_packet});
    const auto to_terminal = run({"c.pcapng"});
    write_file("report", "an older and longer report\n" + to_terminal.output);
    const auto to_file = run({"c.pcapng", "--output", "report"});
    EXPECT_EQ(to_file.status, 0);
    EXPECT_EQ(to_file.output, "");
    EXPECT_EQ(read_file("report"), to_terminal.output);
}

TEST_F(kivra_replay, refuses_a_report_that_can_not_be_written) {
    write_capture("c.pcapng", {ip_packet});
    expect_refusal(run({"c.pcapng", "--output", "missing/report"}),
                   "can't write missing/report: No such file or directory");
}

TEST_F(kivra_replay, refuses_a_page_that_can_not_be_written) {
    write_capture("c.pcapng", {ip_packet});
    expect_refusal(run({"c.pcapng", "--report", "missing/page.html"}),
                   "can't write missing/page.html: No such file or directory");
}

TEST_F(kivra_replay, ends_with_an_error_where_a_page_or_a_summary_finds_no_room) {
    write_capture("c.pcapng", {ip_packet});
    for (const std::string option : {"--report", "--summary"}) {
        const auto result = run({"c.pcapng", "-q", option, "/dev/full"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error, "kivra-replay: can't write /dev/full: No space left on device\n");
    }
}

TEST_F(kivra_replay, leaves_no_part_of_a_page_that_finds_no_room) {
    write_capture("c.pcapng", {ip_packet});
    // Of 1024 bytes; less than a page has before its data.
    const auto result = run_process({"/bin/bash", "-c",
                                     "trap '' XFSZ; ulimit -f 8; exec " KIVRA_REPLAY
                                     " -q --report page.html c.pcapng"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't write page.html: File too large\n");
    EXPECT_THAT(names_in("."), ElementsAre("c.pcapng"));
}

TEST_F(kivra_replay, leaves_the_page_of_a_former_run_where_it_can_not_start) {
    write_capture("c.pcapng", {ip_packet});
    write_file("page.html", "of before");
    for (const std::vector<std::string>& lack : {std::vector<std::string>{"missing.pcapng"},
                                                 {"--compare", "missing.pcapng"},
                                                 {"--plugin", "missing.so"},
                                                 {"--tshark-directory", "/nowhere"}}) {
        std::vector<std::string> arguments{"c.pcapng", "--report", "page.html"};
        arguments.insert(arguments.end(), lack.begin(), lack.end());
        EXPECT_EQ(run(arguments).status, 2);
        EXPECT_EQ(read_file("page.html"), "of before") << lack.front();
    }
}

TEST_F(kivra_replay, writes_the_same_page_whatever_else_it_writes) {
    const auto capture = capture_file("ltem_attach_psm.pcapng");
    EXPECT_EQ(run({"-q", "--report", "alone.html", capture}).output, "");
    const auto plain = run({"--all", capture});
    EXPECT_EQ(run({"--all", "--report", "table.html", capture}).output, plain.output);
    run({"--json", "--output", "lines", "--summary", "summary", "--report", "lines.html", capture});
    const auto page = read_file("alone.html");
    EXPECT_THAT(page, AllOf(StartsWith("<!DOCTYPE html>"), EndsWith("</html>\n")));
    EXPECT_EQ(read_file("table.html"), page);
    EXPECT_EQ(read_file("lines.html"), page);
}

TEST_F(kivra_replay, writes_a_page_of_what_a_plugin_gives) {
    const auto capture = capture_file("ltem_attach_psm.pcapng");
    run({"-q", "--report", "in_process.html", capture});
    run({"-q", "--report", "plugin.html", "--plugin", KIVRA_PLUGIN, "--session", capture});
    const auto records_in = [](const std::string& page) {
        const auto begin = page.find("class=\"records\"");
        return page.substr(begin, page.find("class=\"summary\"") - begin);
    };
    EXPECT_EQ(records_in(read_file("plugin.html")), records_in(read_file("in_process.html")));
    EXPECT_THAT(read_file("plugin.html"), HasSubstr("kivra-tshark-sink.so 0."));
}

TEST_F(kivra_replay, compares_captures_in_a_page_alone) {
    const auto capture = capture_file("ltem_attach_psm.pcapng");
    const auto compared = capture_file("nbiot_attach.pcapng");
    const auto plain = run({"--json", "--summary", "plain.json", capture});
    const auto result = run({"--json", "--summary", "s.json", "--profile", "p.json", "--report",
                             "r.html", capture, "--compare", compared});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(without_timing(result.output), without_timing(plain.output));
    EXPECT_EQ(result.error, "22 records, 0 failed\n8 records, 0 failed\n");
    EXPECT_EQ(read_json("s.json")["measured"], read_json("plain.json")["measured"]);
    EXPECT_EQ(read_json("p.json")["idrx_int"], "2.56");
    EXPECT_EQ(read_json("p-compared.json")["idrx_int"], "0.64");
}

TEST_F(kivra_replay, fails_where_a_compared_record_does) {
    write_capture("lab.pcapng", {lab_network_accept()});
    EXPECT_EQ(run({"-q", "--report", "r.html", capture_file("nbiot_attach.pcapng"), "--compare",
                   "lab.pcapng"})
                  .status,
              1);
}

TEST_F(kivra_replay, refuses_a_compared_capture_that_can_not_be_opened) {
    write_capture("c.pcapng", {ip_packet});
    expect_refusal(run({"c.pcapng", "--report", "r.html", "--compare", "missing"}), "missing");
}

TEST_F(kivra_replay, refuses_to_write_over_a_compared_capture) {
    write_capture("c.pcapng", {ip_packet});
    write_capture("p-compared.json", {ip_packet});
    expect_refusal(run({"c.pcapng", "--report", "r.html", "--profile", "p.json", "--compare",
                        "p-compared.json"}),
                   "p-compared.json is a capture to read, not to write");
}

TEST_F(kivra_replay, refuses_to_write_over_a_capture) {
    write_capture("c.pcapng", {ip_packet});
    const auto image = read_file("c.pcapng");
    expect_refusal(run({"c.pcapng", "--output", "./c.pcapng"}),
                   "./c.pcapng is a capture to read, not to write");
    expect_refusal(run({"c.pcapng", "--profile", scratch() / "c.pcapng"}), "not to write");
    expect_refusal(run({"c.pcapng", "--report", "c.pcapng"}), "not to write");
    expect_refusal(run({"c.pcapng", "--summary", "c.pcapng"}), "not to write");
    EXPECT_EQ(read_file("c.pcapng"), image);
}

TEST_F(kivra_replay, draws_a_timeline_on_a_terminal_that_has_room) {
    const auto capture = capture_file("ltem_attach_psm.pcapng");
    const auto on_terminal = [&capture](unsigned short columns) {
        return run({capture}, {.output_is_terminal = true, .terminal_columns = columns}).output;
    };
    const std::string heading =
        "timeline from 2025-11-24T16:00:00.000000Z to 2025-11-24T17:00:06.153500Z\r\n"
        "    connected                   #                                              #\r\n"
        "    idle                        ------------------------------------------------\r\n"
        "    attach request              ^\r\n"
        "    release                     ^                                              ^\r\n";
    EXPECT_THAT(on_terminal(80), HasSubstr(heading));
    EXPECT_THAT(on_terminal(79), Not(HasSubstr("timeline")));
    EXPECT_THAT(on_terminal(0), Not(HasSubstr("timeline")));
    EXPECT_THAT(run({capture}).output, Not(HasSubstr("timeline")));
    EXPECT_THAT(
        run({capture, "--output", "table"}, {.output_is_terminal = true, .terminal_columns = 80})
            .output,
        "");
    EXPECT_THAT(read_file("table"), Not(HasSubstr("timeline")));
}

TEST_F(kivra_replay, is_coloured_on_a_terminal_only) {
    write_capture("c.pcapng", {nameless_packet});
    constexpr const char* red = "\033[31m";
    const environment_guard kept_colour("NO_COLOR");
    const environment_guard kept_terminal("TERM");
    set_environment("NO_COLOR", std::nullopt);
    set_environment("TERM", "xterm");
    EXPECT_THAT(run({"c.pcapng"}, {.output_is_terminal = true}).output, HasSubstr(red));
    EXPECT_THAT(run({"c.pcapng"}).output, Not(HasSubstr(red)));
    EXPECT_THAT(run({"c.pcapng", "-o", "report"}, {.output_is_terminal = true}).output,
                Not(HasSubstr(red)));
    EXPECT_THAT(read_file("report"), Not(HasSubstr(red)));
    set_environment("TERM", "dumb");
    EXPECT_THAT(run({"c.pcapng"}, {.output_is_terminal = true}).output, Not(HasSubstr(red)));
    set_environment("TERM", "xterm");
    set_environment("NO_COLOR", "1");
    EXPECT_THAT(run({"c.pcapng"}, {.output_is_terminal = true}).output, Not(HasSubstr(red)));
}

constexpr int ended_by_sigint = -2;

/// The script of a tshark that has kivra-replay's process group interrupted the first time, as
/// Ctrl-C does, and then works as always.
constexpr const char* interrupting_tshark =
    "if mkdir bin/started 2>/dev/null; then kill -s INT -- \"-$(cat group)\"; fi\n"
    "exec /usr/bin/tshark \"$@\"\n";

/// kivra-replay in a process group whose number is in the file "group".
process_result run_in_group(const std::string& arguments) {
    return run_process({"/usr/bin/setsid", "/bin/sh", "-c",
                        "echo $$ > group; exec " KIVRA_REPLAY " " + arguments});
}

TEST_F(kivra_replay, ends_after_the_record_at_hand_when_interrupted) {
    write_tshark("bin", interrupting_tshark);
    write_capture("c.pcapng", {ip_packet, system_information("nbiot_attach.pcapng"), ip_packet});
    const auto result = run_in_group("c.pcapng --tshark-directory bin --plugin " KIVRA_PLUGIN);
    EXPECT_EQ(result.status, ended_by_sigint);
    EXPECT_EQ(result.error, "2 records, 0 failed\n");
    EXPECT_THAT(result.output, AllOf(HasSubstr("; idrx_int 0.64, idrx_reps 64\n\n2 records: 2"),
                                     HasSubstr("\nprofile kivra-profile.json\n    idrx_int ")));
    EXPECT_THAT(names_in("."), ElementsAre("bin", "c.pcapng", "group", "kivra-profile.json"));
}

TEST_F(kivra_replay, reports_what_it_has_read_when_interrupted) {
    write_tshark("bin", interrupting_tshark);
    write_capture("c.pcapng", {ip_packet, system_information("nbiot_attach.pcapng"), ip_packet});
    const auto result = run_in_group("c.pcapng --tshark-directory bin");
    EXPECT_EQ(result.status, ended_by_sigint);
    EXPECT_THAT(result.error, testing::MatchesRegex("[23] records, 0 failed\n"));
    EXPECT_THAT(result.output, AllOf(HasSubstr("; idrx_int 0.64, idrx_reps 64\n"),
                                     HasSubstr("\nincomplete\n    interrupted\n\n"),
                                     HasSubstr("\nprofile kivra-profile.json\n    idrx_int ")));
    EXPECT_THAT(names_in("."), ElementsAre("bin", "c.pcapng", "group", "kivra-profile.json"));
}

TEST_F(kivra_replay, cancels_the_plugin_when_interrupted) {
    write_tshark("bin", interrupting_tshark);
    write_capture("c.pcapng", {system_information("nbiot_attach.pcapng")});
    const auto result =
        run_in_group("c.pcapng --tshark-directory bin --plugin " KIVRA_RECORDING_PLUGIN);
    EXPECT_EQ(result.status, ended_by_sigint);
    EXPECT_THAT(read_file("calls"), EndsWith("\ncancel\nrelease\n"));
    EXPECT_THAT(read_file("calls"), Not(HasSubstr("complete")));
}

TEST_F(kivra_replay, stops_the_loop_of_a_shell_when_interrupted) {
    write_tshark("bin", interrupting_tshark);
    write_capture("c.pcapng", {system_information("nbiot_attach.pcapng")});
    const auto result =
        run_process({"/usr/bin/setsid", "/bin/bash", "-c",
                     "echo $$ > group\n"
                     "for round in 1 2; do\n"
                     "    echo $round >> rounds\n" KIVRA_REPLAY " c.pcapng --tshark-directory bin\n"
                     "done\n"});
    EXPECT_EQ(result.status, ended_by_sigint);
    EXPECT_EQ(read_file("rounds"), "1\n");
}

TEST_F(kivra_replay, stops_waiting_for_input_when_interrupted) {
    write_capture("c.pcapng", {ip_packet});
    const auto result = run_process({"/bin/bash", "-c",
                                     "mkfifo endless shown\n"
                                     "exec 8<>endless\n"
                                     "cat c.pcapng >&8\n" KIVRA_REPLAY " --json endless >shown &\n"
                                     "read -r first <shown\n"
                                     "kill -INT $!\n"
                                     "wait $!\n"});
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.error, "1 record, 0 failed\n");
}

TEST_F(kivra_replay, ends_at_once_at_the_second_interruption) {
    write_tshark("bin", "echo started > started; exec cat endless\n");
    write_capture("c.pcapng", {system_information("nbiot_attach.pcapng")});
    const auto result = run_process(
        {"/bin/bash", "-c",
         "mkfifo endless started\n"
         "exec 8<>endless 9<>started\n" KIVRA_REPLAY
         " c.pcapng --tshark-directory bin --plugin " KIVRA_PLUGIN " >/dev/null &\n"
         "read -r line <&9\n"
         "kill -INT $!\n"
         // Two that come at once are one. The first one has come when the next is not caught.
         "caught() { (( 0x$(sed -n 's/^SigCgt:\t//p' /proc/$1/status) & 2 )); }\n"
         "while caught $!; do :; done\n"
         "kill -INT $!\n"
         "wait $!\n"});
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.error, "");
}

TEST_F(kivra_replay, calls_the_plugin_in_order) {
    write_capture("c.pcapng", {{exported_pdu_image("log", "one"), 7},
                               nameless_packet,
                               {exported_pdu_image("fail", "two"), 8},
                               {exported_pdu_image("nas-eps", "three"), 9}});
    const auto result = run({"--plugin", KIVRA_RECORDING_PLUGIN, "--tshark-directory", "/t",
                             "--profile", "p.json", "c.pcapng"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(read_file("calls"),
              "version\n"
              "init_parameters\n"
              "init tshark_directory=/t file_path=p.json\n"
              "data log one 7\n"
              "data fail two 8\n"
              "data nas-eps three 9\n"
              "complete\n"
              "release\n");
    EXPECT_THAT(result.output, AllOf(StartsWith(KIVRA_RECORDING_PLUGIN
                                                " 1.22.3, tshark in /t\n\n   record  time "),
                                     HasSubstr("  log; log: x mapping not found\n"),
                                     HasSubstr("  fail; failed: failed on two\n")));
}

TEST_F(kivra_replay, finds_tshark_on_path) {
    write_tshark("bin", "exit 1\n");
    write_capture("c.pcapng", {ip_packet});
    const environment_guard kept("PATH");
    set_environment("PATH", "/nowhere:" + scratch().string() + "/bin");
    const auto result = run({"c.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output,
                StartsWith("one tshark in " + scratch().string() + "/bin for all records\n\n"));
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

TEST_F(kivra_replay, refuses_captures_that_can_not_be_opened_before_any_record_is_run) {
    write_capture("good.pcapng", {ip_packet});
    const auto refused = [](const char* name) {
        return run({"good.pcapng", name, "--plugin", KIVRA_RECORDING_PLUGIN});
    };
    expect_refusal(refused("missing.pcapng"), "missing.pcapng: No such file or directory");
    expect_refusal(refused("."), "Is a directory");
    EXPECT_THAT(read_file("calls"), Not(HasSubstr("data")));
}

TEST_F(kivra_replay, goes_on_with_the_next_behind_what_is_no_capture) {
    write_file("text.pcapng", "no capture at all");
    write_capture("good.pcapng", {ip_packet});
    const auto result = run({"text.pcapng", "good.pcapng"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't read text.pcapng: The file \"" +
                                (scratch() / "text.pcapng").string() +
                                "\" isn't a capture file in a format TShark understands.\n"
                                "1 record, 0 failed\n");
    EXPECT_THAT(result.output, HasSubstr(prefix_details));
}

TEST_F(kivra_replay, says_that_a_capture_holds_no_record_and_goes_on_with_the_next) {
    write_file("ethernet.pcap", capture_image(1, {}, {.pcapng = false}));
    write_capture("good.pcapng", {ip_packet});
    const auto result = run({"ethernet.pcap", "good.pcapng"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error,
              "kivra-replay: ethernet.pcap: 0 packets; no LTE RRC or NAS\n1 record, 0 failed\n");
    EXPECT_THAT(result.output, HasSubstr(prefix_details));
}

TEST_F(kivra_replay, refuses_a_plugin_that_can_not_be_loaded) {
    write_capture("c.pcapng", {ip_packet});
    expect_refusal(run({"c.pcapng", "--plugin", "missing.so"}), "can't load the plug-in: ");
    expect_refusal(run({"c.pcapng", "--plugin", "c.pcapng"}), "can't load the plug-in: ");
    expect_refusal(run({"c.pcapng", "--plugin", KIVRA_INCOMPLETE_PLUGIN}),
                   "undefined symbol: kivra_sink_init_parameters");
}

TEST_F(kivra_replay, refuses_to_run_without_tshark) {
    const environment_guard kept("PATH");
    set_environment("PATH", "/nowhere");
    write_capture("c.pcapng", {ip_packet});
    expect_refusal(run({"c.pcapng"}), "no tshark on PATH; name its folder with --tshark-directory");
    expect_refusal(run({"c.pcapng", "--tshark-directory", "/nowhere"}),
                   "tshark not found from path or default installation location");
    expect_refusal(run({"c.pcapng", "--tshark-directory", "/nowhere", "--plugin", KIVRA_PLUGIN}),
                   "the plug-in can't start: tshark not found from path or default installation "
                   "location");
}

TEST_F(kivra_replay, finds_what_it_needs_before_it_reads_a_capture) {
    // Nobody writes into the pipe: reading it would never end.
    const auto run_on_pipe = [](const std::string& options) {
        return run_process({"/bin/bash", "-c", "exec 8<> <(:); " KIVRA_REPLAY " - <&8 " + options});
    };
    for (const std::string road : {"", " --plugin " KIVRA_PLUGIN}) {
        expect_refusal(run_on_pipe("--tshark-directory /nowhere" + road), "tshark not found");
        expect_refusal(run_on_pipe("--output missing/report" + road), "can't write missing/report");
    }
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
    EXPECT_THAT(result.output,
                AllOf(HasSubstr("; idrx_int 1.28, idrx_reps 16\n"), HasSubstr(prefix_details),
                      HasSubstr("\nprofile kivra-profile.json\n"
                                "    idrx_int                        1.28        record 1\n"
                                "        default paging cycle 1.28 s\n"
                                "    idrx_reps                       16          record 1\n"
                                "        MPDCCH repetitions for paging 16\n")));
}

TEST_F(kivra_replay, shows_no_profile_of_an_earlier_run) {
    write_file("kivra-profile.json", R"({"idrx_int": "5.12"})");
    write_capture("c.pcapng", {ip_packet});
    const auto result = run({"c.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output,
                AllOf(EndsWith("\nprofile kivra-profile.json: not written by this run: the "
                               "records did not give\n    both idrx_int and idrx_reps\n"
                               "    Both come from system information (BCCH), of which there was "
                               "none.\n"),
                      Not(HasSubstr("5.12"))));
}

TEST_F(kivra_replay, replaces_the_profile_of_an_earlier_run) {
    write_file("kivra-profile.json", R"({"idrx_int": "5.12"})");
    write_capture("c.pcapng", {system_information("nbiot_attach.pcapng")});
    const auto result = run({"c.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output,
                HasSubstr("    idrx_int                        0.64        record 1\n"));
}

TEST_F(kivra_replay, says_that_the_profile_can_not_be_written) {
    write_capture("c.pcapng", {system_information("nbiot_attach.pcapng")});
    const auto result = run({"c.pcapng", "--profile", "missing/p.json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(
        result.output,
        EndsWith(
            "\nprofile missing/p.json: not written by this run: the path can't be written (No\n"
            "    such file or directory)\n"));
}

TEST_F(kivra_replay, ends_quietly_and_tidies_up_when_nobody_reads_its_output) {
    constexpr int ended_by_sigpipe = -13;
    for (const std::string form : {"--json", "--output=/dev/stdout"}) {
        const auto result = run({capture_file("nbiot_attach.pcapng"), "--profile=p.json", form},
                                {.output_has_no_reader = true});
        EXPECT_EQ(result.status, ended_by_sigpipe);
        EXPECT_EQ(result.error, "");
        EXPECT_THAT(names_in("."), AnyOf(IsEmpty(), ElementsAre("p.json")));
    }
}

TEST_F(kivra_replay, serves_a_reader_of_its_first_line) {
    const auto result = run_process(
        {"/bin/bash", "-c",
         KIVRA_REPLAY " --json " + capture_file("nbiot_attach.pcapng").string() + " | head -1"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, StartsWith("{\"number\":1,"));
    EXPECT_TRUE(one_line(result.output));
}

TEST_F(kivra_replay, complains_of_closed_standard_streams) {
    write_capture("c.pcapng", {ip_packet});
    for (const std::string form : {"--json", ""}) {
        const auto result =
            run_process({"/bin/bash", "-c", KIVRA_REPLAY " c.pcapng " + form + " >&-"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error, "kivra-replay: can't write the report: Bad file descriptor\n");
    }
    const auto result = run_process({"/bin/bash", "-c", KIVRA_REPLAY " - <&-"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.error, StartsWith("kivra-replay: can't read standard input: "));
}

TEST_F(kivra_replay, keeps_its_errors_out_of_the_report_when_they_have_no_stream) {
    write_capture("c.pcapng", {ip_packet});
    const auto result =
        run_process({"/bin/bash", "-c", KIVRA_REPLAY " c.pcapng --json --output report 2>&-"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(one_line(read_file("report")));
}

TEST_F(kivra_replay, cancels_and_releases_when_its_output_can_not_be_written) {
    write_capture("c.pcapng", {{exported_pdu_image("document", "m"), 7}});
    const auto result =
        run({"c.pcapng", "--plugin", KIVRA_RECORDING_PLUGIN}, {.output = "/dev/full"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't write the report: No space left on device\n");
    EXPECT_THAT(read_file("calls"), EndsWith("\ncancel\nrelease\n"));
}

TEST_F(kivra_replay, shows_its_progress_on_a_terminal_and_clears_it) {
    write_capture("c.pcapng", {ip_packet, ip_packet});
    const auto result = run({"c.pcapng"}, {.error_is_terminal = true});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.error, AllOf(StartsWith("\r\033[K["), HasSubstr("%  record 1"),
                                    EndsWith("\r\033[K"), Not(HasSubstr("records"))));
    EXPECT_THAT(result.output, Not(HasSubstr("%")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
