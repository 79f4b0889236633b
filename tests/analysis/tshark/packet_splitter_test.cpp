#include "analysis/tshark/packet_splitter.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::ANALYSIS {
namespace {

using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;

/// Gives the text to a splitter in pieces of the given size.
std::vector<split_packet> packets_of(std::string_view text, std::size_t piece = 65'536) {
    packet_splitter splitter;
    std::vector<split_packet> packets;
    for (; !text.empty(); text.remove_prefix(std::min(piece, text.size()))) {
        splitter.add(text.substr(0, piece));
        while (auto packet = splitter.next()) {
            packets.push_back(std::move(*packet));
        }
    }
    return packets;
}

std::string packet_of(const std::string& number, const std::string& more = "") {
    return "{\n    \"frame.number\": \"" + number + "\"" + more + "\n  }";
}

TEST(packet_splitters, give_each_packet_as_tshark_prints_it_alone) {
    const auto first = packet_of("1");
    const auto second = packet_of("17", R"(, "a": [{"b": "c"}])");
    const auto output = "[\n  " + first + ",\n  " + second + "\n]\n";
    for (const std::size_t piece : {1U, 2U, 3U, 65'536U}) {
        EXPECT_THAT(packets_of(output, piece),
                    ElementsAre(FieldsAre(1U, "[\n  " + first + "\n]\n"),
                                FieldsAre(17U, "[\n  " + second + "\n]\n")));
    }
}

TEST(packet_splitters, give_a_packet_as_soon_as_it_is_whole) {
    EXPECT_THAT(packets_of("[\n  " + packet_of("1")), ElementsAre(FieldsAre(1U, testing::_)));
    const auto whole = "[\n  " + packet_of("1");
    EXPECT_THAT(packets_of(whole.substr(0, whole.size() - 1)), IsEmpty());
}

TEST(packet_splitters, give_nothing_for_an_empty_output) {
    EXPECT_THAT(packets_of(""), IsEmpty());
    EXPECT_THAT(packets_of("[\n\n\n]\n"), IsEmpty());
}

TEST(packet_splitters, are_not_misled_by_brackets_and_quotation_marks_in_texts) {
    const auto packet = packet_of("2", R"(, "}]\"{[": "\\", "x": "]}")");
    EXPECT_THAT(packets_of("[" + packet + "]"),
                ElementsAre(FieldsAre(2U, "[\n  " + packet + "\n]\n")));
}

TEST(packet_splitters, do_not_take_a_text_for_the_number) {
    const auto packet = R"({"a": "\"frame.number\": \"9\"", "frame.number": "3"})";
    EXPECT_THAT(packets_of(std::string("[") + packet + "]"),
                ElementsAre(FieldsAre(3U, std::string("[\n  ") + packet + "\n]\n")));
}

TEST(packet_splitters, refuse_what_is_no_array_of_packets) {
    const std::string first = "[" + packet_of("1");
    for (const std::string& output :
         {std::string("tshark: failed"), std::string("{}"), std::string("[1]"), std::string("[[]]"),
          std::string("[null"), std::string("[\"a\"]"), first + "x", first + "]x", first + "]{",
          first + "][", first + "],", "," + first, std::string(1, '\0')}) {
        for (const std::size_t piece : {1U, 65'536U}) {
            EXPECT_THROW(packets_of(output, piece), not_a_packet) << output;
        }
    }
}

TEST(packet_splitters, refuse_packets_without_a_number) {
    for (const std::string packet :
         {"{}", R"({"frame.number": "x"})", R"({"frame.number": "0"})", R"({"frame.number": 1})"}) {
        EXPECT_THROW(packets_of("[" + packet + "]"), not_a_packet);
    }
}

TEST(packet_splitters, give_nothing_more_behind_what_they_refuse) {
    packet_splitter splitter;
    splitter.add("x" + packet_of("1"));
    EXPECT_THROW(splitter.next(), not_a_packet);
    EXPECT_THROW(splitter.next(), not_a_packet);
}

/// What is behind the packets, and how many there are, of a text that comes in pieces.
std::pair<std::string, int> text_behind(std::string_view text, std::size_t piece,
                                        behind_packets allowed = behind_packets::text) {
    packet_splitter splitter(allowed);
    std::pair<std::string, int> found;
    for (; !text.empty(); text.remove_prefix(std::min(piece, text.size()))) {
        splitter.add(text.substr(0, piece));
        while (splitter.next()) {
            ++found.second;
        }
        found.first += splitter.text_behind();
    }
    return found;
}

TEST(packet_splitters, give_the_text_behind_the_packets_where_it_is_allowed) {
    const auto output = "[\n  " + packet_of("1") + ",\n  " + packet_of("2") + "\n]\n";
    const std::string statistics = "\n===\nFilter: {[\"]}\n===\n";
    for (const std::size_t piece : {1U, 2U, 7U, 65'536U}) {
        EXPECT_THAT(text_behind(output + statistics, piece), testing::Pair("\n" + statistics, 2));
    }
}

TEST(packet_splitters, give_the_text_behind_no_packets) {
    EXPECT_THAT(text_behind("[\n\n\n]\ntext", 65'536), testing::Pair("\ntext", 0));
}

TEST(packet_splitters, have_no_text_before_and_between_packets) {
    for (const std::string output : {"text", "text[]", "[text]"}) {
        EXPECT_THROW(text_behind(output, 65'536), not_a_packet) << output;
    }
    EXPECT_THROW(text_behind("[" + packet_of("1") + "text]", 65'536), not_a_packet);
    EXPECT_THAT(text_behind("[" + packet_of("1"), 65'536), testing::Pair("", 1));
}

TEST(packet_splitters, have_no_text_behind_the_packets_where_none_is_allowed) {
    EXPECT_THAT(text_behind("[]\n", 65'536, behind_packets::nothing), testing::Pair("", 0));
}

}  // namespace
}  // namespace KIVRA::TSHARK::ANALYSIS
