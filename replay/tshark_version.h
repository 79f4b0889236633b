/// Which tshark it is.
#pragma once

#include <filesystem>
#include <string>

namespace KIVRA::TSHARK::REPLAY {

/// The first line that "tshark --version" prints, such as "TShark (Wireshark) 4.0.17"; empty where
/// the program does not start.
std::string tshark_version(const std::filesystem::path& tshark);

}  // namespace KIVRA::TSHARK::REPLAY
