/// A progress bar on a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <iosfwd>

namespace KIVRA::TSHARK::REPLAY {

/// Draws on the stream's current line; the line is cleared with the object.
class progress {
  public:
    using clock = std::chrono::steady_clock;

    /// @param terminal where to draw, outlives the object; null: nowhere
    /// @param total how many bytes there are to read; 0 when nobody knows
    /// @param now the clock
    /// @param counted what there are many of
    progress(std::ostream* terminal, std::uint64_t total, clock::time_point (*now)() = clock::now,
             const char* counted = "record")
        : terminal_(terminal), total_(total), now_(now), counted_(counted), start_(now()) {}
    ~progress() { clear(); }
    progress(const progress&) = delete;
    progress& operator=(const progress&) = delete;

    /// Share, count, count a second and time left; not more often than a person can follow.
    void draw(std::uint64_t bytes_read, std::uint64_t count);

    /// Makes room for other output.
    void clear();

  private:
    std::ostream* terminal_;
    std::uint64_t total_;
    clock::time_point (*now_)();
    const char* counted_;
    clock::time_point start_;
    clock::time_point next_drawing_ = start_;
    bool drawn_ = false;
};

}  // namespace KIVRA::TSHARK::REPLAY
