#include "analysis/tshark/running_tshark.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "analysis/tshark/pcapng_image.h"
#include "sink/tshark_discovery.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/parser_probe.h"

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using TESTING::log_recorder;

/// An EMM status with this cause.
std::string packet(std::uint8_t cause) {
    const std::vector<std::uint8_t> message{0x07, 0x60, cause};
    return pcapng_packet("nas-eps", message, 0);
}

class running_tsharks : public TESTING::scratch_test {
  protected:
    /// What tshark shows of a packet.
    std::string dissect(std::uint8_t cause) {
        std::string text;
        source_.dissect(context_, packet(cause),
                        [&text](std::string output) { text = std::move(output); });
        return text;
    }

    log_recorder log_;
    sink_context context_{&log_, &log_recorder::callback,
                          SINK::tshark_executable(TESTING::tshark_directory()),
                          scratch() / "output.json", ""};
    running_tshark source_;
};

TEST_F(running_tsharks, get_what_was_sent_ahead_again_after_one_has_ended) {
    for (std::uint8_t cause = 1; cause <= 4; ++cause) {
        source_.send_ahead(context_, packet(cause));
    }
    // It has printed nothing yet.
    for (const auto process : TESTING::children()) {
        TESTING::kill_process(process);
    }
    for (std::uint8_t cause = 1; cause <= 4; ++cause) {
        EXPECT_THAT(dissect(cause),
                    HasSubstr(R"("nas_eps.emm.cause": ")" + std::to_string(cause) + R"(")"));
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
