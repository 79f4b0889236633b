/// Reads the network settings of a packet, in the units of 3GPP.
#pragma once

#include <vector>

#include <nlohmann/json.hpp>

#include "replay/record/setting.h"

namespace KIVRA::TSHARK::REPLAY {

/// What the packet tells of its radio access: by its RRC channel, so unknown for a NAS message
/// alone. Whoever reads a trace keeps the last that was not unknown for `settings_of`.
/// @param packet as for `settings_of`
radio_access access_of(const nlohmann::json& packet) noexcept;

/// All settings of the packet, in the order of the dissection's member names. A field that occurs
/// twice with one value gives one setting; one that replaces another, such as
/// longDRX-CycleStartOffset-v1130, leaves the replaced one out. What the tables do not know is left
/// out; what they know with a value that 3GPP reserves is there with tshark's value, not `known`.
/// A NAS message within an RRC message is read, too; what is nested more than 1,000 levels deep is
/// not.
/// @param packet one element of tshark's output; of any shape
/// @param access what is known from other packets; what this one tells comes first. Without either,
///     values that depend on it are given in both readings, neither of them `known`
/// @throws std::bad_alloc, and nlohmann::json::exception should the built-in list of operators be
///     unreadable; nothing else
std::vector<setting> settings_of(const nlohmann::json& packet,
                                 radio_access access = radio_access::unknown);

}  // namespace KIVRA::TSHARK::REPLAY
