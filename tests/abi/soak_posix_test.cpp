#include <malloc.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <cstddef>
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

using testing::ElementsAre;
using TESTING::host;

/// A record and what its tshark does.
struct soak_record {
    const char* format;
    const char* script;
    std::int32_t result;
};

constexpr std::array<soak_record, 6> records{{
    {"lte_rrc",
     R"(echo '[{"_source": {"layers": {"lte_rrc": {"lte-rrc.defaultPagingCycle": "2",)"
     R"("lte-rrc.npdcch_NumRepetitionPaging_r13": "4", "lte-rrc.onDurationTimer": "99"}}}}]')",
     0},
    {"nas-eps", "echo '[{\"_source\": {'", 100},
    {"nas-eps",
     R"(echo '[{"_source": {"layers": {"nas-eps": {"PDN address": {"a": ["b", 1.5]},)"
     R"("EPS mobile identity - GUTI": {"e212.gummei.mcc": "242", "e212.gummei.mnc": "1"}}}}}]')",
     0},
    {"nas-eps",
     R"(echo '[{"_source": {"layers": {"nas-eps": {"PDN address": {"a": "b"},)"
     R"("EPS mobile identity - GUTI": {"e212.gummei.mcc": "x", "e212.gummei.mnc": "1"}}}}}]')",
     100},
    {"lte_rrc.dl_dcch", "rm tshark[0-9]*.json", 100},
    {"lte_rrc.dl_dcch", "kill -9 $$", 100},
}};

/// What a process holds.
struct holdings {
    std::size_t heap;
    std::size_t descriptors;
    std::vector<std::string> files;
};

holdings held() {
    // Nought under the address sanitizer, which looks for leaks itself.
    return {::mallinfo2().uordblks, TESTING::names_in("/proc/self/fd").size(),
            TESTING::names_in(".")};
}

class soak : public TESTING::scratch_test {
  protected:
    void SetUp() override { ASSERT_EQ(host_.init_with_fake_tshark("profile.json"), 0); }

    void run(std::size_t calls) {
        for (std::size_t call = 0; call < calls; ++call) {
            const soak_record& record = records[call % records.size()];
            TESTING::fake_tshark_runs(record.script);
            EXPECT_EQ(host_.data(record.format, "payload"), record.result) << record.script;
            forget();
        }
    }

    void forget() {
        host_.logs = {};
        host_.texts = {};
    }

    host host_;
};

TEST_F(soak, of_2000_records_good_and_bad_leaves_nothing_behind) {
    run(records.size() * 10);
    const holdings before = held();
    run(2'000 / records.size() * records.size() + records.size());
    const holdings after = held();
    EXPECT_LT(after.heap, before.heap + 4'096);
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_EQ(after.files, before.files);
    EXPECT_THAT(after.files, ElementsAre("fake_tshark.sh", "profile.json"));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(soak, of_2000_records_in_a_session_leaves_nothing_behind) {
    host_.release();
    const auto messages = TESTING::read_json(TESTING::data_file("rrc_messages.json"));
    // From init to release: how much of tshark's output a session has read ahead depends on the
    // time.
    const auto run_session = [&](std::size_t least) {
        ASSERT_EQ(host_.init({{"tshark_directory", TESTING::tshark_directory().string()},
                              {"file_path", "profile.json"},
                              {"tshark_session", "on"}}),
                  0);
        for (std::size_t count = 0; count < least; count += messages.size()) {
            for (const auto& message : messages) {
                EXPECT_EQ(host_.data(message["format"],
                                     TESTING::bytes_of(message["hex"].get<std::string>())),
                          0);
                forget();
            }
        }
        EXPECT_EQ(host_.release(), 0);
    };
    run_session(1);
    const holdings before = held();
    run_session(2'000);
    const holdings after = held();
    EXPECT_LT(after.heap, before.heap + 4'096);
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_THAT(after.files, ElementsAre("profile.json"));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

}  // namespace
}  // namespace KIVRA::TSHARK
