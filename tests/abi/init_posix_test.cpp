#include <malloc.h>

#include <cstddef>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/deep_directory_posix.h"
#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using TESTING::host;
using testing::Pair;

constexpr std::size_t kib_64 = 65'536;

/// Nought under the address sanitizer.
std::size_t heap_in_use() {
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

class init_on_posix : public TESTING::scratch_test {
  protected:
    host host_;
};

TEST_F(init_on_posix, fails_where_the_working_directory_is_gone) {
    fs::create_directory("gone");
    fs::current_path("gone");
    fs::remove(scratch() / "gone");
    EXPECT_EQ(host_.init_with_fake_tshark(), 1);
    EXPECT_THAT(host_.init_errors, ElementsAre(Pair(HasSubstr("current_path()"), 1U)));
}

TEST_F(init_on_posix, takes_less_than_64_kib_for_each_further_context) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host other;
    const auto before = heap_in_use();
    EXPECT_EQ(other.init_with_fake_tshark(), 0);
    EXPECT_LT(heap_in_use(), before + kib_64);
}

TEST_F(init_on_posix, searches_program_files_alone_when_path_is_empty) {
    const TESTING::environment_guard guard("PATH");
    TESTING::set_environment("PATH", "");
    EXPECT_EQ(host_.init({}), 1);
    EXPECT_THAT(host_.init_errors,
                ElementsAre(Pair("tshark installation not found from path or default installation "
                                 "location",
                                 1U)));
}

TEST_F(init_on_posix, fails_where_the_executable_cannot_be_queried) {
    EXPECT_EQ(host_.init({{"tshark_directory", std::string(5000, 'x')}}), 1);
    EXPECT_THAT(host_.init_errors, ElementsAre(Pair(HasSubstr("exists"), 1U)));
}

TEST_F(init_on_posix, fails_where_a_name_for_the_output_cannot_be_queried) {
    TESTING::enter_deep_directory();
    EXPECT_EQ(host_.init_with_fake_tshark(), 1);
    EXPECT_THAT(host_.init_errors, ElementsAre(Pair(HasSubstr("exists"), 1U)));
}

TEST_F(init_on_posix, misses_the_executable_before_it_looks_for_a_name_for_the_output) {
    fs::create_directory("empty");
    TESTING::enter_deep_directory();
    EXPECT_EQ(host_.init({{"tshark_directory", (scratch() / "empty").string()}}), 1);
    EXPECT_THAT(
        host_.init_errors,
        ElementsAre(Pair("tshark not found from path or default installation location", 1U)));
}

class unloading_on_posix : public TESTING::scratch_test {};

TEST_F(unloading_on_posix, frees_the_operator_list) {
    const auto before = heap_in_use();
    {
        host own;
        EXPECT_EQ(own.init_with_fake_tshark(), 0);
    }
    EXPECT_LT(heap_in_use(), before + kib_64);
}

}  // namespace
}  // namespace KIVRA::TSHARK
