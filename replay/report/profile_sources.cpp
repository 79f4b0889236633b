#include "replay/report/profile_sources.h"

#include <algorithm>
#include <span>

#include "profile/parameter_file.h"
#include "profile/result_mapping.h"

namespace KIVRA::TSHARK::REPLAY {

void profile_sources::follow(std::uint64_t number, nlohmann::json result) {
    profile_texts given;
    PROFILE::carry_texts(result, given);
    const auto take = [&](std::span<const PROFILE::profile_text> values) {
        for (const auto& [member, text] : values) {
            if (!(given.*text).empty()) {
                texts_.*text = given.*text;
                known_[std::string(member)] = number;
            }
        }
    };
    take(PROFILE::replacing_texts);
    take(PROFILE::power_saving_texts);
    if (PROFILE::suffice_for_file(texts_)) {
        write();
    }
}

void profile_sources::write() {
    written_ = known_;
    if (PROFILE::save_power(texts_)) {
        const auto& [active_time, periodic_update] = PROFILE::power_saving_texts;
        written_[std::string(PROFILE::power_saving_member)] =
            std::max(known_.at(std::string(active_time.member)),
                     known_.at(std::string(periodic_update.member)));
    } else {
        for (const auto& value : PROFILE::power_saving_texts) {
            written_.erase(std::string(value.member));
        }
    }
    known_.clear();
    texts_ = {};
}

}  // namespace KIVRA::TSHARK::REPLAY
