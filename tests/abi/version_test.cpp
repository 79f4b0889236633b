#include <cstring>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

using testing::ElementsAre;
using TESTING::host;

std::vector<kivra_version_info> versions_of(host& host) {
    std::vector<kivra_version_info> versions;
    const auto note = [](void* user_data, const kivra_version_info* version) {
        static_cast<std::vector<kivra_version_info>*>(user_data)->push_back(*version);
    };
    EXPECT_EQ(host.exports.version(&versions, note), 0);
    return versions;
}

TEST(version, is_0_13_1) {
    host host;
    const auto versions = versions_of(host);
    ASSERT_EQ(versions.size(), 1U);
    EXPECT_EQ(versions.front().major, 0U);
    EXPECT_EQ(versions.front().minor, 13U);
    EXPECT_EQ(versions.front().patch, 1U);
    EXPECT_EQ(versions.front().flag, 1U);
}

TEST(version, describes_itself_in_21_characters_that_stay_valid) {
    host host;
    const char* first = versions_of(host).front().description;
    const char* second = versions_of(host).front().description;
    EXPECT_STREQ(first, "tshark sink plugin ()");
    EXPECT_EQ(std::strlen(first), 21U);
    EXPECT_EQ(first, second);
}

TEST(version, is_zero_in_every_other_byte) {
    host host;
    kivra_version_info version = versions_of(host).front();
    version.description = nullptr;
    version.minor = 0;
    version.patch = 0;
    version.flag = 0;
    std::string bytes(sizeof version, 'x');
    std::memcpy(bytes.data(), &version, sizeof version);
    EXPECT_EQ(bytes, std::string(488, '\0'));
}

TEST(version, needs_no_callback) {
    host host;
    EXPECT_EQ(host.exports.version(nullptr, nullptr), 0);
}

TEST(schema, is_handed_out_once_with_the_user_data) {
    host host;
    std::vector<std::string> schemas;
    const auto note = [](void* user_data, const char* schema) {
        static_cast<std::vector<std::string>*>(user_data)->emplace_back(schema);
    };
    EXPECT_EQ(host.exports.init_parameters(&schemas, note), 0);
    EXPECT_THAT(schemas,
                ElementsAre(TESTING::read_file(TESTING::data_file("init_parameter_schema.json"))));
}

TEST(schema, needs_no_callback) {
    host host;
    EXPECT_EQ(host.exports.init_parameters(nullptr, nullptr), 0);
}

}  // namespace
}  // namespace KIVRA::TSHARK
