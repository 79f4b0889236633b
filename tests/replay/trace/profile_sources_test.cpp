#include "replay/trace/profile_sources.h"

#include <cstdint>
#include <map>
#include <string>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

json rrc(const json& members) {
    return {{"lte-rrc", members}};
}

json timers(const json& members) {
    return {{"nas-eps", members}};
}

const json paging = rrc({{"idrx_int", "2.56"}, {"idrx_reps", "32"}});
const json t3324 = timers({{"gprs_timer_2_T3324_value", {{"bitmask", "00000101"}}}});
const json t3412 = timers({{"gprs_timer_3_T3412_extended_value", {{"bitmask", "01000111"}}}});

/// The numbers of the records; what they say of settings is in profile_truth_test.cpp.
class records {
  public:
    void follow(std::uint64_t number, const json& result) { sources_.follow(number, result, {}); }

    std::map<std::string, std::uint64_t> of_members() const {
        std::map<std::string, std::uint64_t> numbers;
        for (const auto& [member, source] : sources_.of_members()) {
            numbers[member] = source.record;
        }
        return numbers;
    }

  private:
    profile_sources sources_;
};

TEST(profile_source, is_the_last_record_that_gave_the_value) {
    records sources;
    sources.follow(1, rrc({{"cdrx_int", "30"}, {"cdrx_on_duration", "10"}}));
    sources.follow(2, rrc({{"cdrx_int", "40"}, {"cdrx_inactive_timer", "100"}}));
    sources.follow(3, rrc({{"idrx_int", "1.28"}}));
    EXPECT_THAT(sources.of_members(), IsEmpty());
    sources.follow(4, rrc({{"idrx_reps", "32"}}));
    EXPECT_THAT(
        sources.of_members(),
        ElementsAre(Pair("cdrx_inactive_timer", 2U), Pair("cdrx_int", 2U),
                    Pair("cdrx_on_duration", 1U), Pair("idrx_int", 3U), Pair("idrx_reps", 4U)));
}

TEST(profile_source, of_psm_is_both_timers_or_none) {
    records sources;
    sources.follow(1, t3324);
    sources.follow(2, paging);
    EXPECT_THAT(sources.of_members(), ElementsAre(Pair("idrx_int", 2U), Pair("idrx_reps", 2U)));
    sources.follow(3, t3412);
    sources.follow(4, t3324);
    sources.follow(5, paging);
    EXPECT_THAT(
        sources.of_members(),
        ElementsAre(Pair("config_lte_psm_req_rat", 4U), Pair("config_lte_psm_req_rptau", 3U),
                    Pair("idrx_int", 5U), Pair("idrx_reps", 5U), Pair("psm", 4U)));
}

TEST(profile_source, is_of_the_last_profile_only) {
    records sources;
    sources.follow(1, rrc({{"cdrx_int", "30"}, {"idrx_int", "1.28"}, {"idrx_reps", "8"}}));
    sources.follow(2, paging);
    sources.follow(3, rrc({{"cdrx_int", "40"}}));
    EXPECT_THAT(sources.of_members(), ElementsAre(Pair("idrx_int", 2U), Pair("idrx_reps", 2U)));
}

TEST(profile_source, is_no_record_without_a_result) {
    records sources;
    sources.follow(1, nullptr);
    sources.follow(2, timers({{"pdn", json::object()}}));
    EXPECT_THAT(sources.of_members(), IsEmpty());
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
