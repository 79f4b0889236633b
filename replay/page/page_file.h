/// The file of a report as a web page. It holds all that it needs: data, style and scripts.
#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>

#include "replay/page/page_frame.h"

namespace KIVRA::TSHARK::REPLAY {

/// It does not stay when it goes without its end, be it for an error.
class page_file {
  public:
    /// @param file created or overwritten; gets the page's beginning
    /// @throws std::runtime_error when it can't be written
    page_file(std::filesystem::path file, const page_frame& frame);

    /// @throws std::runtime_error when it can't be written
    void write(std::string_view text);

    /// Begins and ends a block of data, which scripts find by its name.
    void begin_block(std::string_view name);
    void end_block();

    /// Writes the page's end, behind all data.
    /// @throws std::runtime_error when it can't be written
    void finish();

  private:
    /// Removes the file, unless its path is cleared before.
    struct unfinished_file {
        unfinished_file() = default;
        ~unfinished_file();
        unfinished_file(const unfinished_file&) = delete;
        unfinished_file& operator=(const unfinished_file&) = delete;

        std::filesystem::path path;
    };

    [[noreturn]] void fail() const;

    std::filesystem::path path_;
    page_frame frame_;
    /// Outlives the stream: Windows removes no file that is open.
    unfinished_file unfinished_;
    std::ofstream file_;
};

/// Whether a file ends as pages of this frame do. One whose writer was ended before it had finished
/// does not, and shows nothing.
bool is_whole_page(const std::filesystem::path& file, const page_frame& frame);

}  // namespace KIVRA::TSHARK::REPLAY
