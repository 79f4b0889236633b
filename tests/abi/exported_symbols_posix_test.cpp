#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

std::string output_of(const std::string& command) {
    // NOLINTNEXTLINE(cert-env33-c): a pipeline of fixed commands
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::array<char, 4096> piece{};
    std::string output;
    while (const std::size_t size = std::fread(piece.data(), 1, piece.size(), pipe.get())) {
        output.append(piece.data(), size);
    }
    return output;
}

TEST(exported_symbols, are_the_eight_functions_and_nothing_else) {
    EXPECT_EQ(output_of("nm -D --defined-only --format=posix '" + TESTING::plugin_file().string() +
                        "' | cut -d' ' -f1,2 | sort"),
              "kivra_sink_cancel T\n"
              "kivra_sink_complete T\n"
              "kivra_sink_data T\n"
              "kivra_sink_get_last_error T\n"
              "kivra_sink_init T\n"
              "kivra_sink_init_parameters T\n"
              "kivra_sink_release T\n"
              "kivra_sink_version T\n");
}

}  // namespace
}  // namespace KIVRA::TSHARK
