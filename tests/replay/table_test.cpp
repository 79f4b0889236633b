#include "replay/table.h"

#include <sstream>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

const record nas_record{
    .timestamp = 1'764'000'000'000'000, .format = "nas-eps", .payload = {}, .failure = {}};

std::string row_of(const record& packet, const outcome& result, const learnt& said = {},
                   bool coloured = false) {
    std::ostringstream out;
    table(out, coloured).row(7, packet, result, said);
    return out.str();
}

TEST(tables, have_a_head_above_their_columns) {
    std::ostringstream out;
    table shown(out, false);
    shown.head();
    shown.row(7, nas_record, {}, {{"Attach accept"}, {}});
    EXPECT_EQ(out.str(),
              " record  time                         format                  learnt\n"
              "      7  2025-11-24T16:00:00.000000Z  nas-eps                 Attach accept\n");
}

TEST(tables, show_messages_then_values) {
    EXPECT_THAT(row_of(nas_record, {}, {{"Attach accept"}, {{"tac", "7"}, {"apn", "iot"}}}),
                EndsWith("  Attach accept; tac 7, apn iot\n"));
}

TEST(tables, show_failures) {
    EXPECT_THAT(row_of(nas_record, {.failure = "cannot open\nfile"}),
                EndsWith("  failed: cannot open\\x0afile\n"));
}

TEST(tables, show_log_messages_but_the_timing) {
    EXPECT_THAT(row_of(nas_record,
                       {.log = {{3, "x mapping not found"}, {3, "tshark processing took: 412ms"}}},
                       {{}, {{"tac", "7"}}}),
                EndsWith("  tac 7; log: x mapping not found\n"));
}

TEST(tables, say_which_records_give_nothing) {
    EXPECT_THAT(row_of(nas_record, {.log = {{3, "tshark processing took: 412ms"}}}),
                EndsWith("  nothing\n"));
}

TEST(tables, spell_control_characters) {
    EXPECT_THAT(row_of({.timestamp = 0, .format = "\x1b[31m", .payload = {}, .failure = {}}, {},
                       {{"a\tb"}, {{"apn", "\x1b]"}}}),
                testing::AllOf(HasSubstr("  \\x1b[31m "), EndsWith("a\\x09b; apn \\x1b]\n")));
}

TEST(tables, are_coloured_on_demand) {
    const outcome failed{.log = {{3, "x mapping not found"}}, .failure = "reason"};
    EXPECT_THAT(row_of(nas_record, failed, {{"Attach accept"}, {}}, true),
                EndsWith("  \033[31mfailed: reason\033[0m; \033[1mAttach accept\033[0m; "
                         "\033[33mlog: x mapping not found\033[0m\n"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
