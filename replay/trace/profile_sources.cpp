#include "replay/trace/profile_sources.h"

#include <algorithm>

#include "profile/parameter_file.h"
#include "profile/profile_values.h"
#include "profile/result_mapping.h"

namespace KIVRA::TSHARK::REPLAY {

void profile_sources::follow(std::uint64_t number, const nlohmann::json& result) {
    profile_texts given;
    PROFILE::carry_texts(result, given);
    for (const auto& value : PROFILE::profile_values) {
        if (!(given.*value.text).empty()) {
            texts_.*value.text = given.*value.text;
            known_[std::string(value.file_member)] = number;
        }
    }
    if (PROFILE::is_complete(texts_)) {
        write();
    }
}

void profile_sources::write() {
    written_ = known_;
    if (PROFILE::has_psm_timers(texts_)) {
        std::uint64_t& later = written_[std::string(PROFILE::psm_member)];
        for (const auto& timer : PROFILE::psm_timers) {
            later = std::max(later, known_.at(std::string(timer.file_member)));
        }
    } else {
        for (const auto& timer : PROFILE::psm_timers) {
            written_.erase(std::string(timer.file_member));
        }
    }
    known_.clear();
    texts_ = {};
}

}  // namespace KIVRA::TSHARK::REPLAY
