#include "replay/input/open_capture.h"

#include <system_error>
#include <utility>

#include "platform/console/input_stream.h"
#include "replay/input/extracted_capture.h"
#include "replay/input/record_capture.h"

namespace KIVRA::TSHARK::REPLAY {

std::unique_ptr<capture> open_capture(const std::filesystem::path& file,
                                      const std::filesystem::path& tshark,
                                      const extraction_options& options,
                                      std::function<void()> before_waiting) {
    capture_source source{.name = name_of(file), .tshark = tshark, .options = options};
    try {
        const bool is_standard_input = file == "-";
        source.stream = std::make_unique<PLATFORM::input_stream>(is_standard_input ? "" : file,
                                                                 std::move(before_waiting));
        if (!is_standard_input && source.stream->is_regular_file()) {
            source.file = file;
        }
        if (options.tshark_options.empty()) {
            if (auto records = open_records(source)) {
                return records;
            }
        }
        return std::make_unique<extracted_capture>(std::move(source));
    } catch (const std::system_error& error) {
        throw capture_error(source.name, error.code().message());
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
