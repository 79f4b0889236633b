// Callbacks that throw as a host from Microsoft's compiler does.
#include <windows.h>

#include <array>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

using testing::ElementsAre;
using TESTING::error_entry;
using TESTING::host;

/// What that compiler's `throw` does: a mark, the thrown object, its type's description, and the
/// module that the description belongs to.
void throw_as_microsoft() {
    static int thrown = 5;
    static std::array<DWORD, 8> description{};
    const std::array<ULONG_PTR, 4> parameters{
        0x19930520, reinterpret_cast<ULONG_PTR>(&thrown),
        reinterpret_cast<ULONG_PTR>(description.data()),
        reinterpret_cast<ULONG_PTR>(GetModuleHandleW(nullptr))};
    RaiseException(0xE06D7363, EXCEPTION_NONCONTINUABLE, parameters.size(), parameters.data());
}

void access_nothing() {
    static volatile int* nowhere = nullptr;
    *nowhere = 0;
}

constexpr auto one_packet =
    R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.onDurationTimer": "1",
                                            "lte-rrc.drx_InactivityTimer": "99"}}}}])";

/// Ends the process with a status of its own when nobody handles an exception, in place of a
/// debugger.
class status_for_unhandled_exceptions {
  public:
    static constexpr int of_access_violations = 33;

    status_for_unhandled_exceptions() = default;
    ~status_for_unhandled_exceptions() { SetUnhandledExceptionFilter(former_); }
    status_for_unhandled_exceptions(const status_for_unhandled_exceptions&) = delete;
    status_for_unhandled_exceptions& operator=(const status_for_unhandled_exceptions&) = delete;

  private:
    static LONG end(EXCEPTION_POINTERS* exception) {
        const DWORD code = exception->ExceptionRecord->ExceptionCode;
        ExitProcess(code == EXCEPTION_ACCESS_VIOLATION ? of_access_violations : 1);
    }

    LPTOP_LEVEL_EXCEPTION_FILTER former_ = SetUnhandledExceptionFilter(end);
};

class foreign_exceptions : public TESTING::scratch_test {
  protected:
    void SetUp() override { TESTING::fake_tshark_prints(one_packet); }

    /// The record fails, leaves no file, and the next one goes well.
    void expect_failed_record() {
        EXPECT_EQ(host_.data("lte_rrc", ""), 100);
        EXPECT_EQ(host_.last_error(), error_entry("unknown error", 100U));
        EXPECT_THAT(TESTING::names_in("."), ElementsAre("fake_tshark.output", "fake_tshark.sh"));
        host_.on_chunk = nullptr;
        host_.on_log = nullptr;
        host_.texts.clear();
        EXPECT_EQ(host_.data("lte_rrc", ""), 0);
        EXPECT_EQ(host_.document()["lte-rrc"]["cdrx_on_duration"], "2");
        EXPECT_EQ(host_.release(), 0);
    }

    host host_;

  private:
    status_for_unhandled_exceptions status_;
};

TEST_F(foreign_exceptions, of_the_schema_give_100) {
    EXPECT_EQ(
        host_.exports.init_parameters(nullptr, [](void*, const char*) { throw_as_microsoft(); }),
        100);
    EXPECT_EQ(host_.exports.init_parameters(nullptr, [](void*, const char*) {}), 0);
}

TEST_F(foreign_exceptions, of_the_version_give_100) {
    EXPECT_EQ(host_.exports.version(nullptr,
                                    [](void*, const kivra_version_info*) { throw_as_microsoft(); }),
              100);
    EXPECT_EQ(host_.exports.version(nullptr, [](void*, const kivra_version_info*) {}), 0);
}

TEST_F(foreign_exceptions, of_init_errors_give_1) {
    kivra_init_parameters block = host_.block({});
    block.count = 21;
    block.error_callback = [](void*, const kivra_error*) { throw_as_microsoft(); };
    EXPECT_EQ(host_.exports.init(&host_.context, &block), 1);
    EXPECT_EQ(host_.init_with_fake_tshark(), 0);
}

TEST_F(foreign_exceptions, of_the_last_error_are_swallowed) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host_.exports.get_last_error(host_.context, nullptr,
                                 [](void*, const kivra_error*) { throw_as_microsoft(); });
    EXPECT_EQ(host_.last_error(), error_entry("", 0U));
}

TEST_F(foreign_exceptions, of_chunks_fail_the_record) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host_.on_chunk = [](const kivra_annotated_chunk&) { throw_as_microsoft(); };
    expect_failed_record();
}

TEST_F(foreign_exceptions, of_the_log_fail_the_record_while_it_is_parsed) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host_.on_log = [] { throw_as_microsoft(); };
    expect_failed_record();
    EXPECT_EQ(host_.logs.front().message, "99 mapping not found");
}

TEST_F(foreign_exceptions, of_the_log_fail_the_record_behind_its_parsing) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host_.on_log = [this] {
        if (TESTING::is_timing(host_.logs.back().message)) {
            throw_as_microsoft();
        }
    };
    expect_failed_record();
}

TEST_F(foreign_exceptions, of_an_ip_record_fail_it) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host_.on_chunk = [](const kivra_annotated_chunk&) { throw_as_microsoft(); };
    std::string packet(88, '\0');
    packet[6] = 58;
    packet[40] = static_cast<char>(134);
    EXPECT_EQ(host_.data("ip", packet), 100);
    EXPECT_EQ(host_.last_error(), error_entry("unknown error", 100U));
}

TEST_F(foreign_exceptions, leave_those_of_this_compiler_their_texts) {
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    host_.on_chunk = [](const kivra_annotated_chunk&) { throw std::runtime_error("host is full"); };
    EXPECT_EQ(host_.data("lte_rrc", ""), 100);
    EXPECT_EQ(host_.last_error(), error_entry("host is full", 100U));
}

TEST(access_violations, of_callbacks_are_left_to_the_system) {
    host host;
    const auto run = [&host] {
        const status_for_unhandled_exceptions status;
        host.exports.version(nullptr, [](void*, const kivra_version_info*) { access_nothing(); });
    };
    EXPECT_EXIT(run(),
                testing::ExitedWithCode(status_for_unhandled_exceptions::of_access_violations), "");
}

}  // namespace
}  // namespace KIVRA::TSHARK
