#include "tests/support/files.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <random>

namespace KIVRA::TSHARK::TESTING {

namespace fs = std::filesystem;

fs::path data_file(const fs::path& name) {
    return fs::path(KIVRA_TEST_DATA) / name;
}

fs::path capture_file(const fs::path& name) {
    return fs::path(KIVRA_CAPTURES) / name;
}

std::string read_file(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << file;
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void write_file(const fs::path& file, std::string_view content) {
    std::ofstream stream(file, std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    EXPECT_TRUE(stream.good()) << file;
}

nlohmann::json read_json(const fs::path& file) {
    return nlohmann::json::parse(read_file(file));
}

std::vector<std::string> names_in(const fs::path& directory) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory)) {
        names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
}

scratch_directory::scratch_directory() : former_(fs::current_path()) {
    std::random_device random;
    do {
        path_ = fs::canonical(fs::temp_directory_path()) /
                ("kivra-test-" + std::to_string(random()) + std::to_string(random()));
    } while (!fs::create_directory(path_));
    fs::current_path(path_);
}

scratch_directory::~scratch_directory() {
    std::error_code ignored;
    fs::current_path(former_, ignored);
    fs::remove_all(path_, ignored);
}

}  // namespace KIVRA::TSHARK::TESTING
