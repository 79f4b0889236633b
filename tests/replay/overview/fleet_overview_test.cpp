#include "replay/overview/fleet_overview.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "replay/overview/fleet_page.h"
#include "replay/page/run_page.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::ThrowsMessage;

/// A row with these cells in front.
fleet_row row_of(fleet_row cells) {
    cells.resize(fleet_columns().size());
    return cells;
}

class overviews : public TESTING::scratch_test {
  protected:
    static std::string page_of(const std::vector<fleet_row>& rows,
                               const overview_heading& heading = {}) {
        fleet_overview overview("index.html", heading);
        for (const auto& row : rows) {
            overview.add(row);
        }
        overview.finish(rows.size());
        return TESTING::read_file("index.html");
    }

    /// What a block of data holds, as it stands.
    static std::string block(const std::string& page, const std::string& name) {
        const std::string begin = R"(<script type="application/json" class=")" + name + "\">";
        const auto place = page.find(begin) + begin.size();
        return page.substr(place, page.find("</script>", place) - place);
    }

    /// The first cells of each row.
    static json cells_of(const std::vector<fleet_row>& rows, std::size_t count) {
        json first = json::array();
        for (const auto& row : json::parse(block(page_of(rows), "rows"))) {
            EXPECT_EQ(row.size(), fleet_columns().size());
            first.emplace_back(json::array());
            for (std::size_t place = 0; place < count; ++place) {
                first.back().push_back(row[place]);
            }
        }
        return first;
    }
};

TEST_F(overviews, are_whole_pages) {
    EXPECT_THAT(page_of({row_of({"a"})}), StartsWith("<!DOCTYPE html>\n"));
    EXPECT_TRUE(is_whole_page("index.html", fleet_page()));
}

TEST_F(overviews, are_other_pages_than_those_of_runs) {
    page_of({});
    EXPECT_FALSE(is_whole_page("index.html", run_page()));
}

TEST_F(overviews, have_a_policy_that_names_style_and_script_alone) {
    const auto page = page_of({});
    EXPECT_THAT(page, testing::ContainsRegex("content=\"default-src 'none'; "
                                             "script-src 'sha256-[A-Za-z0-9+/]*='; "
                                             "style-src 'sha256-[A-Za-z0-9+/]*='; "));
    EXPECT_THAT(page, Not(HasSubstr(" src=\"")));
    EXPECT_THAT(page, Not(HasSubstr("unsafe-inline")));
}

TEST_F(overviews, hold_who_made_them_and_the_names_of_the_columns) {
    const auto page = page_of({}, {.version = "1.2", .tshark = "TShark"});
    EXPECT_EQ(json::parse(block(page, "heading")),
              json({{"version", "1.2"}, {"tshark", "TShark"}, {"columns", fleet_columns()}}));
}

TEST_F(overviews, hold_a_row_a_line) {
    EXPECT_EQ(block(page_of({}), "rows"), "[\n]");
    const auto rows = block(page_of({row_of({"a"}), row_of({"b"}), row_of({"c"})}), "rows");
    EXPECT_THAT(rows, StartsWith("[\n[\"a\",0,"));
    EXPECT_THAT(rows, HasSubstr("],\n[\"b\",0,"));
    EXPECT_EQ(json::parse(rows).size(), 3);
}

TEST_F(overviews, hold_how_many_captures_there_were_to_be) {
    fleet_overview overview("index.html", {});
    overview.add(row_of({"a"}));
    overview.finish(3);
    EXPECT_EQ(block(TESTING::read_file("index.html"), "planned"), "3");
}

TEST_F(overviews, leave_out_what_the_row_before_has) {
    EXPECT_EQ(cells_of({row_of({"a", "ok", ""}), row_of({"b", "ok", "e"}), row_of({"b", "", "e"}),
                        row_of({"b", "ok", ""})},
                       3),
              json::parse(R"([["a", "ok", 0], ["b", 0, "e"], [0, "", 0], [0, "ok", ""]])"));
}

TEST_F(overviews, hold_texts_that_are_no_markup) {
    const std::string text = "</script><!--&\xff\xe2\x80\xa8";
    const auto page = page_of({row_of({text})});
    EXPECT_THAT(block(page, "rows"), StartsWith("[\n[\"\\u003c/script\\u003e\\u003c!--\\u0026"));
    EXPECT_EQ(json::parse(block(page, "rows"))[0][0], "</script><!--&\xef\xbf\xbd\xe2\x80\xa8");
}

TEST_F(overviews, refuse_a_file_that_cannot_be_written) {
    EXPECT_THAT([] { fleet_overview("missing/index.html", {}); },
                ThrowsMessage<std::runtime_error>(
                    "can't write missing/index.html: No such file or directory"));
}

TEST_F(overviews, notice_a_write_that_fails) {
    const auto fill = [] {
        fleet_overview overview("/dev/full", {});
        overview.finish(0);
    };
    EXPECT_THAT(
        fill, ThrowsMessage<std::runtime_error>("can't write /dev/full: No space left on device"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
