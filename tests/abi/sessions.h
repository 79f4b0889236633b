/// A host that asks for one tshark for all records, and a fake tshark to be that.
#pragma once

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK::TESTING {

constexpr auto session_ended = "tshark session ended, record is dissected by a tshark of its own";

/// What a session runs unless a test says otherwise: the real tshark.
constexpr auto sound_session = "exec /usr/bin/tshark \"$@\"";

class sessions : public scratch_test {
  protected:
    void SetUp() override {
        session_runs(sound_session);
        ASSERT_EQ(init(host_, "on"), 0);
    }

    /// What a session runs from now on; one that runs already goes on. A record of its own gets the
    /// real tshark in every case.
    static void session_runs(const std::string& script) {
        fake_tshark_runs(
            "case \"$*\" in\n"
            "*' -r - '*) echo session >>fake_tshark.started; " +
            script +
            " ;;\n"
            "*) echo single >>fake_tshark.started; exec /usr/bin/tshark \"$@\" ;;\n"
            "esac\n");
    }

    static std::int32_t init(
        host& host, const std::string& session,
        const std::filesystem::path& tshark_directory = fake_tshark_directory()) {
        return host.init(
            {{"tshark_directory", narrow_text(tshark_directory)}, {"tshark_session", session}});
    }

    /// Each tshark that was started: "session", or "single" for one of a record's own.
    static std::vector<std::string> started() {
        std::vector<std::string> kinds;
        std::istringstream lines(
            std::filesystem::exists("fake_tshark.started") ? read_file("fake_tshark.started") : "");
        for (std::string kind; lines >> kind;) {
            kinds.push_back(kind);
        }
        return kinds;
    }

    static void forget_started() { std::filesystem::remove("fake_tshark.started"); }

    /// The plug-in's own files.
    static std::vector<std::string> working_files() {
        auto names = names_in(".");
        std::erase_if(names, [](const auto& name) { return name.starts_with("fake_tshark."); });
        return names;
    }

    /// An RRC connection request.
    static std::int32_t send_request(host& host) {
        return host.data("lte_rrc.ul_ccch", bytes_of("4c8c2e65e9a6"));
    }

    /// Sends a record and expects its document.
    void expect_result(const std::vector<std::string>& messages = {}) {
        host_.texts.clear();
        host_.logs.clear();
        ASSERT_EQ(send_request(host_), 0) << host_.last_error().first;
        EXPECT_EQ(host_.document()["lte-rrc"]["connection_state"], "rrcConnectionRequest");
        EXPECT_EQ(host_.messages(), messages);
        EXPECT_THAT(host_.logs, testing::SizeIs(messages.size() + 1));
        EXPECT_THAT(working_files(), testing::IsEmpty());
    }

    host host_;
};

}  // namespace KIVRA::TSHARK::TESTING
