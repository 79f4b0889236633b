/// What became of a record.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "replay/record/message_description.h"
#include "replay/record/record_failure.h"
#include "replay/record/setting.h"

namespace KIVRA::TSHARK::REPLAY {

struct log_message {
    /// A `kivra_log_level`.
    std::uint32_t level = 0;
    std::string text;
};

struct outcome {
    message_description message = {};
    /// What the message tells in the units of 3GPP.
    std::vector<setting> settings = {};
    /// The result document; null when there is none.
    nlohmann::json document = {};
    std::vector<log_message> log = {};
    /// Why the record failed, when it did.
    std::optional<record_failure> failure = {};
};

/// Whether the message tells how long tshark took, which differs from run to run.
bool is_timing(const log_message& message);

}  // namespace KIVRA::TSHARK::REPLAY
