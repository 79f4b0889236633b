#include "replay/input/capture_stream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/replay/capture_image.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using testing::ThrowsMessage;

using paths = std::vector<std::filesystem::path>;

/// Captures that are read directly need none.
const std::filesystem::path no_tshark = "no-tshark";

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
    write_file("1", image_of({"nas-eps", "lte_rrc.pcch"}));
    write_file("2", image_of({"nas-eps_plain"}));
    write_file("3", image_of({"ip"}));
    capture_stream stream(paths{"1", "2", "3"}, no_tshark);
    EXPECT_THAT(formats_of(stream), ElementsAre("nas-eps", "lte_rrc.pcch", "nas-eps_plain", "ip"));
    EXPECT_EQ(stream.position(), stream.size());
}

TEST_F(capture_streams, go_on_behind_a_capture_that_breaks) {
    const auto broken = image_of({"nas-eps", "ip"});
    write_file("1", broken.substr(0, broken.size() - 4));
    write_file("2", image_of({"lte_rrc.pcch"}));
    capture_stream stream(paths{"1", "2"}, no_tshark);
    EXPECT_EQ(stream.next()->format, "nas-eps");
    EXPECT_THAT([&] { stream.next(); }, ThrowsMessage<capture_error>(StartsWith("can't read 1: ")));
    EXPECT_EQ(stream.next()->format, "lte_rrc.pcch");
    EXPECT_FALSE(stream.next());
    EXPECT_EQ(stream.position(), stream.size());
}

TEST_F(capture_streams, tell_of_a_capture_without_a_record_and_go_on_behind_it) {
    write_file("1", image_of({}));
    write_file("2", image_of({"nas-eps"}));
    capture_stream stream(paths{"1", "2"}, no_tshark);
    EXPECT_THAT([&] { stream.next(); },
                ThrowsMessage<no_records>("1: 0 packets; no LTE RRC or NAS"));
    EXPECT_EQ(stream.next()->format, "nas-eps");
    EXPECT_FALSE(stream.next());
}

TEST_F(capture_streams, tell_of_a_capture_without_a_record_behind_one_that_has_some) {
    write_file("1", image_of({"nas-eps"}));
    write_file("2", image_of({}));
    capture_stream stream(paths{"1", "2"}, no_tshark);
    EXPECT_EQ(stream.next()->format, "nas-eps");
    EXPECT_THAT([&] { stream.next(); },
                ThrowsMessage<no_records>("2: 0 packets; no LTE RRC or NAS"));
    EXPECT_FALSE(stream.next());
}

TEST_F(capture_streams, have_the_size_of_all_captures) {
    write_file("1", image_of({"nas-eps"}));
    write_file("2", image_of({"ip", "nas-eps"}));
    EXPECT_EQ(capture_stream(paths{"1", "2"}, no_tshark).size(),
              image_of({"nas-eps"}).size() + image_of({"ip", "nas-eps"}).size());
}

TEST_F(capture_streams, have_no_size_where_a_capture_has_none) {
    write_file("1", image_of({"nas-eps"}));
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    const int writer = open("pipe", O_RDWR | O_CLOEXEC);
    const auto image = image_of({"ip"});
    ASSERT_EQ(write(writer, image.data(), image.size()), static_cast<ssize_t>(image.size()));
    EXPECT_EQ(capture_stream(paths{"1", "pipe"}, no_tshark).size(), 0U);
    close(writer);
}

TEST_F(capture_streams, tell_of_a_capture_that_can_not_be_opened) {
    write_file("1", image_of({"nas-eps"}));
    EXPECT_THAT(
        [] {
            capture_stream(paths{"1", "missing"}, no_tshark);
        },
        ThrowsMessage<capture_error>("can't read missing: No such file or directory"));
    EXPECT_THAT(
        [] {
            capture_stream(paths{"1", "."}, no_tshark);
        },
        ThrowsMessage<capture_error>(HasSubstr("Is a directory")));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
