/// Where a run's report goes.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <vector>

namespace KIVRA::TSHARK::REPLAY {

/// Nobody reads the report any more, as behind `| head`.
class reader_gone : public std::runtime_error {
  public:
    reader_gone() : std::runtime_error("nobody reads the report") {}
};

/// @param targets files to be written; empty ones don't count
/// @throws std::runtime_error when the capture is one of them
void refuse_to_overwrite(const std::filesystem::path& capture,
                         const std::vector<std::filesystem::path>& targets);

/// @param targets files to be written; empty ones don't count
/// @throws std::runtime_error when two of them are one file
void refuse_same_targets(const std::vector<std::filesystem::path>& targets);

class output {
  public:
    /// @param file created or overwritten; empty for the standard output
    /// @throws std::runtime_error when it can't be written
    explicit output(const std::filesystem::path& file);

    std::ostream& stream();

    /// Whether colours are welcome: on a terminal, unless NO_COLOR or TERM say otherwise.
    bool takes_colour() const;

    /// How many characters fit on a line of a terminal; 0 elsewhere.
    std::size_t columns() const;

    /// Writes through.
    /// @throws reader_gone, or std::runtime_error when the report can't be written
    void flush();

  private:
    std::filesystem::path path_;
    std::optional<std::ofstream> file_;
};

}  // namespace KIVRA::TSHARK::REPLAY
