#include "replay/fleet/csv.h"

#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::ElementsAre;

TEST(csv_line, has_cells_as_they_are) {
    EXPECT_EQ(csv_line({"a b", "", "=1+1", "-5"}), "a b,,=1+1,-5\r\n");
}

TEST(csv_line, puts_cells_in_quotation_marks_where_rfc_4180_asks_for_it) {
    EXPECT_EQ(csv_line({"a,b", "say \"no\"", "two\nlines", "\r"}),
              "\"a,b\",\"say \"\"no\"\"\",\"two\nlines\",\"\r\"\r\n");
}

struct read_part {
    csv_part part = csv_part::end;
    std::vector<std::string> cells;
    std::uint64_t position = 0;
};

read_part first_of(const std::string& text) {
    std::istringstream stream(text);
    csv_reader reader(stream);
    read_part read;
    read.part = reader.next(read.cells);
    read.position = reader.position();
    return read;
}

TEST(csv_reader, gives_a_line_s_cells) {
    const auto read = first_of("a b,,-5\r\nnext\r\n");
    EXPECT_EQ(read.part, csv_part::line);
    EXPECT_THAT(read.cells, ElementsAre("a b", "", "-5"));
    EXPECT_EQ(read.position, 9U);
}

TEST(csv_reader, reads_what_csv_line_writes) {
    const std::vector<std::string> cells{"a,b", "\"", "two\r\nlines", "", "\"\"x", "\r", "\n"};
    const auto read = first_of(csv_line({cells.begin(), cells.end()}));
    EXPECT_EQ(read.part, csv_part::line);
    EXPECT_EQ(read.cells, cells);
}

TEST(csv_reader, goes_on_line_by_line_to_the_end) {
    std::istringstream stream("a\r\n\"b\r\n\"\r\n");
    csv_reader reader(stream);
    std::vector<std::string> cells;
    EXPECT_EQ(reader.next(cells), csv_part::line);
    EXPECT_EQ(reader.next(cells), csv_part::line);
    EXPECT_THAT(cells, ElementsAre("b\r\n"));
    EXPECT_EQ(reader.position(), 10U);
    EXPECT_EQ(reader.next(cells), csv_part::end);
}

TEST(csv_reader, tells_of_a_file_that_ends_within_a_line) {
    for (const char* text : {"a", "a,", "a\r", "\"a\r\n", "\"a\""}) {
        const auto read = first_of(text);
        EXPECT_EQ(read.part, csv_part::torn_line) << text;
        EXPECT_EQ(read.position, 0U) << text;
    }
}

TEST(csv_reader, refuses_what_rfc_4180_does_not_allow) {
    for (const char* text : {"a\n", "a\rb\r\n", "a\"b\"\r\n", "\"a\"b\r\n", "\"a\"\n"}) {
        EXPECT_EQ(first_of(text).part, csv_part::malformed) << text;
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
