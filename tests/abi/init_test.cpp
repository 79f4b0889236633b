#include <filesystem>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using TESTING::host;
using testing::IsEmpty;
using testing::Pair;

constexpr auto tshark_missing = "tshark not found from path or default installation location";
constexpr auto installation_missing =
    "tshark installation not found from path or default installation location";

class init : public TESTING::scratch_test {
  protected:
    /// Expects a failure with this message, reported once, and nothing left behind.
    void expect_failure(const host::parameter_list& parameters, const std::string& message) {
        const auto before = TESTING::names_in(".");
        auto* const untouched = reinterpret_cast<kivra_sink_context*>(&host_);
        host_.context = untouched;
        EXPECT_EQ(host_.init(parameters), 1);
        EXPECT_EQ(host_.context, untouched);
        host_.context = nullptr;
        EXPECT_THAT(host_.init_errors, ElementsAre(Pair(message, 1U)));
        EXPECT_EQ(TESTING::names_in("."), before);
    }

    host host_;

  private:
    TESTING::environment_guard path_{"PATH"};
};

TEST_F(init, makes_a_context_and_no_file) {
    EXPECT_EQ(host_.init_with_fake_tshark(), 0);
    EXPECT_NE(host_.context, nullptr);
    EXPECT_THAT(host_.init_errors, IsEmpty());
    EXPECT_THAT(TESTING::names_in("."), IsEmpty());
    EXPECT_EQ(host_.release(), 0);
    EXPECT_THAT(TESTING::names_in("."), IsEmpty());
}

TEST_F(init, makes_contexts_that_are_independent) {
    host other;
    EXPECT_EQ(host_.init_with_fake_tshark(), 0);
    EXPECT_EQ(other.init_with_fake_tshark(), 0);
    TESTING::fake_tshark_prints("nothing that parses");
    EXPECT_EQ(host_.data("nas-eps", ""), 100);
    EXPECT_EQ(other.last_error(), TESTING::error_entry("", 0U));
}

TEST_F(init, fails_without_path_and_directory) {
    TESTING::set_environment("PATH", std::nullopt);
    expect_failure({}, tshark_missing);
}

TEST_F(init, fails_when_no_folder_of_path_holds_an_installation) {
    TESTING::set_environment("PATH", "nothing;.");
    expect_failure({}, installation_missing);
}

TEST_F(init, fails_when_the_directory_holds_no_executable) {
    fs::create_directory("empty");
    expect_failure({{"tshark_directory", "empty"}}, tshark_missing);
}

TEST_F(init, fails_when_the_installation_found_holds_no_executable) {
    fs::create_directories("tools/wireshark");
    TESTING::set_environment("PATH", "tools");
    expect_failure({}, tshark_missing);
}

TEST_F(init, finds_the_installation_through_path) {
    fs::create_directories("tools/WireShark-Portable");
    TESTING::write_file("tools/WireShark-Portable/tshark.exe", "");
    TESTING::set_environment("PATH", "nothing;tools");
    EXPECT_EQ(host_.init({}), 0);
}

TEST_F(init, searches_when_the_directory_given_is_empty) {
    TESTING::set_environment("PATH", std::nullopt);
    expect_failure({{"tshark_directory", ""}}, tshark_missing);
}

TEST_F(init, does_not_search_when_a_directory_is_given) {
    TESTING::set_environment("PATH", std::nullopt);
    fs::create_directory("tools");
    TESTING::write_file("tools/tshark.exe", "");
    EXPECT_EQ(host_.init({{"tshark_directory", "tools"}}), 0);
}

TEST_F(init, ignores_a_key_in_capitals) {
    TESTING::set_environment("PATH", std::nullopt);
    fs::create_directory("tools");
    TESTING::write_file("tools/tshark.exe", "");
    expect_failure({{"TSHARK_DIRECTORY", "tools"}}, tshark_missing);
}

TEST_F(init, refuses_a_block_that_claims_too_many_entries) {
    for (const std::uint64_t count :
         {std::uint64_t{21}, std::numeric_limits<std::uint64_t>::max()}) {
        kivra_init_parameters block = host_.block({});
        block.count = count;
        host_.init_errors.clear();
        EXPECT_EQ(host_.exports.init(&host_.context, &block), 1);
        EXPECT_THAT(host_.init_errors,
                    ElementsAre(Pair("parameter block claims " + std::to_string(count) +
                                         " entries but has room for 20",
                                     1U)));
        EXPECT_EQ(host_.context, nullptr);
    }
}

TEST_F(init, fails_quietly_without_an_error_callback) {
    TESTING::set_environment("PATH", std::nullopt);
    kivra_init_parameters block = host_.block({});
    block.error_callback = nullptr;
    EXPECT_EQ(host_.exports.init(&host_.context, &block), 1);
}

TEST_F(init, refuses_a_null_block_and_a_null_place_for_the_context) {
    EXPECT_EQ(host_.exports.init(&host_.context, nullptr), 1);
    const kivra_init_parameters block = host_.block({});
    EXPECT_EQ(host_.exports.init(nullptr, &block), 1);
    EXPECT_THAT(host_.init_errors, ElementsAre(Pair("no place to put the context was given", 1U)));
}

TEST_F(init, may_be_followed_by_complete_and_cancel_at_any_time) {
    TESTING::fake_tshark_prints("[]");
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(host_.exports.complete(host_.context), 0);
        EXPECT_EQ(host_.exports.cancel(host_.context), 0);
        EXPECT_EQ(host_.data("nas-eps", ""), 0);
    }
    EXPECT_EQ(host_.exports.complete(nullptr), 0);
    EXPECT_EQ(host_.exports.cancel(nullptr), 0);
}

TEST_F(init, fails_each_time_when_the_operator_list_is_an_object) {
    host other(KIVRA_PLUGIN_WITH_OPERATORS_IN_AN_OBJECT);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(other.init_with_fake_tshark(), 1);
        EXPECT_EQ(other.context, nullptr);
    }
    const auto failure =
        Pair("[json.exception.type_error.302] type must be array, but is object", std::uint32_t{1});
    EXPECT_THAT(other.init_errors, ElementsAre(failure, failure));
    EXPECT_THAT(TESTING::names_in("."), IsEmpty());
}

TEST_F(init, gives_a_context_without_error) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    EXPECT_EQ(host_.last_error(), TESTING::error_entry("", 0U));
}

TEST_F(init, is_not_needed_to_release_nothing) {
    EXPECT_EQ(host_.exports.release(nullptr), 0);
}

}  // namespace
}  // namespace KIVRA::TSHARK
