/// What tshark is asked for: the packets that the parsers read, as JSON.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace KIVRA::TSHARK::ANALYSIS {

/// The arguments with which tshark reads a capture and prints its NAS and LTE RRC packets. UTF-8 on
/// Windows, bytes as they stand on POSIX.
/// @param capture a file, or "-" for tshark's standard input
/// @throws std::system_error on Windows for a path that has no UTF-8 form
std::vector<std::string> tshark_arguments(const std::filesystem::path& capture);

}  // namespace KIVRA::TSHARK::ANALYSIS
