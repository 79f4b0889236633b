/// What a run prints on its standard output, block by block.
#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <string_view>

#include "replay/capture.h"
#include "replay/plugin.h"
#include "replay/profile_file.h"

namespace KIVRA::TSHARK::REPLAY {

/// UTC as in "2026-01-31T09:15:00.000250Z"; times beyond the year 9999 as the plain number.
/// @param timestamp microseconds since 1970-01-01
std::string iso_8601(std::uint64_t timestamp);

/// The text on one line, with nothing in it that a terminal would act on: control characters become
/// "\x1b" and the like.
std::string printable(std::string_view text);

/// Every function writes a block through to the stream.
/// @throws std::runtime_error from each of them when the stream takes no more
class report {
  public:
    /// @param out outlives the object
    explicit report(std::ostream& out) : out_(out) {}

    void start(const std::filesystem::path& plugin_file, const std::string& plugin_version,
               const std::filesystem::path& tshark_directory);

    void start_of(const capture& source);

    /// @param number the packet's in its capture, from 1
    void result(std::uint64_t number, const record& packet, const outcome& result);

    void profile(const profile_file& file);

  private:
    void end_block();

    std::ostream& out_;
};

}  // namespace KIVRA::TSHARK::REPLAY
