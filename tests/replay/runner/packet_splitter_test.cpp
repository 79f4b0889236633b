#include "replay/runner/packet_splitter.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace KIVRA::TSHARK::REPLAY {
namespace {

using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;
using testing::Optional;
using testing::ThrowsMessage;

/// Gives the text in pieces of the given size.
packet_splitter splitter_of(const std::string& text, std::size_t piece = 65'536) {
    return packet_splitter([text, piece, given = std::size_t{0}](std::span<char> place) mutable {
        const auto count = std::min({piece, place.size(), text.size() - given});
        std::copy_n(text.begin() + static_cast<std::ptrdiff_t>(given), count, place.begin());
        given += count;
        return count;
    });
}

std::vector<split_packet> all_of(packet_splitter splitter) {
    std::vector<split_packet> packets;
    while (auto packet = splitter.next()) {
        packets.push_back(std::move(*packet));
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
        EXPECT_THAT(all_of(splitter_of(output, piece)),
                    ElementsAre(FieldsAre(1U, "[\n  " + first + "\n]\n"),
                                FieldsAre(17U, "[\n  " + second + "\n]\n")));
    }
}

TEST(packet_splitters, give_nothing_for_an_empty_output) {
    EXPECT_THAT(all_of(splitter_of("[\n\n\n]\n")), IsEmpty());
}

TEST(packet_splitters, do_not_stumble_over_brackets_and_quotation_marks_in_texts) {
    const auto packet = packet_of("2", R"(, "}]\"{[": "\\", "x": "]}")");
    EXPECT_THAT(all_of(splitter_of("[" + packet + "]")),
                ElementsAre(FieldsAre(2U, "[\n  " + packet + "\n]\n")));
}

TEST(packet_splitters, do_not_take_a_text_for_the_number) {
    const auto packet = R"({"a": "\"frame.number\": \"9\"", "frame.number": "3"})";
    EXPECT_THAT(splitter_of(std::string("[") + packet + "]").next(),
                Optional(FieldsAre(3U, std::string("[\n  ") + packet + "\n]\n")));
}

TEST(packet_splitters, complain_of_an_output_that_ends_early) {
    const auto complaint =
        ThrowsMessage<std::runtime_error>("output of tshark ended before it came to this record");
    for (const std::string output : {"", "no JSON\n", "[", "[\n  {\"frame.number\": \"1"}) {
        EXPECT_THAT([&] { splitter_of(output).next(); }, complaint) << output;
    }
    auto splitter = splitter_of("[\n  " + packet_of("1") + ",\n");
    EXPECT_TRUE(splitter.next());
    EXPECT_THAT([&] { splitter.next(); }, complaint);
    EXPECT_THAT([&] { splitter.next(); }, complaint);
}

TEST(packet_splitters, complain_of_packets_without_a_number) {
    for (const std::string packet :
         {"{}", R"({"frame.number": "x"})", R"({"frame.number": "0"})"}) {
        EXPECT_THAT(
            [&] { splitter_of("[" + packet + "]").next(); },
            ThrowsMessage<std::runtime_error>("output of tshark has a packet without a number"));
    }
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
