#include "replay/report/table_report.h"

#include <sstream>
#include <string>

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

const message_description attach_accept{.name = "Attach accept", .is_procedure = true};
const message_description paging{.name = "PCCH, Paging"};
const message_description system_information{.name = "BCCH-DL-SCH, SystemInformation"};

const log_message unmapped{3, "x mapping not found"};
const log_message timing{3, "tshark processing took: 412ms"};

record_failure failed(const std::string& text) {
    return {failure_kind::analysis, text};
}

json nas(json values) {
    return {{"nas-eps", std::move(values)}};
}

class table_reports : public TESTING::scratch_test {
  protected:
    static constexpr const char* time = "  2025-11-24T16:00:00.000000Z  ";
    static constexpr const char* no_time = "                               ";

    std::string row_of(const trace_record& record, const outcome& result, bool coloured = false) {
        std::ostringstream out;
        table_report(out, coloured, false, profile_).add(7, record, result);
        return out.str();
    }

    /// The table's rows for these outcomes, of records from 1 on, without the number's indent.
    std::string rows_of(const std::vector<outcome>& results, bool all = false) {
        std::ostringstream out;
        table_report report(out, false, all, profile_);
        for (const auto& result : results) {
            report.add(++number_, nas_record, result);
        }
        report.end({});
        return out.str().substr(0, out.str().find("\n\n") + 1);
    }

    const profile_file profile_{"p.json"};

  private:
    std::uint64_t number_ = 0;
};

TEST_F(table_reports, have_a_heading_a_table_and_a_summary) {
    std::ostringstream out;
    table_report report(out, false, false, profile_);
    report.begin("tshark in\x1b /usr/bin");
    report.add(7, nas_record, {.message = attach_accept, .document = nas({{"accept", "1"}})});
    report.end({});
    EXPECT_THAT(out.str(), StartsWith("tshark in\\x1b /usr/bin\n"
                                      "\n"
                                      "   record  time                         message\n"
                                      "        7  2025-11-24T16:00:00.000000Z  Attach accept; "
                                      "attach result 1\n"
                                      "\n"
                                      "1 record: 1 with a result, 0 without, 0 failed\n"));
}

TEST_F(table_reports, show_messages_then_values) {
    EXPECT_THAT(row_of(nas_record,
                       {.message = attach_accept, .document = nas({{"tac", "7"}, {"apn", "iot"}})}),
                EndsWith("  Attach accept; tac 7, apn iot\n"));
}

TEST_F(table_reports, show_failures) {
    EXPECT_THAT(row_of(nas_record, {.message = attach_accept, .failure = failed("cannot\nopen")}),
                EndsWith("  Attach accept; failed: cannot\\x0aopen\n"));
}

TEST_F(table_reports, show_log_messages_but_the_timing) {
    EXPECT_THAT(row_of(nas_record, {.message = attach_accept,
                                    .document = nas({{"tac", "7"}}),
                                    .log = {unmapped, timing}}),
                EndsWith("  Attach accept; tac 7; log: x mapping not found\n"));
}

TEST_F(table_reports, say_which_messages_are_malformed) {
    EXPECT_THAT(row_of(nas_record, {.message = {.name = "PCCH, Paging", .is_malformed = true},
                                    .document = nas({{"tac", "7"}})}),
                EndsWith("  PCCH, Paging [malformed]; tac 7\n"));
}

TEST_F(table_reports, spell_control_characters) {
    EXPECT_THAT(
        row_of(nas_record, {.message = {.name = "\x1b[31m"}, .document = nas({{"apn", "\x1b]"}})}),
        AllOf(EndsWith("  \\x1b[31m; apn \\x1b]\n")));
}

TEST_F(table_reports, spell_control_characters_of_a_run) {
    const outcome odd{.message = {.name = "\x1b"}};
    EXPECT_THAT(rows_of({odd, odd, odd}), HasSubstr("2 x \\x1b\n"));
}

TEST_F(table_reports, are_coloured_on_demand) {
    EXPECT_THAT(
        row_of(nas_record,
               {.message = attach_accept, .log = {unmapped}, .failure = failed("reason")}, true),
        EndsWith("  \033[1mAttach accept\033[0m; \033[31mfailed: reason\033[0m; "
                 "\033[33mlog: x mapping not found\033[0m\n"));
}

TEST_F(table_reports, paint_no_message_that_changes_nothing) {
    EXPECT_THAT(row_of(nas_record, {.message = paging}, true), EndsWith("Z  PCCH, Paging\n"));
}

TEST_F(table_reports, show_what_is_new_and_count_the_rest) {
    const outcome page{.message = paging};
    const outcome information{.message = system_information};
    EXPECT_EQ(rows_of({page, page, information, page, page, information, page}),
              "        1" + std::string(time) + "PCCH, Paging\n" +  //
                  "        2" + time + "PCCH, Paging\n" +           //
                  "        3" + time + "BCCH-DL-SCH, SystemInformation\n" + "      4-7" + no_time +
                  "3 x PCCH, Paging; 1 x BCCH-DL-SCH, SystemInformation\n");
}

TEST_F(table_reports, end_a_run_with_what_is_new) {
    const outcome page{.message = paging};
    EXPECT_EQ(rows_of({page, page, page, {.message = attach_accept}, page}),
              "        1" + std::string(time) + "PCCH, Paging\n" +  //
                  "      2-3" + no_time + "2 x PCCH, Paging\n" +    //
                  "        4" + time + "Attach accept\n" +          //
                  "        5" + time + "PCCH, Paging\n");
}

TEST_F(table_reports, show_every_record_on_demand) {
    const outcome page{.message = paging};
    EXPECT_EQ(rows_of({page, page, page}, true),
              "        1" + std::string(time) + "PCCH, Paging\n" + "        2" + time +
                  "PCCH, Paging\n" + "        3" + time + "PCCH, Paging\n");
}

TEST_F(table_reports, mark_malformed_messages_of_a_run) {
    // Malformed messages are news each time, so they stand in no run.
    const outcome broken{.message = {.name = "PCCH, Paging", .is_malformed = true}};
    EXPECT_EQ(rows_of({broken, broken}), "        1" + std::string(time) +
                                             "PCCH, Paging [malformed]\n" + "        2" + time +
                                             "PCCH, Paging [malformed]\n");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
