#include "analysis/analysis_run.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "analysis/tshark/pcapng_image.h"
#include "tests/support/files.h"
#include "tests/support/parser_probe.h"

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using TESTING::log_recorder;
using testing::SizeIs;
using testing::StartsWith;

using steady_clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Prints the same output for every record, or nothing at all.
class fixed_source final : public dissection_source {
  public:
    void dissect(const sink_context& /*context*/, const std::string& packet,
                 const output_handler& handler) override {
        packets.push_back(packet);
        for (const auto begin = steady_clock::now(); steady_clock::now() - begin < duration;) {
        }
        if (starts) {
            handler(output);
        }
    }

    milliseconds duration{0};
    bool starts = true;
    std::string output = "[]";
    std::vector<std::string> packets;
};

class analysis_run : public TESTING::scratch_test {
  protected:
    void analyse(const char* format, std::string_view payload = {}) {
        kivra_trace_chunk chunk{};
        chunk.format = format;
        chunk.data = reinterpret_cast<const std::uint8_t*>(payload.data());
        chunk.size = static_cast<std::uint32_t>(payload.size());
        chunk.timestamp = 7;
        analyse_record(context_, chunk, source_,
                       [this](json document) { documents_.push_back(std::move(document)); });
    }

    log_recorder log_;
    sink_context context_{&log_, &log_recorder::callback, "tshark.exe", scratch() / "output.json",
                          ""};
    fixed_source source_;
    std::vector<json> documents_;
};

TEST_F(analysis_run, gives_tshark_nas_and_everything_with_lte_rrc_in_its_name) {
    for (const char* format :
         {"nas-eps", "lte_rrc", "lte_rrc.ul_dcch", "lte_rrc.bcch_dl_sch.nb", "a lte_rrc b"}) {
        source_.packets.clear();
        analyse(format);
        EXPECT_THAT(source_.packets, SizeIs(1)) << format;
    }
}

TEST_F(analysis_run, ignores_every_other_format) {
    for (const char* format : {"nas-epsx", "NAS-EPS", "nas-ep", "nas_eps", "lte-rrc.ul_dcch",
                               "LTE_RRC", "lte_rr", "ip", "", "x"}) {
        analyse(format);
        EXPECT_THAT(source_.packets, IsEmpty()) << format;
    }
    analyse(nullptr);
    EXPECT_THAT(source_.packets, IsEmpty());
    EXPECT_THAT(log_.entries, IsEmpty());
}

TEST_F(analysis_run, gives_tshark_the_record_as_a_packet_of_a_capture) {
    analyse("nas-eps", "ab");
    const std::vector<std::uint8_t> payload{'a', 'b'};
    EXPECT_THAT(source_.packets, ElementsAre(pcapng_packet("nas-eps", payload, 7)));
}

TEST_F(analysis_run, delivers_what_tshark_shows_and_logs_how_long_that_took) {
    source_.output =
        R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.defaultPagingCycle": "2"}}}}])";
    analyse("lte_rrc");
    EXPECT_THAT(documents_, ElementsAre(json{{"lte-rrc", {{"idrx_int", "1.28"}}}}));
    ASSERT_THAT(log_.entries, SizeIs(1));
    EXPECT_EQ(log_.entries.front().level, 3U);
    EXPECT_EQ(log_.entries.front().caller, &context_);
    EXPECT_THAT(log_.entries.front().message,
                AllOf(StartsWith("tshark processing took: "), EndsWith("ms")));
}

TEST_F(analysis_run, logs_no_less_than_tshark_took_and_no_more_than_the_call) {
    for (const milliseconds duration : {milliseconds(0), milliseconds(3)}) {
        log_.entries.clear();
        source_.duration = duration;
        const auto begin = steady_clock::now();
        analyse("nas-eps");
        const auto taken = std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
        ASSERT_THAT(log_.entries, SizeIs(1));
        const std::string& message = log_.entries.front().message;
        const auto logged = std::stoll(message.substr(message.find(": ") + 2));
        EXPECT_GE(logged, duration.count());
        EXPECT_LE(logged, taken.count());
    }
}

TEST_F(analysis_run, delivers_no_empty_document) {
    source_.output = "[]";
    analyse("nas-eps");
    EXPECT_THAT(documents_, IsEmpty());
    EXPECT_THAT(log_.entries, SizeIs(1));
}

TEST_F(analysis_run, does_nothing_more_when_tshark_does_not_start) {
    source_.starts = false;
    analyse("nas-eps");
    EXPECT_THAT(documents_, IsEmpty());
    EXPECT_THAT(log_.entries, IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
