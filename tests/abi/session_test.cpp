// One tshark for all records, as a host asks for it: when it starts and ends, and what becomes of
// the records when it fails. What the records give stands in tests/tshark.
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/abi/sessions.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/system.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using TESTING::children;
using testing::ElementsAre;
using TESTING::host;
using testing::IsEmpty;
using TESTING::session_ended;
using TESTING::sessions;
using testing::SizeIs;

TEST_F(sessions, start_with_the_first_record_for_tshark_and_serve_all) {
    EXPECT_EQ(host_.data("ip", ""), 0);
    EXPECT_EQ(host_.data("other", ""), 0);
    EXPECT_THAT(started(), IsEmpty());
    expect_result();
    expect_result();
    EXPECT_THAT(started(), ElementsAre("session"));
}

TEST_F(sessions, are_used_for_the_value_on_alone) {
    for (const char* value : {"", "ON", "On", "on ", "1", "true", "yes", "off"}) {
        host_.release();
        ASSERT_EQ(init(host_, value), 0);
        forget_started();
        expect_result();
        expect_result();
        EXPECT_THAT(started(), ElementsAre("single", "single")) << value;
    }
}

TEST_F(sessions, write_no_working_file) {
    std::vector<std::string> names{"not called"};
    host_.on_chunk = [&](const kivra_annotated_chunk&) { names = working_files(); };
    expect_result();
    EXPECT_THAT(names, IsEmpty());
}

TEST_F(sessions, end_with_the_release) {
    expect_result();
    EXPECT_THAT(children(), SizeIs(1));
    EXPECT_EQ(host_.release(), 0);
    EXPECT_THAT(children(), IsEmpty());
}

TEST_F(sessions, outlive_a_callback_that_throws_but_not_the_release) {
    host_.on_chunk = [](const kivra_annotated_chunk&) { throw std::runtime_error("host"); };
    EXPECT_EQ(send_request(host_), 100);
    EXPECT_EQ(host_.last_error().first, "host");
    host_.on_chunk = nullptr;
    expect_result();
    EXPECT_THAT(started(), ElementsAre("session"));
    EXPECT_THAT(children(), SizeIs(1));
    host_.release();
    EXPECT_THAT(children(), IsEmpty());
    EXPECT_THAT(working_files(), IsEmpty());
}

TEST_F(sessions, start_anew_behind_a_tshark_that_was_killed_between_two_records) {
    expect_result();
    TESTING::kill_process(children().at(0));
    expect_result({session_ended});
    expect_result();
    EXPECT_THAT(started(), ElementsAre("session", "single", "session"));
}

TEST_F(sessions, log_their_end_as_information) {
    expect_result();
    TESTING::kill_process(children().at(0));
    expect_result({session_ended});
    EXPECT_EQ(host_.logs.front().level, 3U);
}

TEST_F(sessions, serve_records_that_the_filter_drops) {
    EXPECT_EQ(host_.data("lte_rrc.nosuch", "message"), 0);
    EXPECT_THAT(host_.texts, IsEmpty());
    EXPECT_THAT(host_.messages(), IsEmpty());
    EXPECT_THAT(host_.logs, SizeIs(1));
    expect_result();
    EXPECT_THAT(started(), ElementsAre("session"));
}

TEST_F(sessions, that_write_rubbish_cost_nothing) {
    for (const char* rubbish :
         {"hello", "null", "[1]", "{}", "[{}]", "[[[", R"([{"frame.number": "99"}])",
          R"([{"frame.number": "x"}])", "\\0", "]"}) {
        host_.release();
        ASSERT_EQ(init(host_, "on"), 0);
        // The shell keeps the output open: it is not its end that tells.
        session_runs(std::string("printf '") + rubbish + "'; cat >/dev/null");
        expect_result({session_ended});
    }
}

TEST_F(sessions, that_end_at_once_cost_nothing) {
    for (const char* script : {"exit 0", "exit 1", "printf '[\n  {'", "kill -9 $$"}) {
        host_.release();
        ASSERT_EQ(init(host_, "on"), 0);
        session_runs(script);
        expect_result({session_ended});
        EXPECT_THAT(children(), IsEmpty()) << script;
    }
}

TEST_F(sessions, take_a_record_and_a_dissection_larger_than_a_pipe) {
    // The most that tshark reads: 262144 bytes with the dissector's name before them.
    const json records = TESTING::read_json(TESTING::data_file("ltem_attach_psm.json"));
    std::string payload = TESTING::bytes_of(records[12]["hex"].get<std::string>());
    payload.resize(262'128, '\x07');
    ASSERT_EQ(host_.data("nas-eps", payload), 0) << host_.last_error().first;
    const json document = host_.document();
    expect_result();
    EXPECT_THAT(started(), ElementsAre("session"));

    host_.release();
    host_.texts.clear();
    ASSERT_EQ(init(host_, "off"), 0);
    ASSERT_EQ(host_.data("nas-eps", payload), 0);
    EXPECT_EQ(host_.document(), document);
}

TEST_F(sessions, give_a_record_that_tshark_can_not_read_what_it_gets_alone) {
    // More than tshark takes for a packet.
    const std::string payload(8'000'000, '\x07');
    EXPECT_EQ(host_.data("nas-eps", payload), 0);
    EXPECT_THAT(host_.messages(), ElementsAre(session_ended));
    EXPECT_THAT(host_.texts, IsEmpty());
    EXPECT_THAT(working_files(), IsEmpty());
    expect_result();
    EXPECT_THAT(started(), ElementsAre("session", "single", "session"));

    host_.release();
    host_.texts.clear();
    ASSERT_EQ(init(host_, "off"), 0);
    EXPECT_EQ(host_.data("nas-eps", payload), 0);
    EXPECT_THAT(host_.texts, IsEmpty());
}

TEST_F(sessions, give_records_a_tshark_of_their_own_where_there_is_no_program) {
    const fs::path tools = scratch() / "fake_tshark.tools";
    const auto install = [&] {
        fs::copy_file(TESTING::fake_tshark_directory() / "tshark.exe", tools / "tshark.exe");
    };
    fs::create_directory(tools);
    install();
    host_.release();
    ASSERT_EQ(init(host_, "on", tools), 0);
    fs::remove(tools / "tshark.exe");
    EXPECT_EQ(host_.data("nas-eps", ""), 100);
    EXPECT_THAT(host_.last_error().first, testing::HasSubstr("parse_error.101"));
    EXPECT_THAT(host_.logs, IsEmpty());
    install();
    expect_result();
    EXPECT_THAT(started(), ElementsAre("session"));
}

TEST_F(sessions, of_two_contexts_do_not_touch_each_other) {
    host other;
    ASSERT_EQ(init(other, "on"), 0);
    expect_result();
    const auto first = children();
    EXPECT_EQ(send_request(other), 0);
    EXPECT_THAT(children(), SizeIs(2));
    host_.release();
    EXPECT_THAT(children(), SizeIs(1));
    EXPECT_NE(children(), first);
    other.texts.clear();
    EXPECT_EQ(send_request(other), 0);
    EXPECT_THAT(other.texts, SizeIs(1));
    EXPECT_THAT(started(), ElementsAre("session", "session"));
}

}  // namespace
}  // namespace KIVRA::TSHARK
