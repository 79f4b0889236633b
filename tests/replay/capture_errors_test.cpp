// Captures without a record, broken ones, and link types for private use.
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/replay/capture_image.h"
#include "tests/replay/sample_captures.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class captures_without_records : public scratch_test {
  protected:
    /// What kivra-replay complains of; it ends as it does when a capture has no record.
    static std::string complaint_of(const std::string& capture,
                                    const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments{sample_capture(capture), "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const auto result = run_replay(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, "");
        const std::string begin = "kivra-replay: " + sample_capture(capture).string() + ": ";
        const std::string end = "\n0 records, 0 failed\n";
        EXPECT_THAT(result.error, AllOf(StartsWith(begin), EndsWith(end)));
        return result.error.substr(begin.size(), result.error.size() - begin.size() - end.size());
    }
};

TEST_F(captures_without_records, tell_of_web_traffic) {
    EXPECT_EQ(complaint_of("without_lte/web.pcap"),
              "10 packets: eth 10, ip 10, udp 2, dns 2, tcp 8, http 1, tls 1; no LTE RRC or NAS");
}

TEST_F(captures_without_records, may_be_empty) {
    for (const auto* capture :
         {"without_lte/empty.pcap", "without_lte/empty.pcapng", "broken/nothing.pcap"}) {
        EXPECT_EQ(complaint_of(capture), "0 packets; no LTE RRC or NAS");
    }
}

TEST_F(captures_without_records, tell_of_gsm_and_umts) {
    EXPECT_EQ(complaint_of("without_lte/gsm.pcap"),
              "2 packets: eth 2, ip 2, udp 2, gsmtap 2, gsm_a.ccch 2; no LTE RRC or NAS");
    EXPECT_THAT(complaint_of("without_lte/umts.pcap"),
                AllOf(StartsWith("1 packet: eth 1, ip 1, udp 1, gsmtap 1, rrc 1"),
                      EndsWith("; no LTE RRC or NAS")));
}

TEST_F(captures_without_records, tell_of_5g) {
    EXPECT_EQ(complaint_of("without_lte/5g.pcap"),
              "2 packets: exported_pdu 2, nr-rrc 1, nas-5gs 1; no LTE RRC or NAS");
    EXPECT_EQ(complaint_of("without_lte/5g_core.pcap"),
              "1 packet: eth 1, ip 1, sctp 1, ngap 1; no LTE RRC or NAS");
}

TEST_F(captures_without_records, do_not_ask_for_a_user_link_type_that_was_given) {
    EXPECT_THAT(
        complaint_of("ltem_attach_psm/mac_lte_149.pcap", {"--user-dlt", "149=udp"}),
        AllOf(StartsWith("10 packets: user_dlt 10, udp 10, "), EndsWith("; no LTE RRC or NAS")));
}

TEST_F(captures_without_records, from_a_pipe_are_called_standard_input) {
    const auto result =
        run_replay({"-", "--json"}, {.input = sample_capture("without_lte/5g.pcap")});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error,
              "kivra-replay: standard input: 2 packets: exported_pdu 2, nr-rrc 1, nas-5gs 1; no "
              "LTE RRC or NAS\n0 records, 0 failed\n");
}

class unreadable_captures : public scratch_test {
  protected:
    static std::string quoted(const std::string& text) { return '"' + text + '"'; }
};

