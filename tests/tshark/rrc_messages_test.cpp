// The built plug-in with the real tshark, message by message.
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

using nlohmann::json;
using TESTING::host;

struct message {
    std::string format;
    std::string payload;
    std::string what;
    /// The result document; null for none.
    json result;
    std::vector<std::string> log;
};

std::vector<message> messages() {
    std::vector<message> all;
    for (const auto& entry : TESTING::read_json(TESTING::data_file("rrc_messages.json"))) {
        all.push_back({entry["format"], TESTING::bytes_of(entry["hex"].get<std::string>()),
                       entry["what"], entry["result"], entry["log"]});
    }
    return all;
}

// NOLINTNEXTLINE(readability-identifier-naming): GoogleTest looks for this name
void PrintTo(const message& message, std::ostream* stream) {
    *stream << message.what;
}

class rrc_messages : public TESTING::scratch_test, public testing::WithParamInterface<message> {};

TEST_P(rrc_messages, give_their_values) {
    host host;
    ASSERT_EQ(host.init({{"tshark_directory", TESTING::tshark_directory().string()},
                         {"file_path", "profile.json"}}),
              0);
    EXPECT_EQ(host.data(GetParam().format, GetParam().payload), 0) << host.last_error().first;
    EXPECT_EQ(host.texts.empty() ? json() : host.document(), GetParam().result);
    EXPECT_EQ(host.messages(), GetParam().log);
    EXPECT_EQ(host.logs.size(), GetParam().log.size() + 1);

    // The profile, where the message has what it takes, is all that is left.
    const json lte_rrc =
        GetParam().result.is_null() ? json::object() : GetParam().result.at("lte-rrc");
    const bool complete = lte_rrc.contains("idrx_int") && lte_rrc.contains("idrx_reps");
    EXPECT_EQ(TESTING::names_in("."),
              complete ? std::vector<std::string>{"profile.json"} : std::vector<std::string>{});
    if (complete) {
        const json profile = TESTING::read_json("profile.json");
        EXPECT_EQ(profile["idrx_int"], lte_rrc["idrx_int"]);
        EXPECT_EQ(profile["idrx_reps"], lte_rrc["idrx_reps"]);
    }
}

class rrc_messages_in_one_session : public TESTING::scratch_test {};

TEST_F(rrc_messages_in_one_session, give_their_values_and_leave_no_file) {
    host host;
    ASSERT_EQ(host.init({{"tshark_directory", TESTING::tshark_directory().string()},
                         {"tshark_session", "on"}}),
              0);
    for (const auto& message : messages()) {
        host.texts.clear();
        host.logs.clear();
        EXPECT_EQ(host.data(message.format, message.payload), 0) << host.last_error().first;
        EXPECT_EQ(host.texts.empty() ? json() : host.document(), message.result) << message.what;
        EXPECT_EQ(host.messages(), message.log) << message.what;
        EXPECT_EQ(host.logs.size(), message.log.size() + 1) << message.what;
        EXPECT_EQ(TESTING::names_in("."), std::vector<std::string>{}) << message.what;
    }
}

INSTANTIATE_TEST_SUITE_P(all, rrc_messages, testing::ValuesIn(messages()));

}  // namespace
}  // namespace KIVRA::TSHARK
