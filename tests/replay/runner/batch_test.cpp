// One tshark for all records, or one each: the outcome is the same.
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/replay/capture_image.h"
#include "tests/replay/sample_records.h"
#include "tests/support/files.h"
#include "tests/support/process.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class batches : public scratch_test {
  protected:
    static process_result run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), KIVRA_REPLAY);
        return run_process(arguments);
    }

    static void write_capture(const char* name, const std::vector<image_packet>& packets) {
        write_file(name, capture_image(exported_pdu_link_type, packets));
    }

    static void write_tshark(const std::string& script) {
        fs::create_directory("bin");
        write_file("bin/tshark", "#!/bin/sh\n" + script);
        fs::permissions("bin/tshark", fs::perms::owner_all);
    }

    static std::string content_of(const char* file) {
        return fs::exists(file) ? read_file(file) : "none";
    }

    /// Runs the captures both ways and compares what comes of it.
    static void expect_same_outcome(const std::vector<std::string>& captures) {
        const auto run_into = [&](const char* profile, std::vector<std::string> arguments) {
            arguments.insert(arguments.end(), captures.begin(), captures.end());
            arguments.insert(arguments.end(), {"--json", "--profile", profile});
            return run(arguments);
        };
        const auto alone = run_into("alone.json", {});
        const auto batch = run_into("batch.json", {"--batch"});
        EXPECT_EQ(batch.status, alone.status);
        EXPECT_EQ(batch.error, alone.error);
        EXPECT_EQ(batch.output, without_timing(alone.output));
        EXPECT_EQ(content_of("batch.json"), content_of("alone.json"));
    }
};

TEST_F(batches, give_what_single_runs_give_for_an_lte_m_attach) {
    expect_same_outcome({capture_file("ltem_attach_psm.pcapng")});
    EXPECT_EQ(read_json("batch.json")["psm"], "True");
}

TEST_F(batches, give_what_single_runs_give_for_an_nb_iot_attach) {
    expect_same_outcome({capture_file("nbiot_attach.pcapng")});
}

TEST_F(batches, give_what_single_runs_give_for_records_that_go_wrong) {
    const auto ip = exported_pdu_image("ip", router_advertisement());
    write_capture(
        "c.pcapng",
        {{end_of_tags() + "m", 0},
         lab_network_accept(),
         {exported_pdu_image("http", "GET"), 1},
         {exported_pdu_image("lte_rrc.nosuch", "message"), 2},
         {exported_pdu_image("lte_rrc.nosuch", "another"), 2},
         {exported_pdu_image("nas-eps", ""), 3},
         {exported_pdu_image("nas-eps", "\xff\xff\xff"), 4},
         {exported_pdu_image("nas-eps", "m"), 5, 99U},
         {exported_pdu_image(std::string(65'533, 'x') + "lte_rrc", "m").substr(0, 70'000), 6},
         {ip, 7},
         system_information("nbiot_attach.pcapng"),
         {ip, 8}});
    expect_same_outcome({"c.pcapng", capture_file("ltem_attach_psm.pcapng")});
}

TEST_F(batches, leave_nothing_behind) {
    const auto result = run({"--batch", capture_file("nbiot_attach.pcapng")});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output,
                StartsWith("one tshark in /usr/bin for all records\n\n record  time"));
    EXPECT_THAT(names_in("."), ElementsAre("kivra-profile.json"));
}

TEST_F(batches, run_one_tshark_with_the_command_of_single_runs) {
    write_tshark("echo \"$#\" \"$@\" >> calls\nexec /usr/bin/tshark \"$@\"\n");
    EXPECT_EQ(
        run({"--batch", "--tshark-directory", "bin", capture_file("nbiot_attach.pcapng")}).status,
        0);
    EXPECT_THAT(
        read_file("calls"),
        testing::MatchesRegex("6 -Y nas-eps[|][|]lte_rrc -r /proc/[0-9]+/fd/[0-9]+ -T json\n"));
}

TEST_F(batches, tell_of_the_records_behind_the_end_of_a_tshark_that_fails) {
    write_tshark("/usr/bin/tshark \"$@\" | sed '/\"frame.number\": \"3\"/q'\n");
    const auto ip = exported_pdu_image("ip", router_advertisement());
    auto packets = records_of("nbiot_attach.pcapng");
    packets.push_back({ip, 1});
    write_capture("c.pcapng", packets);
    const auto result = run({"--batch", "--tshark-directory", "bin", "c.pcapng"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(
        result.output,
        testing::AllOf(
            HasSubstr("  idrx_int 0.64, idrx_reps 64\n"), HasSubstr("  rrcConnectionRequest\n"),
            HasSubstr("  failed: output of tshark ended before it came to this record\n"),
            HasSubstr("  PDN prefix ")));
}

TEST_F(batches, need_a_tshark) {
    const auto result =
        run({"--batch", "--tshark-directory", "/nowhere", capture_file("nbiot_attach.pcapng")});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error,
              "kivra-replay: tshark not found from path or default installation location\n");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
