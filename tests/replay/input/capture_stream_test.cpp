#include "replay/input/capture_stream.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/replay/capture_image.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using testing::ElementsAre;
using testing::StartsWith;
using testing::ThrowsMessage;

using paths = std::vector<std::filesystem::path>;

std::string image_of(const std::vector<std::string>& formats) {
    std::vector<image_packet> packets;
    packets.reserve(formats.size());
    for (const auto& format : formats) {
        packets.push_back({exported_pdu_image(format, "message"), 0});
    }
    return capture_image(exported_pdu_link_type, packets);
}

std::vector<std::string> formats_of(capture_stream& stream) {
    std::vector<std::string> formats;
    while (const auto packet = stream.next()) {
        formats.push_back(packet->format);
    }
    return formats;
}

using capture_streams = scratch_test;

TEST_F(capture_streams, give_the_records_in_the_order_of_the_captures) {
    write_file("1", image_of({"c", "a"}));
    write_file("2", image_of({}));
    write_file("3", image_of({"b"}));
    capture_stream stream(paths{"1", "2", "3"});
    EXPECT_THAT(formats_of(stream), ElementsAre("c", "a", "b"));
    EXPECT_EQ(stream.position(), stream.size());
}

TEST_F(capture_streams, go_on_behind_a_capture_that_breaks) {
    const auto broken = image_of({"a", "b"});
    write_file("1", broken.substr(0, broken.size() - 4));
    write_file("2", image_of({"c"}));
    capture_stream stream(paths{"1", "2"});
    EXPECT_EQ(stream.next()->format, "a");
    EXPECT_THAT([&] { stream.next(); },
                ThrowsMessage<std::runtime_error>(StartsWith("can't read 1: ")));
    EXPECT_EQ(stream.next()->format, "c");
    EXPECT_FALSE(stream.next());
    EXPECT_EQ(stream.position(), stream.size());
}

TEST_F(capture_streams, have_the_size_of_all_captures) {
    write_file("1", image_of({"a"}));
    write_file("2", image_of({"b", "c"}));
    EXPECT_EQ(capture_stream(paths{"1", "2"}).size(),
              image_of({"a"}).size() + image_of({"b", "c"}).size());
}

TEST_F(capture_streams, read_copies_as_the_captures_were) {
    write_file("1", image_of({"a"}));
    std::vector<working_file> copies;
    copies.push_back(copy_of_capture("1"));
    write_file("1", image_of({"b", "c"}));
    for (int time = 0; time < 2; ++time) {
        capture_stream stream(paths{"1"}, copies);
        EXPECT_THAT(formats_of(stream), ElementsAre("a"));
    }
    EXPECT_THAT(names_in("."), ElementsAre("1"));
}

TEST_F(capture_streams, name_the_capture_when_its_copy_is_none) {
    write_file("1", "no capture");
    std::vector<working_file> copies;
    copies.push_back(copy_of_capture("1"));
    EXPECT_THAT([&] { capture_stream(paths{"1"}, copies); },
                ThrowsMessage<std::runtime_error>("can't read 1: unknown file format"));
}

TEST_F(capture_streams, can_not_be_copied_from_what_can_not_be_read) {
    EXPECT_THAT([] { copy_of_capture("missing"); },
                ThrowsMessage<std::runtime_error>("can't read missing: No such file or directory"));
    EXPECT_THAT([] { copy_of_capture("."); },
                ThrowsMessage<std::runtime_error>("can't read .: Is a directory"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
