#include "replay/record/record_format.h"

#include <gtest/gtest.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

TEST(record_formats, are_analysed_by_their_names) {
    for (const auto* format : {"nas-eps", "ip", "lte_rrc.pcch", "lte_rrc.nosuch", "lte_rrc"}) {
        EXPECT_TRUE(is_analysed(format)) << format;
    }
    for (const auto* format :
         {"nas-eps_plain", "nas_eps", "NAS-EPS", "IP", "ipv6", "nas-5gs", "lte-rrc.pcch", ""}) {
        EXPECT_FALSE(is_analysed(format)) << format;
    }
}

TEST(record_formats, may_be_other_spellings_of_those_that_are_analysed) {
    EXPECT_EQ(nearest_analysed("nas-eps_plain"), "nas-eps");
    EXPECT_EQ(nearest_analysed("NAS_EPS"), "nas-eps");
    EXPECT_EQ(nearest_analysed("LTE-RRC.PCCH"), "lte_rrc.pcch");
    EXPECT_EQ(nearest_analysed("lte-rrc.dl-ccch.nb"), "lte_rrc.dl_ccch.nb");
}

TEST(record_formats, are_nearest_to_the_longest_name) {
    EXPECT_EQ(nearest_analysed("lte-rrc.bcch.dl.sch"), "lte_rrc.bcch_dl_sch");
    EXPECT_EQ(nearest_analysed("lte-rrc.bcch.dl.sch.br"), "lte_rrc.bcch_dl_sch_br");
    EXPECT_EQ(nearest_analysed("lte-rrc.bcch.dl.sch.nb"), "lte_rrc.bcch_dl_sch.nb");
    EXPECT_EQ(nearest_analysed("lte-rrc.bcch.bch.nb.tdd"), "lte_rrc.bcch_bch.nb.tdd");
}

TEST(record_formats, may_be_near_to_none) {
    for (const auto* format : {"", "http", "nas-5gs", "nr-rrc.ul.ccch", "rrc.ul_ccch", "ipv6"}) {
        EXPECT_EQ(nearest_analysed(format), "") << format;
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