TEST_F(unreadable_captures, that_are_cut_short_give_their_records_up_to_there) {
    for (const auto* name : {"broken/cut.pcap", "broken/cut.pcapng"}) {
        const std::string capture = sample_capture(name);
        const auto result = run_replay({capture, "--json"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error, "kivra-replay: can't read " + capture + ": The file " +
                                    quoted(capture) +
                                    " appears to have been cut short in the middle of a packet.\n"
                                    "21 records, 0 failed\n");
        const auto whole =
            run_replay({sample_capture("ltem_attach_psm/gsmtap_ethernet.pcap"), "--json"});
        EXPECT_THAT(whole.output, StartsWith(result.output));
    }
}

TEST_F(unreadable_captures, are_complained_of_behind_their_records) {
    const auto result = run_process(
        {"/bin/bash", "-c",
         KIVRA_REPLAY " --json " + sample_capture("broken/cut.pcap").string() + " 2>&1"});
    EXPECT_THAT(result.output, StartsWith(R"({"number":1,)"));
    EXPECT_THAT(result.output, EndsWith(" cut short in the middle of a packet.\n"
                                        "21 records, 0 failed\n"));
}

TEST_F(unreadable_captures, that_are_cut_short_give_what_still_waits_for_the_next_packet) {
    // The last whole message has a NAS message in it.
    const auto pieces =
        pieces_of_pcap(read_file(sample_capture("nbiot_attach/gsmtap_ethernet.pcap")));
    write_file("cut.pcap", pieces.at(0) + pieces.at(4) + pieces.at(5).substr(0, 50));
    const auto result = run_replay({"cut.pcap", "--json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.error, EndsWith("\n2 records, 0 failed\n"));
    EXPECT_THAT(result.output, AllOf(HasSubstr(R"("format":"lte_rrc.ul_dcch.nb")"),
                                     HasSubstr(R"("format":"nas-eps")")));
}

TEST_F(unreadable_captures, that_are_compressed_and_cut_short_give_records_as_well) {
    const std::string capture = sample_capture("broken/cut_compressed.pcap.gz");
    const auto result = run_replay({capture, "--json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.error, HasSubstr(" appears to have been cut short"));
    EXPECT_THAT(result.output, StartsWith(R"({"number":1,)"));
}

TEST_F(unreadable_captures, from_a_pipe_may_be_cut_short) {
    const auto result = run_process(
        {"/bin/bash", "-c",
         "cat " + sample_capture("broken/cut.pcap").string() + " | " KIVRA_REPLAY " --json -"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error,
              "kivra-replay: can't read standard input: The standard input appears to have been "
              "cut short in the middle of a packet.\n21 records, 0 failed\n");
}

TEST_F(unreadable_captures, tell_what_tshark_says_of_what_is_no_capture) {
    const std::string capture = sample_capture("broken/no_capture.pcap");
    const auto result = run_replay({capture, "--json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't read " + capture + ": The file " +
                                quoted(capture) +
                                " isn't a capture file in a format TShark understands.\n"
                                "0 records, 0 failed\n");
}

TEST_F(unreadable_captures, may_be_missing_or_a_folder) {
    for (const auto& [capture, reason] : {std::pair("missing.pcap", "No such file or directory"),
                                          std::pair(".", "Is a directory")}) {
        const auto result = run_replay({capture});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error,
                  std::string("kivra-replay: can't read ") + capture + ": " + reason + "\n");
    }
}

TEST_F(unreadable_captures, may_have_names_that_look_like_options) {
    write_file("-V", read_file(sample_capture("nbiot_attach/gsmtap_ethernet.pcap")));
    EXPECT_EQ(run_replay({"--", "-V"}).error, "8 records, 0 failed\n");
}

TEST_F(unreadable_captures, tell_that_tshark_ended_without_a_word) {
    write_tshark("bin", "echo 'Running as user \"root\".' >&2\nexit 7\n");
    const std::string capture = sample_capture("nbiot_attach/gsmtap_ethernet.pcap");
    const auto result = run_replay({capture, "--tshark-directory", "bin"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't read " + capture +
                                ": tshark ended with status 7\n0 records, 0 failed\n");
}

TEST_F(unreadable_captures, tell_that_tshark_prints_what_is_no_packet) {
    write_tshark("bin", "echo 'no JSON'\n");
    const std::string capture = sample_capture("nbiot_attach/gsmtap_ethernet.pcap");
    const auto result = run_replay({capture, "--tshark-directory", "bin"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't read " + capture +
                                ": output of tshark holds what is not a packet\n"
                                "0 records, 0 failed\n");
}

TEST_F(unreadable_captures, tell_that_a_packet_of_tshark_is_none) {
    write_tshark("bin", "echo '[{\"frame.number\": \"1\"}]'\n");
    const std::string capture = sample_capture("nbiot_attach/gsmtap_ethernet.pcap");
    const auto result = run_replay({capture, "--tshark-directory", "bin"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't read " + capture +
                                ": output of tshark holds what is not a packet\n"
                                "0 records, 0 failed\n");
}

class user_link_types : public scratch_test {
  protected:
    static std::string error_of(const std::vector<std::string>& arguments, int status = 2) {
        const auto result = run_replay(arguments);
        EXPECT_EQ(result.status, status);
        return result.error;
    }
};

TEST_F(user_link_types, are_asked_for) {
    for (const auto& [capture, number, likely] :
         {std::tuple("ltem_attach_psm/mac_lte_147.pcap", "147", "mac-lte-framed)"),
          std::tuple("ltem_attach_psm/user_dlt_nas.pcap", "148", "nas-eps)"),
          std::tuple("ltem_attach_psm/mac_lte_149.pcap", "149", "mac-lte-framed, or udp with "),
          std::tuple("ltem_attach_psm/s1ap_150.pcap", "150", "s1ap)")}) {
        const std::string file = sample_capture(capture);
        EXPECT_THAT(
            error_of({file, "--json"}),
            AllOf(StartsWith("kivra-replay: can't read " + file + ": link type " + number +
                             " is for private use "),
                  HasSubstr("--user-dlt " + std::string(number) + "=PROTOCOL (likely " + likely),
                  EndsWith("\n0 records, 0 failed\n")));
    }
}

TEST_F(user_link_types, are_asked_for_where_another_one_is_given) {
    EXPECT_THAT(error_of({sample_capture("ltem_attach_psm/s1ap_150.pcap"), "--user-dlt",
                          "149=mac-lte-framed"}),
                HasSubstr("--user-dlt 150=PROTOCOL"));
}

TEST_F(user_link_types, are_asked_for_behind_packets_of_others) {
    constexpr std::uint32_t ethernet = 1;
    write_file("c.pcapng", capture_image(ethernet, {{std::string(60, '\0')}}) +
                               capture_image(149, {{std::string(60, '\0')}}));
    EXPECT_THAT(error_of({"c.pcapng"}), HasSubstr("--user-dlt 149=PROTOCOL"));
}

TEST_F(user_link_types, are_not_asked_for_where_they_were_given_and_messages_are_quoted_alone) {
    // IPv4, an ICMP error, the IPv4, UDP and GSMTAP that it quotes, NAS.
    const auto packet = bytes_of(
        "4500004c00000000400100000000000000000000"
        "0303000000000000"
        "4500003000000000401100000000000000000000"
        "12791279001c0000"
        "02041200000000000000000000000000"
        "0745090b");
    write_file("c.pcapng", capture_image(149, {{packet}}));
    EXPECT_EQ(error_of({"c.pcapng", "--user-dlt", "149=ip"}, 1),
              "kivra-replay: c.pcapng: 1 packet: user_dlt 1, ip 1, icmp 1, gsmtap 1, nas-eps 1; no "
              "LTE RRC or NAS\n0 records, 0 failed\n");
}

TEST_F(user_link_types, are_asked_for_in_a_pipe) {
    const auto result =
        run_replay({"-"}, {.input = sample_capture("ltem_attach_psm/s1ap_150.pcap")});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.error, AllOf(StartsWith("kivra-replay: can't read standard input: "),
                                    HasSubstr("--user-dlt 150=PROTOCOL (likely s1ap)")));
}

TEST_F(user_link_types, count_by_the_first_of_several_options) {
    EXPECT_EQ(error_of({sample_capture("nbiot_attach/s1ap_150.pcap"), "--user-dlt=150=s1ap",
                        "--user-dlt=150=udp"},
                       0),
              "3 records, 0 failed\n");
}

TEST_F(user_link_types, are_refused_in_another_form) {
    for (const std::string value : {"146=x", "163=x", "149", "149=", "=x", "149=a\"b", "149=a,b",
                                    "x=y", "149x=y", " 149=y", "-149=y", "99999999999=x", "="}) {
        const auto result = run_replay({"c.pcap", "--user-dlt=" + value});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error, "kivra-replay: --user-dlt " + value +
                                    " is not of the form N=PROTOCOL with N from 147 to 162\n");
    }
}

TEST_F(user_link_types, give_a_complaint_that_ends_as_lines_of_windows_do) {
    write_tshark("bin", "printf 'tshark: no.\\r\\nMore\\r\\n' >&2\nexit 2\n");
    const std::string file = sample_capture("ltem_attach_psm/mac_lte_149.pcap");
    EXPECT_EQ(error_of({file, "--tshark-directory", "bin"}),
              "kivra-replay: can't read " + file + ": no.\n0 records, 0 failed\n");
}

TEST_F(user_link_types, with_a_dissector_that_tshark_does_not_know_give_its_complaint) {
    EXPECT_THAT(
        error_of({sample_capture("ltem_attach_psm/mac_lte_149.pcap"), "--user-dlt", "149=nosuch"}),
        AllOf(HasSubstr("Invalid -o flag \"uat:user_dlts:"), HasSubstr("dissector not found\n")));
}

TEST_F(captures_without_records, are_not_those_with_encrypted_rrc_alone_behind_a_record) {
    const auto result = run_replay(
        {sample_capture("messages/rrc_ciphered_mac_lte.pcap"), "--user-dlt", "149=mac-lte-framed"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "3 records, 0 failed\n");
    EXPECT_THAT(result.output, HasSubstr("\n    encrypted RRC signalling        1 packet\n"));
}

class tshark_options : public user_link_types {};

TEST_F(tshark_options, that_tshark_does_not_know_give_its_complaint) {
    const std::string capture = sample_capture("nbiot_attach/exported_pdu.pcapng");
    EXPECT_EQ(error_of({capture, "--tshark-option=--nosuch"}),
              "kivra-replay: can't read " + capture +
                  ": unrecognized option: nosuch\n0 records, 0 failed\n");
    EXPECT_EQ(error_of({capture, "--tshark-option=-o", "--tshark-option=nosuch.pref:1"}),
              "kivra-replay: can't read " + capture +
                  ": -o flag \"nosuch.pref:1\" specifies unknown preference\n"
                  "0 records, 0 failed\n");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
