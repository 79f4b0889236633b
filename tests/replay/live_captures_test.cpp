// Captures that tshark reads from a pipe which stays open.
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/replay/sample_captures.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::HasSubstr;

class live_captures : public scratch_test {
  protected:
    static constexpr const char* gsmtap = "nbiot_attach/gsmtap_ethernet.pcap";

    /// Writes the head, and these packets of a sample, to the files "head", "piece1" and so on.
    static void write_pieces(const std::string& capture, const std::vector<std::size_t>& packets) {
        const auto pieces = pieces_of_pcap(read_file(sample_capture(capture)));
        write_file("head", pieces.at(0));
        std::string whole = pieces.at(0);
        std::size_t number = 0;
        for (const auto packet : packets) {
            write_file("piece" + std::to_string(++number), pieces.at(packet));
            whole += pieces.at(packet);
        }
        write_file("whole.pcap", whole);
    }

    /// Runs a bash script beside kivra-replay, between two pipes of which it has the other ends: 8
    /// to write packets, 9 to read lines.
    static process_result run_beside(const std::string& script,
                                     const std::string& options = "--json") {
        return run_process({"/bin/bash", "-c",
                            "mkfifo input output\n" KIVRA_REPLAY " " + options +
                                " - <input >output 2>errors &\n"
                                "exec 8>input 9<output\n" +
                                script});
    }

    /// The writer sends a packet only after it has read the line of the one before.
    static process_result send_one_by_one() {
        return run_beside(
            "cat head >&8\n"
            "for ((i = 1; ; ++i)); do\n"
            "    [ -e piece$i ] || break\n"
            "    cat piece$i >&8\n"
            "    read -r line <&9\n"
            "    echo \"$line\"\n"
            "done\n"
            "exec 8>&-\n"
            "wait $!\n");
    }
};

TEST_F(live_captures, show_each_record_while_their_writer_holds_the_pipe_open) {
    // Without the message that has a NAS message in it, which waits.
    write_pieces(gsmtap, {1, 2, 3, 5, 6, 7, 8});
    const auto result = send_one_by_one();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(read_file("errors"), "7 records, 0 failed\n");
    EXPECT_EQ(result.output, run_replay({"--json", "whole.pcap"}).output);
}

TEST_F(live_captures, show_messages_inside_other_layers_as_well) {
    write_pieces("nbiot_attach/s1ap_ethernet.pcap", {1, 2, 3});
    const auto result = send_one_by_one();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, run_replay({"--json", "whole.pcap"}).output);
}

TEST_F(live_captures, of_raw_ip_show_router_advertisements) {
    write_pieces("ltem_attach_psm/gsmtap_raw_ip.pcap", {15});
    const auto result = send_one_by_one();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr(R"("format":"ip")"));
}

