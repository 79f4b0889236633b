/// Many captures at a time, and what comes of them in order.
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <optional>

#include "replay/fleet/fleet_row.h"

namespace KIVRA::TSHARK::REPLAY {

struct fleet_work {
    /// How many captures there are.
    std::size_t captures = 0;
    /// How many threads run them, at least 1.
    std::size_t jobs = 1;
    /// What comes of a capture, by its place among them and the number of the thread that asks.
    /// Nothing, or an exception: it was given up, and so is everything that has not begun.
    std::function<std::optional<fleet_row>(std::size_t capture, std::size_t job)> run;
    /// Takes rows in the captures' order, in the thread that waits; may throw.
    std::function<void(std::size_t capture, const fleet_row& row)> take;
    /// Told in the same thread of each capture that has ended, as they do.
    std::function<void(std::size_t capture)> ended;
};

/// Runs the captures. Returns when all have ended, or were given up; rows of captures behind one
/// that was given up are taken all the same. An exception of `take` is passed on once the captures
/// that have begun have ended.
/// @return what `run` threw first, if it did
std::exception_ptr run_fleet(const fleet_work& work);

}  // namespace KIVRA::TSHARK::REPLAY
