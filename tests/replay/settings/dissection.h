/// Dissections by the real tshark, and settings as texts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "analysis/tshark/tshark_session.h"
#include "replay/record/setting.h"

namespace KIVRA::TSHARK::TESTING {

/// One tshark for a test's messages.
class dissector {
  public:
    dissector();

    /// The packet that tshark prints, parsed as the plug-in does it.
    /// @param format the dissector's name, such as "nas-eps"
    nlohmann::json packet(std::string_view format, std::string_view hex);

  private:
    ANALYSIS::tshark_session session_;
};

/// "granted T3324: 10 s"; with " ?" behind it when it is not known.
std::string line_of(const REPLAY::setting& setting);

std::vector<std::string> lines_of(const std::vector<REPLAY::setting>& settings);

/// Those lines of the settings that begin with the text.
std::vector<std::string> lines_of(const std::vector<REPLAY::setting>& settings,
                                  std::string_view beginning);

}  // namespace KIVRA::TSHARK::TESTING
