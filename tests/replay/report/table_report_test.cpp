#include "replay/report/table_report.h"

#include <sstream>

#include <gmock/gmock.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const trace_record nas_record{
    .timestamp = 1'764'000'000'000'000, .format = "nas-eps", .payload = {}, .failure = {}};

const json attach_accept{{"nas-eps", {{"nas_msg_emm_type", "0x42"}}}};

const log_message unmapped{3, "x mapping not found"};
const log_message timing{3, "tshark processing took: 412ms"};

class table_reports : public TESTING::scratch_test {
  protected:
    static json nas(json values) { return {{"nas-eps", std::move(values)}}; }

    std::string row_of(const trace_record& record, const outcome& result, bool coloured = false) {
        std::ostringstream out;
        table_report(out, coloured, profile_).add(7, record, result);
        return out.str();
    }

    const profile_file profile_{"p.json"};
};

TEST_F(table_reports, have_a_heading_a_table_and_a_summary) {
    std::ostringstream out;
    table_report report(out, false, profile_);
    report.begin("tshark in\x1b /usr/bin");
    report.add(7, nas_record, {.document = attach_accept});
    report.end();
    EXPECT_THAT(
        out.str(),
        StartsWith("tshark in\\x1b /usr/bin\n"
                   "\n"
                   " record  time                         format                  details\n"
                   "      7  2025-11-24T16:00:00.000000Z  nas-eps                 Attach accept\n"
                   "\n"
                   "1 record: 1 with a result, 0 without, 0 failed\n"));
}

TEST_F(table_reports, show_messages_then_values) {
    EXPECT_THAT(
        row_of(nas_record,
               {.document = nas({{"nas_msg_emm_type", "0x42"}, {"tac", "7"}, {"apn", "iot"}})}),
        EndsWith("  Attach accept; tac 7, apn iot\n"));
}

TEST_F(table_reports, show_failures) {
    EXPECT_THAT(row_of(nas_record,
                       {.failure = record_failure{failure_kind::analysis, "cannot open\nfile"}}),
                EndsWith("  failed: cannot open\\x0afile\n"));
}

TEST_F(table_reports, show_log_messages_but_the_timing) {
    EXPECT_THAT(row_of(nas_record, {.document = nas({{"tac", "7"}}), .log = {unmapped, timing}}),
                EndsWith("  tac 7; log: x mapping not found\n"));
}

TEST_F(table_reports, say_which_records_give_nothing) {
    EXPECT_THAT(row_of(nas_record, {.log = {timing}}), EndsWith("  nothing\n"));
}

TEST_F(table_reports, spell_control_characters) {
    EXPECT_THAT(row_of({.timestamp = 0, .format = "\x1b[31m", .payload = {}, .failure = {}},
                       {.document = nas({{"nas_msg_emm_type", "a\tb"}, {"apn", "\x1b]"}})}),
                AllOf(HasSubstr("  \\x1b[31m "), EndsWith("a\\x09b; apn \\x1b]\n")));
}

TEST_F(table_reports, are_coloured_on_demand) {
    const outcome failed{.document = attach_accept,
                         .log = {unmapped},
                         .failure = record_failure{failure_kind::analysis, "reason"}};
    EXPECT_THAT(row_of(nas_record, failed, true),
                EndsWith("  \033[31mfailed: reason\033[0m; \033[1mAttach accept\033[0m; "
                         "\033[33mlog: x mapping not found\033[0m\n"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
