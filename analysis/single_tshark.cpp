#include "analysis/single_tshark.h"

#include <array>
#include <fstream>
#include <stdexcept>

#include "analysis/pcapng_image.h"
#include "analysis/tshark_command.h"
#include "context/file_status.h"
#include "context/unique_path.h"
#include "platform/platform.h"

namespace KIVRA::TSHARK::ANALYSIS {

namespace {

/// Deletes the run's files on every way out. A file that can't be deleted ends the process, since a
/// destructor can't throw.
class working_files {
  public:
    working_files(const std::filesystem::path& capture, const std::filesystem::path& output)
        : capture_(capture), output_(output) {}
    ~working_files() {
        remove_entry(capture_);
        remove_entry(output_);
    }
    working_files(const working_files&) = delete;
    working_files& operator=(const working_files&) = delete;

  private:
    const std::filesystem::path& capture_;
    const std::filesystem::path& output_;
};

}  // namespace

void single_tshark::dissect(const sink_context& context, const std::string& packet,
                            const output_handler& handler) {
    const std::filesystem::path capture = unique_path("tshark_temp", "pcapng");
    // A capture that can't be written shows up as tshark's missing output.
    PLATFORM::write_file(capture, pcapng_head() + packet);
    const working_files clean_up(capture, context.tshark_output);

    const auto failure = PLATFORM::run_program(context.tshark_executable, tshark_arguments(capture),
                                               context.tshark_output);
    if (failure) {
        context.log(KIVRA_LOG_ERROR,
                    "invoking tshark failed with error: " + std::to_string(*failure));
        return;
    }
    handler(read_output(context.tshark_output));
}

std::string read_output(const std::filesystem::path& file) {
    std::ifstream stream(file);
    if (!stream.is_open()) {
        throw std::runtime_error("cannot open file");
    }
    std::string text;
    std::array<char, 65'536> chunk{};
    do {
        stream.read(chunk.data(), chunk.size());
        text.append(chunk.data(), static_cast<std::size_t>(stream.gcount()));
    } while (stream.good());
    return text;
}

}  // namespace KIVRA::TSHARK::ANALYSIS
