/// An installation in C:\Program Files, for a while.
#pragma once

#include <filesystem>

#include "tests/support/host.h"

namespace KIVRA::TSHARK::TESTING {

/// Makes C:\Program Files\Wireshark with the fake tshark as its tshark.exe, and removes it.
class installation {
  public:
    installation() {
        std::filesystem::create_directory(directory);
        std::filesystem::copy_file(fake_tshark_directory() / "tshark.exe",
                                   directory / "tshark.exe");
    }
    ~installation() {
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }
    installation(const installation&) = delete;
    installation& operator=(const installation&) = delete;

    const std::filesystem::path directory = R"(C:\Program Files\Wireshark)";
};

}  // namespace KIVRA::TSHARK::TESTING
