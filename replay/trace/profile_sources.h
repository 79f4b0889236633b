/// Which record each value of the profile came from.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <nlohmann/json.hpp>

#include "context/sink_context.h"

namespace KIVRA::TSHARK::REPLAY {

/// Follows the result documents of a run, by the rules by which the profile is written.
class profile_sources {
  public:
    /// @param number of the record that the document is of
    void follow(std::uint64_t number, const nlohmann::json& result);

    /// The numbers of the records, by the members of the last profile that was due; the other
    /// members are at their defaults.
    const std::map<std::string, std::uint64_t>& of_members() const { return written_; }

  private:
    void write();

    profile_texts texts_;
    std::map<std::string, std::uint64_t> known_;
    std::map<std::string, std::uint64_t> written_;
};

}  // namespace KIVRA::TSHARK::REPLAY