TEST_F(live_captures, show_nas_inside_rrc_when_nothing_more_comes) {
    write_pieces(gsmtap, {4});
    const auto result = run_beside(
        "cat head piece1 >&8\n"
        "read -r first <&9\n"
        "read -r second <&9\n"
        "printf '%s\\n' \"$first\" \"$second\"\n"
        "exec 8>&-\n"
        "wait $!\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, run_replay({"--json", "whole.pcap"}).output);
    EXPECT_EQ(read_file("errors"), "2 records, 0 failed\n");
}

TEST_F(live_captures, show_what_has_come_when_a_packet_comes_in_pieces) {
    write_pieces(gsmtap, {1, 2});
    const auto second = read_file("piece2");
    write_file("begin", read_file("piece1") + second.substr(0, second.size() - 20));
    write_file("end", second.substr(second.size() - 20));
    const auto result = run_beside(
        "cat head begin >&8\n"
        "read -r line <&9; echo \"$line\"\n"
        "cat end >&8\n"
        "read -r line <&9; echo \"$line\"\n"
        "exec 8>&-\n"
        "wait $!\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, run_replay({"--json", "whole.pcap"}).output);
}

TEST_F(live_captures, end_by_an_interruption_while_they_wait) {
    write_pieces(gsmtap, {1});
    const auto result = run_beside(
        "cat head piece1 >&8\n"
        "read -r first <&9\n"
        "kill -INT $!\n"
        "wait $!\n");
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(read_file("errors"), "1 record, 0 failed\n");
}

/// Until kivra-replay notes interruptions.
constexpr const char* wait_for_handler =
    "until (( 0x$(sed -n 's/^SigCgt:\t//p' /proc/$!/status) & 2 )); do :; done\n";

TEST_F(live_captures, report_what_waits_behind_nas_inside_rrc_when_interrupted) {
    write_pieces(gsmtap, {4, 1, 2, 3, 1});
    // All of one time stamp, so that nothing but the end lets them go.
    std::string packets;
    for (int number = 1; number <= 5; ++number) {
        packets += read_file("piece1").substr(0, 8) +
                   read_file("piece" + std::to_string(number)).substr(8);
    }
    write_file("packets", packets);
    write_file("whole.pcap", read_file("head") + packets);
    const auto result = run_beside(
        "cat head packets >&8\n"
        "read -r first <&9\n"
        "kill -INT $!\n"
        "echo \"$first\"\n"
        "cat <&9\n"
        "wait $!\n");
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.output, run_replay({"--json", "whole.pcap"}).output);
    EXPECT_EQ(read_file("errors"), "6 records, 0 failed\n");
}

TEST_F(live_captures, report_what_tshark_has_not_printed_yet_when_interrupted) {
    write_pieces(gsmtap, {1, 2, 3});
    // What reads the capture prints nothing before the capture's end.
    write_tshark("bin",
                 "case \" $* \" in\n"
                 "*' -x '*) tee taken | /usr/bin/tshark \"$@\" >printed; cat printed ;;\n"
                 "*) exec /usr/bin/tshark \"$@\" ;;\n"
                 "esac\n");
    const auto result = run_beside(
        "cat whole.pcap >&8\n"
        "until cmp -s taken whole.pcap; do :; done\n"
        "kill -INT $!\n"
        "cat <&9\n"
        "wait $!\n",
        "--json --tshark-directory bin");
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.output, run_replay({"--json", "whole.pcap"}).output);
    EXPECT_EQ(read_file("errors"), "3 records, 0 failed\n");
}

TEST_F(live_captures, take_nothing_more_from_the_pipe_when_interrupted) {
    write_pieces(gsmtap, {1, 2});
    const auto result = run_beside(
        "cat head piece1 >&8\n"
        "read -r first <&9\n"
        "kill -INT $!\n"
        "exec 7<input\n"
        "cat piece2 >&8\n"
        "wait $!\n"
        "exec 8>&-\n"
        "cat <&7 >left\n");
    EXPECT_EQ(read_file("left"), read_file("piece2"));
    EXPECT_EQ(read_file("errors"), "1 record, 0 failed\n");
}

TEST_F(live_captures, end_by_an_interruption_before_the_first_packet) {
    for (const auto* const capture : {gsmtap, "nbiot_attach/exported_pdu.pcapng"}) {
        const auto image = read_file(sample_capture(capture));
        for (const std::size_t size : {std::size_t{0}, std::size_t{10}, std::size_t{30}}) {
            fs::remove("input");
            fs::remove("output");
            write_file("begin", image.substr(0, size));
            const auto result = run_beside(std::string("cat begin >&8\n") + wait_for_handler +
                                           "kill -INT $!\n"
                                           "wait $!\n");
            EXPECT_EQ(result.status, 130) << capture << ' ' << size;
            EXPECT_EQ(read_file("errors"), "0 records, 0 failed\n") << capture << ' ' << size;
        }
    }
}

TEST_F(live_captures, give_their_profile_when_interrupted) {
    write_pieces(gsmtap, {1});
    const auto result = run_beside(
        "cat head piece1 >&8\n"
        "until [[ $line == *idrx_int* ]]; do read -r line <&9; done\n"
        "kill -INT $!\n"
        "cat <&9\n"
        "wait $!\n",
        "");
    EXPECT_EQ(result.status, 130);
    EXPECT_THAT(result.output, HasSubstr("\nprofile kivra-profile.json\n    idrx_int "));
    EXPECT_EQ(read_file("errors"), "1 record, 0 failed\n");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
