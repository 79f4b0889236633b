#include <barrier>
#include <filesystem>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using TESTING::host;

/// A tshark that prints one packet with an access point's name of its own and the first network of
/// the operator list.
void make_tshark(const fs::path& directory, const std::string& name) {
    fs::create_directory(directory);
    TESTING::write_file(
        directory / "tshark.exe",
        "#!/bin/sh\n"
        R"(echo '[{"_source": {"layers": {"nas-eps": {"ESM message container": )"
        R"({"nas_eps.emm.esm_msg_cont_tree": {"Access Point Name": {"gsm_a.gm.sm.apn": ")" +
            name + R"("}}}, "PDN address": {"a": ")" + name +
            R"("}, "EPS mobile identity - GUTI": )"
            R"({"e212.gummei.mcc": "289", "e212.gummei.mnc": "67"}}}}}]')"
            "\n");
    fs::permissions(directory / "tshark.exe", fs::perms::owner_all);
}

/// Analyses records on a context of its own, asks for the version, and meets failures in between.
void use_a_context(const std::string& name) {
    host own;
    ASSERT_EQ(own.init({{"tshark_directory", name}}), 0);
    for (int round = 0; round < 50; ++round) {
        own.texts.clear();
        ASSERT_EQ(own.data("nas-eps", "payload"), 0);
        EXPECT_EQ(own.document()["nas-eps"]["apn"].get<std::string>(), name);
        EXPECT_EQ(own.document()["nas-eps"]["mcc"], "Abkhazia");
        EXPECT_EQ(own.data(std::string("lte_rrc") + std::string(70'000, 'x'), ""), 100);
        EXPECT_EQ(own.last_error().first, "format of a record is longer than 65532 bytes");
        EXPECT_EQ(own.exports.version(nullptr, nullptr), 0);
    }
    EXPECT_EQ(own.release(), 0);
}

class threads : public TESTING::scratch_test {};

TEST_F(threads, may_use_two_contexts_at_once) {
    make_tshark("first", "first");
    make_tshark("second", "second");
    std::thread first([] { use_a_context("first"); });
    std::thread second([] { use_a_context("second"); });
    first.join();
    second.join();
    EXPECT_EQ(TESTING::names_in("."), (std::vector<std::string>{"first", "second"}));
}

/// Analyses a message over and over with the real tshark, one for all rounds.
void use_a_session() {
    host own;
    ASSERT_EQ(own.init({{"tshark_directory", TESTING::tshark_directory().string()},
                        {"tshark_session", "on"}}),
              0);
    for (int round = 0; round < 50; ++round) {
        own.texts.clear();
        ASSERT_EQ(own.data("lte_rrc.ul_ccch", TESTING::bytes_of("4c8c2e65e9a6")), 0);
        EXPECT_EQ(own.document()["lte-rrc"]["connection_state"], "rrcConnectionRequest");
    }
    EXPECT_EQ(own.release(), 0);
}

TEST_F(threads, may_use_two_sessions_at_once) {
    std::thread first(use_a_session);
    std::thread second(use_a_session);
    first.join();
    second.join();
    EXPECT_TRUE(TESTING::names_in(".").empty());
}

TEST_F(threads, may_make_their_contexts_at_once) {
    make_tshark("tools", "any");
    std::barrier both_ready(2);
    const auto make_a_context = [&both_ready](host& own) {
        both_ready.arrive_and_wait();
        EXPECT_EQ(own.init({{"tshark_directory", "tools"}}), 0);
    };
    host one;
    host other;
    std::thread first([&] { make_a_context(one); });
    std::thread second([&] { make_a_context(other); });
    first.join();
    second.join();
    EXPECT_NE(one.context, nullptr);
    EXPECT_NE(other.context, nullptr);
}

}  // namespace
}  // namespace KIVRA::TSHARK
