#include "replay/input/open_capture.h"

#include <system_error>
#include <utility>

#include "platform/console/input_stream.h"
#include "replay/input/capture_inspection.h"
#include "replay/input/direct_capture.h"
#include "replay/input/extracted_capture.h"

namespace KIVRA::TSHARK::REPLAY {

std::unique_ptr<capture> open_capture(const std::filesystem::path& file,
                                      const std::filesystem::path& tshark,
                                      const extraction_options& options,
                                      std::function<void()> before_waiting) {
    const auto name = name_of(file);
    const bool is_standard_input = file == "-";
    try {
        auto stream = std::make_unique<PLATFORM::input_stream>(is_standard_input ? "" : file,
                                                               std::move(before_waiting));
        const bool is_direct = options.tshark_options.empty() && holds_records(*stream);
        stream->rewind();
        if (is_direct) {
            return std::make_unique<direct_capture>(name, std::move(stream));
        }
        if (!is_standard_input && stream->is_regular_file()) {
            return std::make_unique<extracted_capture>(name, tshark, file, nullptr, options);
        }
        return std::make_unique<extracted_capture>(name, tshark, std::filesystem::path(),
                                                   std::move(stream), options);
    } catch (const std::system_error& error) {
        throw capture_error(name, error.code().message());
    }
}

}  // namespace KIVRA::TSHARK::REPLAY
