/// A file of a run's own that has no name: it is gone when the run ends, however it ends.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

class working_file {
  public:
    /// @throws std::runtime_error when the system's folder for temporary files can't take it
    working_file();

    /// @throws std::runtime_error when the disk is full, for example
    void write(std::string_view bytes);

    /// Writes through to the system, for readers of `path`.
    /// @throws std::runtime_error as `write` does
    void flush();

    /// Where this process and its children can open the file while the object lives; each opening
    /// begins at the file's start.
    std::filesystem::path path() const;

  private:
    struct closer {
        void operator()(std::FILE* stream) const { static_cast<void>(std::fclose(stream)); }
    };

    std::unique_ptr<std::FILE, closer> stream_;
};

/// The path by which this process and its children can open what a descriptor is open on.
std::filesystem::path path_of_descriptor(int descriptor);

}  // namespace KIVRA::TSHARK::REPLAY
