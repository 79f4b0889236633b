/// Comma-separated values (RFC 4180).
#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

/// A line with its end. Cells stand in quotation marks where they have to.
std::string csv_line(const std::vector<std::string_view>& cells);

enum class csv_part {
    /// A line with its end.
    line,
    /// Nothing more.
    end,
    /// The file ends within a line.
    torn_line,
    /// Not of RFC 4180's form.
    malformed,
};

/// Reads line by line, and holds no more than the one.
class csv_reader {
  public:
    /// @param stream binary; outlives the object
    explicit csv_reader(std::istream& stream) : stream_(stream) {}

    /// Reads on, as long as there were lines.
    /// @param cells those of a line; anything when there is none
    csv_part next(std::vector<std::string>& cells);

    /// How many bytes the lines had so far.
    std::uint64_t position() const { return position_; }

  private:
    std::istream& stream_;
    std::uint64_t position_ = 0;
};

}  // namespace KIVRA::TSHARK::REPLAY
