/// A progress bar on a terminal.
#pragma once

#include <cstdint>
#include <iosfwd>

namespace KIVRA::TSHARK::REPLAY {

/// Draws on the stream's current line; the line is cleared with the object.
class progress {
  public:
    /// @param terminal where to draw, outlives the object; null: nowhere
    /// @param total how many bytes there are to read; 0 when nobody knows
    progress(std::ostream* terminal, std::uint64_t total) : terminal_(terminal), total_(total) {}
    ~progress() { clear(); }
    progress(const progress&) = delete;
    progress& operator=(const progress&) = delete;

    void draw(std::uint64_t bytes_read, std::uint64_t records);

    /// Makes room for other output.
    void clear();

  private:
    std::ostream* terminal_;
    std::uint64_t total_;
};

}  // namespace KIVRA::TSHARK::REPLAY
