#include "analysis/analysis_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/support/parser_probe.h"

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

using testing::IsEmpty;
using TESTING::log_recorder;

class analysis_run : public TESTING::scratch_test {
  protected:
    /// Analyses a record with a tshark that doesn't exist, which leaves an empty output.
    void analyse(const char* format) {
        kivra_trace_chunk chunk{};
        chunk.format = format;
        analyse_record(context_, chunk, {nullptr, nullptr});
    }

    log_recorder log_;
    sink_context context_{&log_, &log_recorder::callback, "no-such-tshark.exe",
                          scratch() / "output.json", "profile.json"};
};

TEST_F(analysis_run, takes_the_tshark_way_for_nas_and_everything_with_lte_rrc_in_its_name) {
    for (const char* format :
         {"nas-eps", "lte_rrc", "lte_rrc.ul_dcch", "lte_rrc.bcch_dl_sch.nb", "a lte_rrc b"}) {
        EXPECT_THROW(analyse(format), nlohmann::json::parse_error) << format;
        EXPECT_THAT(TESTING::names_in("."), IsEmpty()) << format;
    }
}

TEST_F(analysis_run, ignores_every_other_format) {
    for (const char* format : {"nas-epsx", "NAS-EPS", "nas-ep", "nas_eps", "lte-rrc.ul_dcch",
                               "LTE_RRC", "lte_rr", "ip", "", "x"}) {
        analyse(format);
        EXPECT_THAT(log_.entries, IsEmpty()) << format;
    }
    analyse(nullptr);
    EXPECT_THAT(log_.entries, IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
