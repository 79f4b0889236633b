#include "replay/report/summary.h"

#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using nlohmann::json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

record_failure failed(const std::string& text) {
    return {failure_kind::analysis, text};
}

class summaries : public scratch_test {
  protected:
    void add(const outcome& result, const std::vector<detail_value>& details = {},
             const std::string& format = "nas-eps") {
        summary_.add(++number_, {.timestamp = 0, .format = format, .payload = {}, .failure = {}},
                     result, details);
    }

    void add_message(const std::string& name) { add({.message = {.name = name}}); }

    void add_values(const std::vector<detail_value>& details) { add({}, details); }

    std::string printed(const capture_content& captures = {}) const {
        std::ostringstream out;
        summary_.print(out, profile_, captures);
        return out.str();
    }

    const profile_file profile_{"p.json"};

  private:
    summary summary_;
    std::uint64_t number_ = 0;
};

TEST_F(summaries, count_records_by_their_formats) {
    add({.document = {{"a", 1}}});
    add({});
    add({.failure = failed("reason")});
    add({.document = {{"a", 1}}}, {}, "ip");
    add({.failure = failed("no name")}, {}, "");
    EXPECT_THAT(printed(),
                StartsWith("\n5 records: 2 with a result, 1 without, 2 failed\n"
                           "    nas-eps                         3: 1 with a result, 1 failed\n"
                           "    ip                              1: 1 with a result, 0 failed\n"
                           "    (no format)                     1: 0 with a result, 1 failed\n"));
}

TEST_F(summaries, say_what_kept_records_from_being_read) {
    add_message("Attach request");
    EXPECT_THAT(printed({.incomplete = {"can't read a\x1b.pcapng: cut short", "interrupted"}}),
                HasSubstr("\nincomplete\n"
                          "    can't read a\\x1b.pcapng: cut short\n"
                          "    interrupted\n"
                          "\nmessages\n"));
}

TEST_F(summaries, are_not_incomplete_where_all_was_read) {
    EXPECT_THAT(printed(), Not(HasSubstr("incomplete")));
}

TEST_F(summaries, count_messages_in_the_order_of_their_first) {
    add_message("Attach request");
    add_message("Attach accept");
    add_message("Attach request");
    EXPECT_THAT(printed(), HasSubstr("\nmessages\n"
                                     "        2 x Attach request\n"
                                     "        1 x Attach accept\n\n"));
}

TEST_F(summaries, count_what_can_not_be_read) {
    add({.message = {.name = "A"}});
    add({.message = {.name = "A", .is_malformed = true}});
    add({.message = {.name = "B", .is_ciphered = true}});
    add({.message = {.name = "B", .is_malformed = true}});
    EXPECT_THAT(printed({.packets = 9, .encrypted_rrc = 2}),
                HasSubstr("\nnot readable, or not to the end\n"
                          "    malformed messages              2 (first in record 2)\n"
                          "    ciphered NAS messages           1 (first in record 3)\n"
                          "    encrypted RRC signalling        2 packets\n\n"));
}

TEST_F(summaries, tell_of_encrypted_rrc_alone) {
    EXPECT_THAT(printed({.encrypted_rrc = 1}),
                HasSubstr("\nnot readable, or not to the end\n"
                          "    encrypted RRC signalling        1 packet\n\nprofile "));
}

TEST_F(summaries, name_the_nearest_format_that_is_analysed) {
    for (const auto* format : {"nas-eps_plain", "http", "ip", ""}) {
        add({}, {}, format);
    }
    EXPECT_THAT(printed(),
                HasSubstr("    nas-eps_plain                   1: 0 with a result, 0 failed; not "
                          "analysed: tshark knows nas-eps\n"
                          "    http                            1: 0 with a result, 0 failed; not "
                          "analysed\n"
                          "    ip                              1: 0 with a result, 0 failed\n"
                          "    (no format)                     1: 0 with a result, 0 failed\n"));
}

TEST_F(summaries, tell_when_values_changed) {
    add_values({{"tac", "1"}, {"apn", "iot"}});
    add_values({{"tac", "1"}});
    add_values({{"tac", "2"}});
    add_values({{"tac", "1"}, {"apn", "iot"}});
    EXPECT_THAT(
        printed(),
        HasSubstr("\nvalues, and the records that changed them\n"
                  "    tac                             1 (record 1), 2 (record 3), 1 (record 4)\n"
                  "    apn                             iot (record 1)\n\n"));
}

TEST_F(summaries, shorten_long_histories) {
    for (int i = 1; i <= 9; ++i) {
        add_values({{"tac", std::to_string(i)}});
    }
    EXPECT_THAT(printed(),
                HasSubstr("  1 (record 1), 2 (record 2), 3 (record 3), 4\n" + std::string(36, ' ') +
                          "(record 4), 5 (record 5), ... 9 (record 9; 9\n" + std::string(36, ' ') +
                          "changes)\n"));
}

