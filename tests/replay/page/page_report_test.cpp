#include "replay/page/page_report.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "replay/page/run_page.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::ThrowsMessage;

const trace_record nas_record{
    .timestamp = 1'764'000'000'000'000, .format = "nas-eps", .payload = {}, .failure = {}};

class reports_as_pages : public TESTING::scratch_test {
  protected:
    /// The page of so many records, between a beginning and an end.
    std::string page_of(int records, const page_heading& heading = {}) {
        page_file file("page.html", run_page());
        page_report report(file, heading, profile_);
        report.begin("runner");
        for (int i = 1; i <= records; ++i) {
            report.add(static_cast<std::uint64_t>(i), nas_record,
                       {.message = {.name = "Attach </script>"}});
        }
        report.end({});
        file.finish();
        return TESTING::read_file("page.html");
    }

    /// What a block of data holds.
    static json block(const std::string& page, const std::string& name) {
        const std::string begin = "<script type=\"application/json\" class=\"" + name + "\">";
        const auto place = page.find(begin) + begin.size();
        return json::parse(page.substr(place, page.find("</script>", place) - place));
    }

    const profile_file profile_{"p.json"};
};

TEST_F(reports_as_pages, are_whole) {
    EXPECT_THAT(page_of(1), AllOf(StartsWith("<!DOCTYPE html>\n"), EndsWith("</html>\n")));
}

TEST_F(reports_as_pages, have_a_policy_that_names_style_and_script_alone) {
    const auto page = page_of(0);
    EXPECT_THAT(page, testing::ContainsRegex("content=\"default-src 'none'; "
                                             "script-src 'sha256-[A-Za-z0-9+/]*='; "
                                             "style-src 'sha256-[A-Za-z0-9+/]*='; "));
    EXPECT_THAT(page, Not(HasSubstr(" src=\"")));
    EXPECT_THAT(page, Not(HasSubstr("unsafe-inline")));
}

TEST_F(reports_as_pages, hold_who_made_them_of_what) {
    EXPECT_EQ(block(page_of(0, {.version = "1.2", .tshark = "TShark", .captures = {"<a>", "b"}}),
                    "heading"),
              json({{"version", "1.2"},
                    {"tshark", "TShark"},
                    {"runner", "runner"},
                    {"captures", {"<a>", "b"}}}));
}

TEST_F(reports_as_pages, hold_all_records_and_their_summary) {
    for (const int count : {0, 1, 3}) {
        const auto page = page_of(count);
        EXPECT_EQ(block(page, "records").size(), count);
        EXPECT_EQ(block(page, "summary")["records"]["records"], count);
    }
}

TEST_F(reports_as_pages, tell_of_a_connection_that_goes_on) {
    page_file file("page.html", run_page());
    page_report report(file, {}, profile_);
    report.begin("runner");
    report.add(1, nas_record,
               {.message = {.name = "request",
                            .event = message_event::connection_request,
                            .connection_cause = "mo-Data"}});
    report.end({});
    file.finish();
    EXPECT_EQ(block(TESTING::read_file("page.html"), "summary")["open_connection"],
              json({{"first_record", 1}, {"cause", "mo-Data"}}));
}

TEST_F(reports_as_pages, are_the_same_for_the_same_records) {
    const auto page = page_of(2);
    EXPECT_EQ(page_of(2), page);
}

TEST_F(reports_as_pages, refuse_a_file_that_cannot_be_written) {
    EXPECT_THAT([] { page_file("missing/page.html", run_page()); },
                ThrowsMessage<std::runtime_error>(
                    "can't write missing/page.html: No such file or directory"));
}

TEST_F(reports_as_pages, notice_a_write_that_fails) {
    const auto fill = [this] {
        page_file file("/dev/full", run_page());
        page_report report(file, {}, profile_);
        report.begin("runner");
        report.end({});
        file.finish();
    };
    EXPECT_THAT(
        fill, ThrowsMessage<std::runtime_error>("can't write /dev/full: No space left on device"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
