/// A running tshark and what it prints, read while it works.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <thread>

namespace KIVRA::TSHARK::REPLAY {

/// Starts tshark with the arguments of the plug-in's; its output goes into a pipe. Ends with it:
/// what is not read by then is lost, and a tshark that goes on printing is ended by that.
class tshark_output {
  public:
    /// @throws std::system_error when there can be no pipe or thread
    tshark_output(const std::filesystem::path& executable, const std::filesystem::path& capture);
    ~tshark_output();
    tshark_output(const tshark_output&) = delete;
    tshark_output& operator=(const tshark_output&) = delete;

    /// Waits for output.
    /// @return how many bytes there are; 0 when tshark has ended, and for good from then on
    /// @throws std::runtime_error when tshark could not be started
    std::size_t read(std::span<char> place);

  private:
    int reading_end_ = -1;
    int writing_end_ = -1;
    std::optional<std::uint32_t> start_error_;
    std::thread waiting_;
};

}  // namespace KIVRA::TSHARK::REPLAY
