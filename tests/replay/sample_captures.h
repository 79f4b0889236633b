/// The captures that tests/captures makes, and runs of kivra-replay on them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/process.h"

namespace KIVRA::TSHARK::TESTING {

/// @param name for example "ltem_attach_psm/gsmtap_ethernet.pcap"
std::filesystem::path sample_capture(const std::string& name);

/// Runs kivra-replay with these arguments in the working directory.
process_result run_replay(std::vector<std::string> arguments, const process_setting& setting = {});

/// The lines of JSON Lines without the numbers of the records.
std::vector<std::string> without_numbers(const std::string& lines);

/// The packets of a pcap file, each with its head; the file's own head is the first.
std::vector<std::string> pieces_of_pcap(const std::string& image);

/// A folder with a tshark that is this script of the shell.
void write_tshark(const std::filesystem::path& directory, const std::string& script);

/// A folder "bin" with a tshark that notes the words of its command line, a line a start, in the
/// file "calls" before it works as always.
void write_noting_tshark();

}  // namespace KIVRA::TSHARK::TESTING
