#include "replay/page/page_file.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include "replay/record/path_text.h"
#include "replay/record/write_error.h"

namespace KIVRA::TSHARK::REPLAY {

namespace fs = std::filesystem;

page_file::unfinished_file::~unfinished_file() {
    std::error_code ignored;
    // Devices stay, and links, as /dev/stdout is one.
    if (fs::is_regular_file(fs::symlink_status(path, ignored))) {
        fs::remove(path, ignored);
    }
}

page_file::page_file(fs::path file, const page_frame& frame)
    : path_(std::move(file)), frame_(frame) {
    file_.open(path_, std::ios::binary | std::ios::trunc);
    if (!file_.is_open()) {
        fail();
    }
    unfinished_.path = path_;
    write(frame_.head);
}

void page_file::write(std::string_view text) {
    errno = 0;
    if (!file_.write(text.data(), static_cast<std::streamsize>(text.size()))) {
        fail();
    }
}

void page_file::begin_block(std::string_view name) {
    write(R"(<script type="application/json" class=")");
    write(name);
    write("\">");
}

void page_file::end_block() {
    write("</script>\n");
}

void page_file::finish() {
    write(frame_.tail);
    errno = 0;
    if (!file_.flush()) {
        fail();
    }
    unfinished_.path.clear();
}

void page_file::fail() const {
    throw write_error(text_of(path_), errno);
}

bool is_whole_page(const fs::path& file, const page_frame& frame) {
    std::ifstream stream(file, std::ios::binary);
    stream.seekg(-static_cast<std::streamoff>(frame.tail.size()), std::ios::end);
    std::string end(frame.tail.size(), '\0');
    return stream.read(end.data(), static_cast<std::streamsize>(end.size())) && end == frame.tail;
}

}  // namespace KIVRA::TSHARK::REPLAY
