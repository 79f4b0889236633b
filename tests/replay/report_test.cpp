#include "replay/report.h"

#include <sstream>
#include <stdexcept>

#include <gmock/gmock.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using testing::HasSubstr;
using testing::ThrowsMessage;

TEST(iso_8601, has_microseconds) {
    EXPECT_EQ(iso_8601(0), "1970-01-01T00:00:00.000000Z");
    EXPECT_EQ(iso_8601(1'764'000'000'142'200), "2025-11-24T16:00:00.142200Z");
    EXPECT_EQ(iso_8601(951'825'599'999'999), "2000-02-29T11:59:59.999999Z");
    EXPECT_EQ(iso_8601(1), "1970-01-01T00:00:00.000001Z");
}

TEST(iso_8601, ends_with_the_year_9999) {
    EXPECT_EQ(iso_8601(253'402'300'799'999'999), "9999-12-31T23:59:59.999999Z");
    EXPECT_EQ(iso_8601(253'402'300'800'000'000), "253402300800000000 us");
    EXPECT_EQ(iso_8601(18'446'744'073'709'551'615U), "18446744073709551615 us");
}

TEST(printable, keeps_texts_and_spells_control_characters) {
    EXPECT_EQ(printable("lte_rrc.ul_dcch \xc3\xa9 ~"), "lte_rrc.ul_dcch \xc3\xa9 ~");
    EXPECT_EQ(printable("a\x1b[2J\n\x7f"), "a\\x1b[2J\\x0a\\x7f");
}

std::string shown(const record& packet, const outcome& result) {
    std::ostringstream out;
    report(out).result(7, packet, result);
    return out.str();
}

const record nas_record{
    .timestamp = 1'764'000'000'000'000, .format = "nas-eps", .payload = {}, .failure = {}};
constexpr const char* nas_heading = "\nrecord 7  2025-11-24T16:00:00.000000Z  nas-eps\n";

TEST(report, shows_the_documents_as_they_were_handed_back) {
    EXPECT_EQ(shown(nas_record, {{"{\n    \"a\": \"b\"\n}", "{}"}, {}, {}}),
              std::string(nas_heading) + "{\n    \"a\": \"b\"\n}\n{}\n");
}

TEST(report, shows_a_failure) {
    EXPECT_EQ(shown(nas_record, {{}, {}, "cannot open\nfile"}),
              std::string(nas_heading) + "failed: cannot open\\x0afile\n");
}

TEST(report, shows_that_there_is_no_result) {
    EXPECT_EQ(shown(nas_record, {}), std::string(nas_heading) + "no result\n");
}

TEST(report, shows_log_messages_but_the_timing) {
    EXPECT_EQ(shown(nas_record, {{"{}"},
                                 {{3, "x mapping not found"},
                                  {3, "tshark processing took: 412ms"},
                                  {5, "invoking tshark failed with error: 2"}},
                                 {}}),
              std::string(nas_heading) +
                  "{}\nlog (level 3): x mapping not found\n"
                  "log (level 5): invoking tshark failed with error: 2\n");
}

TEST(report, shows_a_record_without_a_format) {
    EXPECT_EQ(shown({}, {{}, {}, "no dissector name"}),
              "\nrecord 7  1970-01-01T00:00:00.000000Z  (no format)\nfailed: no dissector name\n");
}

TEST(report, spells_control_characters_of_a_format) {
    EXPECT_THAT(shown({.timestamp = 0, .format = "\x1b[31m", .payload = {}, .failure = {}}, {}),
                HasSubstr("  \\x1b[31m\n"));
}

TEST(report, starts_with_the_plugin_and_tshark) {
    std::ostringstream out;
    report(out).start("/p/plug.so", "1.2.3", "/usr/bin");
    EXPECT_EQ(out.str(), "plug-in /p/plug.so, version 1.2.3\ntshark in /usr/bin\n");
}

TEST(report, tells_when_it_can_not_be_written) {
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    EXPECT_THAT([&] { report(out).result(1, {}, {}); },
                ThrowsMessage<std::runtime_error>("can't write the report"));
}

class profile_report : public scratch_test {
  protected:
    static std::string shown(const profile_file& file) {
        std::ostringstream out;
        report(out).profile(file);
        return out.str();
    }
};

TEST_F(profile_report, shows_what_the_run_wrote) {
    const profile_file file("p.json");
    write_file("p.json", R"({"idrx_int": "2.56", "config_lte_psm_req_rptau": "01000111",
                             "psm": "False", "voltage": "3.7"})");
    EXPECT_EQ(shown(file),
              "\nprofile p.json\n"
              "    config_lte_psm_req_rptau   01000111\n"
              "    idrx_int                   2.56\n"
              "    and 2 members at their defaults\n");
}

TEST_F(profile_report, shows_nothing_of_an_older_file) {
    write_file("p.json", R"({"idrx_int": "1.28"})");
    EXPECT_EQ(shown(profile_file("p.json")),
              "\nprofile p.json: not written by this run: the records did not give both "
              "idrx_int and idrx_reps\n");
}

TEST_F(profile_report, tells_why_the_file_can_not_be_written) {
    EXPECT_EQ(shown(profile_file("missing/p.json")),
              "\nprofile missing/p.json: not written by this run: the path can't be written (No "
              "such file or directory)\n");
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
