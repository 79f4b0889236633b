// One tshark for all records, or one each: the outcome is the same.
#include "replay/runner/in_process.h"

#include <cstdint>
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
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

const image_packet ip_packet{exported_pdu_image("ip", router_advertisement()), 7};

class in_process_runs : public scratch_test {
  protected:
    static process_result run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), KIVRA_REPLAY);
        return run_process(arguments);
    }

    static void write_capture(const char* name, const std::vector<image_packet>& packets) {
        write_file(name, capture_image(exported_pdu_link_type, packets));
    }

    /// A tshark in the folder "bin" that notes its arguments in the file "calls" before the script.
    static void write_tshark(const std::string& script) {
        fs::create_directory("bin");
        write_file("bin/tshark", "#!/bin/sh\necho \"$#\" \"$@\" >> calls\n" + script);
        fs::permissions("bin/tshark", fs::perms::owner_all);
    }

    static std::string content_of(const std::string& file) {
        return fs::exists(file) ? read_file(file) : "none";
    }

    /// Runs the captures in every way and compares what comes of it.
    static void expect_same_outcome(const std::vector<std::string>& captures) {
        const auto run_into = [&](const char* profile, std::vector<std::string> arguments) {
            arguments.insert(arguments.end(), captures.begin(), captures.end());
            arguments.insert(arguments.end(), {"--json", "--profile", profile});
            return run(arguments);
        };
        const auto alone = run_into("alone.json", {"--plugin", KIVRA_PLUGIN});
        const auto in_process = run_into("in_process.json", {});
        const auto session = run_into("session.json", {"--plugin", KIVRA_PLUGIN, "--session"});
        EXPECT_EQ(in_process.status, alone.status);
        EXPECT_EQ(in_process.error, alone.error);
        EXPECT_EQ(in_process.output, without_timing(alone.output));
        EXPECT_EQ(content_of("in_process.json"), content_of("alone.json"));
        EXPECT_EQ(session.status, alone.status);
        EXPECT_EQ(session.error, alone.error);
        EXPECT_EQ(without_timing(session.output), without_timing(alone.output));
        EXPECT_EQ(content_of("session.json"), content_of("alone.json"));
    }
};

TEST_F(in_process_runs, give_what_the_plugin_gives_for_an_lte_m_attach) {
    expect_same_outcome({capture_file("ltem_attach_psm.pcapng")});
    EXPECT_EQ(read_json("in_process.json")["psm"], "True");
}

TEST_F(in_process_runs, give_what_the_plugin_gives_for_an_nb_iot_attach) {
    expect_same_outcome({capture_file("nbiot_attach.pcapng")});
}

TEST_F(in_process_runs, give_what_the_plugin_gives_for_records_that_go_wrong) {
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
         ip_packet,
         system_information("nbiot_attach.pcapng"),
         ip_packet});
    expect_same_outcome({"c.pcapng", capture_file("ltem_attach_psm.pcapng")});
}

TEST_F(in_process_runs, give_what_the_plugin_gives_for_a_capture_that_breaks) {
    const auto whole = capture_image(exported_pdu_link_type,
                                     {system_information("ltem_attach_psm.pcapng"), ip_packet});
    write_file("broken.pcapng", whole.substr(0, whole.size() - 10));
    write_capture("next.pcapng", {ip_packet});
    expect_same_outcome({"broken.pcapng", "next.pcapng"});
}

TEST_F(in_process_runs, leave_nothing_behind) {
    const auto result = run({capture_file("nbiot_attach.pcapng")});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output,
                StartsWith("one tshark in /usr/bin for all records\n\n   record  time"));
    EXPECT_THAT(names_in("."), ElementsAre("kivra-profile.json"));
}

TEST_F(in_process_runs, start_one_tshark_for_all_captures) {
    write_tshark("exec /usr/bin/tshark \"$@\"\n");
    EXPECT_EQ(run({"--tshark-directory", "bin", capture_file("nbiot_attach.pcapng"),
                   capture_file("ltem_attach_psm.pcapng")})
                  .status,
              0);
    EXPECT_EQ(read_file("calls"), "7 -Y nas-eps||lte_rrc -r - -T json -l\n");
}

TEST_F(in_process_runs, start_no_tshark_where_no_record_needs_one) {
    write_tshark("");
    write_capture("c.pcapng", {ip_packet, {exported_pdu_image("http", "GET"), 1}});
    EXPECT_EQ(run({"--tshark-directory", "bin", "c.pcapng"}).status, 0);
    EXPECT_FALSE(fs::exists("calls"));
}

