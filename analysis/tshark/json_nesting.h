/// How deeply nested a place in a JSON text is, found without parsing it.
#pragma once

#include <cstddef>

namespace KIVRA::TSHARK::ANALYSIS {

/// Takes a text byte by byte. What it says of a text that is no JSON means nothing.
class json_nesting {
  public:
    void take(char c) {
        if (escaped_) {
            escaped_ = false;
        } else if (in_string_) {
            escaped_ = c == '\\';
            in_string_ = c != '"';
        } else if (c == '"') {
            in_string_ = true;
        } else if (c == '[' || c == '{') {
            ++depth_;
        } else if ((c == ']' || c == '}') && depth_ != 0) {
            --depth_;
        }
    }

    /// How many brackets are open.
    std::size_t depth() const { return depth_; }

  private:
    std::size_t depth_ = 0;
    bool in_string_ = false;
    bool escaped_ = false;
};

}  // namespace KIVRA::TSHARK::ANALYSIS
