/// Files in tests: the data in the tree, and a folder of its own for each test.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace KIVRA::TSHARK::TESTING {

/// A file below tests/data.
std::filesystem::path data_file(const std::filesystem::path& name);

/// A sample capture.
std::filesystem::path capture_file(const std::filesystem::path& name);

/// The bytes of a file; fails the test when it can't be read.
std::string read_file(const std::filesystem::path& file);

void write_file(const std::filesystem::path& file, std::string_view content);

nlohmann::json read_json(const std::filesystem::path& file);

/// The names in a folder, sorted.
std::vector<std::string> names_in(const std::filesystem::path& directory);

/// A fresh folder that is the working directory while it lives, and is removed with all it holds.
class scratch_directory {
  public:
    scratch_directory();
    ~scratch_directory();
    scratch_directory(const scratch_directory&) = delete;
    scratch_directory& operator=(const scratch_directory&) = delete;

    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path former_;
    std::filesystem::path path_;
};

/// A fixture whose tests each work in a scratch directory.
class scratch_test : public testing::Test {
  protected:
    const std::filesystem::path& scratch() const { return scratch_.path(); }

  private:
    scratch_directory scratch_;
};

}  // namespace KIVRA::TSHARK::TESTING