TEST_F(summaries, count_failures_and_log_messages_and_say_what_they_mean) {
    add({.failure = failed("invalid stoi argument")});
    add({.log = {{3, "22 mapping not found"}, {3, "tshark processing took: 412ms"}}});
    add({.failure = failed("invalid stoi argument")});
    add({.failure = failed("odd")});
    EXPECT_THAT(
        printed(),
        AllOf(HasSubstr("\nfailures and log messages\n"
                        "    2 x invalid stoi argument (first in record 1)\n"
                        "        The message names a network (GUTI) that the list of operators "
                        "does not\n"
                        "        know, or that stands behind"),
              HasSubstr("\n    1 x 22 mapping not found (first in record 2)\n        tshark shows"),
              HasSubstr("\n    1 x odd (first in record 4)\n\nprofile"),
              Not(HasSubstr("processing took"))));
}

TEST_F(summaries, leave_out_what_there_is_none_of) {
    EXPECT_EQ(printed(),
              "\n0 records: 0 with a result, 0 without, 0 failed\n"
              "\nprofile p.json: not written by this run: the records did not give both idrx_int\n"
              "    and idrx_reps\n"
              "    Both come from system information (BCCH), of which there was none.\n");
}

TEST_F(summaries, say_that_plain_lte_cells_give_no_profile) {
    add_message("BCCH-DL-SCH, SystemInformation [SIB2]");
    EXPECT_THAT(printed(),
                EndsWith("\n    Plain LTE cells broadcast no paging repetitions; those for LTE-M\n"
                         "    (BCCH-DL-SCH BR) and for NB-IoT (BCCH-DL-SCH NB) do, in system "
                         "information\n    block 2.\n"));
}

TEST_F(summaries, say_that_the_block_with_the_profiles_values_is_missing) {
    for (const auto* channel : {"BCCH-DL-SCH BR, ", "BCCH-DL-SCH NB, "}) {
        summary seen;
        seen.add(1, {}, {.message = {.name = "BCCH-DL-SCH, SystemInformation [SIB2]"}}, {});
        seen.add(2, {}, {.message = {.name = channel + std::string("SystemInformation")}}, {});
        std::ostringstream out;
        seen.print(out, profile_, {});
        EXPECT_THAT(out.str(), EndsWith("\n    No system information block 2 with both was among "
                                        "the records.\n"));
    }
}

TEST_F(summaries, do_not_grow_with_the_trace) {
    for (int i = 1; i <= 200; ++i) {
        add({.failure = failed("reason " + std::to_string(i))}, {}, "format" + std::to_string(i));
    }
    EXPECT_THAT(
        printed(),
        AllOf(HasSubstr(
                  "    format100                       1: 0 with a result, 1 failed; not analysed\n"
                  "    others                          100: 0 with a result, 100 failed\n"),
              HasSubstr("    1 x reason 100 (first in record 100)\n"
                        "    100 x others (first in record 101)\n")));
}

TEST_F(summaries, give_the_source_of_each_value_of_the_profile) {
    write_file("p.json", R"({"cdrx_int": "30", "chip": "5", "idrx_int": "2.56", "idrx_nb_sync": "",
                             "idrx_reps": "32"})");
    add({.document = {{"lte-rrc", {{"cdrx_int", "30"}}}}});
    add({.document = {{"lte-rrc", {{"idrx_int", "2.56"}, {"idrx_reps", "32"}}}}});
    EXPECT_THAT(printed(), EndsWith("\nprofile p.json\n"
                                    "    cdrx_int                        30          record 1\n"
                                    "    idrx_int                        2.56        record 2\n"
                                    "    idrx_reps                       32          record 2\n"
                                    "    at their defaults: chip 5, idrx_nb_sync \"\"\n"));
}

TEST_F(summaries, tell_why_the_profile_can_not_be_written) {
    std::ostringstream out;
    summary().print(out, profile_file("missing/p.json"), {});
    EXPECT_THAT(out.str(), EndsWith("\nprofile missing/p.json: not written by this run: the path "
                                    "can't be written (No\n    such file or directory)\n"));
}

TEST_F(summaries, spell_control_characters) {
    add({.message = {.name = "\x1b"}, .failure = failed("\x1b[2J")}, {{"apn", "a\nb"}}, "\t");
    EXPECT_THAT(printed(),
                AllOf(Not(HasSubstr("\x1b")), Not(HasSubstr("\t")), HasSubstr("a\\x0ab")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
