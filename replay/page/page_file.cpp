#include "replay/page/page_file.h"

#include <cerrno>
#include <utility>

#include "replay/record/path_text.h"
#include "replay/record/write_error.h"

namespace KIVRA::TSHARK::REPLAY {

page_file::page_file(std::filesystem::path file, const page_frame& frame)
    : path_(std::move(file)), frame_(frame), file_(path_, std::ios::binary | std::ios::trunc) {
    if (!file_.is_open()) {
        fail();
    }
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
}

void page_file::fail() const {
    throw write_error(text_of(path_), errno);
}

bool is_whole_page(const std::filesystem::path& file, const page_frame& frame) {
    std::ifstream stream(file, std::ios::binary);
    stream.seekg(-static_cast<std::streamoff>(frame.tail.size()), std::ios::end);
    std::string end(frame.tail.size(), '\0');
    return stream.read(end.data(), static_cast<std::streamsize>(end.size())) && end == frame.tail;
}

}  // namespace KIVRA::TSHARK::REPLAY
