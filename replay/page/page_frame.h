/// What stands around the data of a web page.
#pragma once

#include <string_view>

namespace KIVRA::TSHARK::REPLAY {

/// UTF-8; lives as long as the program.
struct page_frame {
    /// Before the data, with the style.
    std::string_view head;
    /// Behind them, with the scripts.
    std::string_view tail;
};

}  // namespace KIVRA::TSHARK::REPLAY