TEST_F(in_process_runs, hand_out_at_once_what_waits_for_no_tshark) {
    in_process runner("/usr/bin/tshark", "p.json");
    const std::vector<std::uint8_t> payload{1, 2};
    std::vector<std::string> formats;
    for (const auto* const format : {"http", "nas-eps", "ip"}) {
        runner.submit(
            {.timestamp = 1, .format = format, .payload = payload},
            [&](const trace_record& record, const outcome&) { formats.push_back(record.format); });
    }
    EXPECT_THAT(formats, ElementsAre("http"));
}

/// How often the text occurs; it is removed.
int remove_all(std::string& from, const std::string& text) {
    int count = 0;
    for (auto found = from.find(text); found != std::string::npos; found = from.find(text)) {
        from.erase(found, text.size());
        ++count;
    }
    return count;
}

TEST_F(in_process_runs, give_a_record_that_ends_tshark_a_tshark_of_its_own) {
    // The running one ends in the middle of a packet each time.
    write_tshark(R"(
case "$*" in
*" -r - "*) dd bs=1 count=250 2>/dev/null | /usr/bin/tshark "$@" ;;
*) exec /usr/bin/tshark "$@" ;;
esac
)");
    write_capture("c.pcapng", records_of("nbiot_attach.pcapng"));
    const auto sound = run({"--json", "c.pcapng"});
    auto result = run({"--json", "--tshark-directory", "bin", "c.pcapng"});
    EXPECT_EQ(result.status, 0);
    EXPECT_GT(remove_all(result.output,
                         R"({"level":3,"message":"tshark session ended, record is dissected by a )"
                         R"(tshark of its own"})"),
              1);
    EXPECT_EQ(result.output, sound.output);
    EXPECT_THAT(names_in("."), ElementsAre("bin", "c.pcapng", "calls", "kivra-profile.json"));
}

TEST_F(in_process_runs, need_a_tshark) {
    const auto result =
        run({"--tshark-directory", "/nowhere", capture_file("nbiot_attach.pcapng")});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error,
              "kivra-replay: tshark not found from path or default installation location\n");
}

TEST_F(in_process_runs, report_each_record_while_its_writer_holds_the_pipe_open) {
    // The writer sends a record only after it has read the line of the one before.
    write_capture("c.pcapng", records_of("nbiot_attach.pcapng"));
    const auto whole = read_file("c.pcapng");
    const auto records = records_of("nbiot_attach.pcapng");
    const auto head = capture_image(exported_pdu_link_type, {});
    std::size_t position = head.size();
    for (std::size_t count = 1; count <= records.size(); ++count) {
        const auto end =
            capture_image(exported_pdu_link_type,
                          {records.begin(), records.begin() + static_cast<std::ptrdiff_t>(count)})
                .size();
        write_file("piece" + std::to_string(count), whole.substr(position, end - position));
        position = end;
    }
    write_file("head", head);
    const auto result =
        run_process({"/bin/bash", "-c",
                     "mkfifo input output\n" KIVRA_REPLAY " --json - <input >output 2>errors &\n"
                     "exec 8>input 9<output\n"
                     "cat head >&8\n"
                     "for piece in 1 2 3 4 5 6 7 8; do\n"
                     "    cat piece$piece >&8\n"
                     "    read -r line <&9\n"
                     "    echo \"$line\"\n"
                     "done\n"
                     "exec 8>&-\n"
                     "wait $!\n"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, run({"--json", "c.pcapng"}).output);
    EXPECT_EQ(read_file("errors"), "8 records, 0 failed\n");
}

TEST_F(in_process_runs, report_what_was_read_before_they_wait_in_the_middle_of_a_record) {
    const auto records = records_of("nbiot_attach.pcapng");
    write_capture("c.pcapng", {records[0], records[1]});
    const auto whole = read_file("c.pcapng");
    write_file("first", whole.substr(0, whole.size() - 20));
    write_file("second", whole.substr(whole.size() - 20));
    const auto result =
        run_process({"/bin/bash", "-c",
                     "mkfifo input output\n" KIVRA_REPLAY " --json - <input >output 2>errors &\n"
                     "exec 8>input 9<output\n"
                     "cat first >&8\n"
                     "read -r line <&9; echo \"$line\"\n"
                     "cat second >&8\n"
                     "read -r line <&9; echo \"$line\"\n"
                     "exec 8>&-\n"
                     "wait $!\n"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, run({"--json", "c.pcapng"}).output);
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
