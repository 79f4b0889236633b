/// Dissections of sample messages, as tshark 4.0.17 wrote them.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::BENCH {

/// tshark's output for the largest dissection of the samples: an RRC reconfiguration that carries
/// an attach accept.
inline constexpr auto largest_dissection = "12.json";

/// tshark's output for a NAS attach accept.
inline constexpr auto attach_accept = "13.json";

/// @throws std::runtime_error when the file can't be read
std::string sample_output(const char* name);

/// The packet of a sample output, its repeated names numbered.
nlohmann::json sample_packet(const char* name);

}  // namespace KIVRA::TSHARK::BENCH
