/// Records for captures made in tests, and what their reports have in common.
#pragma once

#include <string>
#include <vector>

#include "tests/replay/capture_image.h"

namespace KIVRA::TSHARK::TESTING {

/// All packets of a sample.
std::vector<image_packet> records_of(const char* sample);

/// The first packet of a sample: system information with both the paging cycle and repetitions.
image_packet system_information(const char* sample);

/// An attach accept of the lab network 001/01.
image_packet lab_network_accept();

/// JSON Lines without the log messages that tell how long tshark took.
std::string without_timing(const std::string& lines);

}  // namespace KIVRA::TSHARK::TESTING
