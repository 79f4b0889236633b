// Five hundred records, with a tshark each and with one for all, in process and through the
// plug-in. Takes minutes.
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/replay/capture_image.h"
#include "tests/replay/sample_records.h"
#include "tests/support/files.h"
#include "tests/support/process.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;

constexpr std::size_t record_count = 500;

/// The samples over and over, with a lab network and a nameless packet now and then.
std::vector<image_packet> long_trace() {
    auto round = records_of("ltem_attach_psm.pcapng");
    for (auto& packet : records_of("nbiot_attach.pcapng")) {
        round.push_back(std::move(packet));
    }
    round.push_back(lab_network_accept());
    round.push_back({end_of_tags() + "m", 0});
    std::vector<image_packet> packets;
    while (packets.size() < record_count) {
        packets.push_back(round[packets.size() % round.size()]);
    }
    return packets;
}

using long_captures = scratch_test;

TEST_F(long_captures, have_the_same_outcome_with_one_tshark_as_with_one_each) {
    write_file("c.pcapng", capture_image(exported_pdu_link_type, long_trace()));
    const auto run = [](const std::string& profile, const std::vector<std::string>& options) {
        std::vector<std::string> arguments{KIVRA_REPLAY, "--json", "--profile", profile,
                                           "c.pcapng"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return run_process(arguments);
    };
    const auto alone = run("alone.json", {"--plugin", KIVRA_PLUGIN});
    const auto together = run("together.json", {});
    const auto session = run("session.json", {"--plugin", KIVRA_PLUGIN, "--session"});
    EXPECT_EQ(alone.status, 1);
    EXPECT_EQ(together.status, 1);
    EXPECT_EQ(session.status, 1);
    EXPECT_EQ(together.error, alone.error);
    EXPECT_EQ(session.error, alone.error);
    EXPECT_TRUE(together.output == without_timing(alone.output));
    EXPECT_TRUE(without_timing(session.output) == without_timing(alone.output));
    EXPECT_EQ(read_file("together.json"), read_file("alone.json"));
    EXPECT_EQ(read_file("session.json"), read_file("alone.json"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
