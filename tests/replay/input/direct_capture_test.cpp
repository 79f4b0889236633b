#include "replay/input/direct_capture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "tests/replay/capture_image.h"
#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using testing::AllOf;
using testing::Field;
using testing::HasSubstr;
using testing::Optional;
using testing::StartsWith;
using testing::ThrowsMessage;

auto malformed(const char* words) {
    return Optional(AllOf(Field(&record_failure::kind, failure_kind::malformed_packet),
                          Field(&record_failure::text, HasSubstr(words))));
}

std::string payload_of(const trace_record& packet) {
    return {packet.payload.begin(), packet.payload.end()};
}

direct_capture read_directly(const std::filesystem::path& file,
                             std::function<void()> before_waiting = {}) {
    return {"capture", std::make_unique<PLATFORM::input_stream>(file, std::move(before_waiting))};
}

class direct_captures : public scratch_test {
  protected:
    static direct_capture opened(const std::string& image) {
        write_file("capture", image);
        return read_directly("capture");
    }
};

struct format_case {
    const char* name;
    image_format format;
};

class capture_formats : public direct_captures, public testing::WithParamInterface<format_case> {};

TEST_P(capture_formats, are_read_record_by_record) {
    auto source =
        opened(capture_image(exported_pdu_link_type,
                             {{exported_pdu_image("nas-eps", "one"), 1'700'000'000'000'001},
                              {exported_pdu_image("lte_rrc.pcch", "second"), 999'999}},
                             GetParam().format));
    const auto first = source.next();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->format, "nas-eps");
    EXPECT_EQ(payload_of(*first), "one");
    EXPECT_EQ(first->timestamp, 1'700'000'000'000'001U);
    EXPECT_EQ(first->failure, std::nullopt);
    const auto second = source.next();
    ASSERT_TRUE(second);
    EXPECT_EQ(second->format, "lte_rrc.pcch");
    EXPECT_EQ(payload_of(*second), "second");
    EXPECT_EQ(second->timestamp, 999'999U);
    EXPECT_FALSE(source.next());
}

INSTANTIATE_TEST_SUITE_P(
    all, capture_formats,
    testing::Values(
        format_case{"pcap", {.pcapng = false, .big_endian = false, .nanoseconds = false}},
        format_case{"pcap_big_endian", {.pcapng = false, .big_endian = true, .nanoseconds = false}},
        format_case{"pcap_nanoseconds",
                    {.pcapng = false, .big_endian = false, .nanoseconds = true}},
        format_case{"pcap_big_endian_nanoseconds",
                    {.pcapng = false, .big_endian = true, .nanoseconds = true}},
        format_case{"pcapng", {.pcapng = true, .big_endian = false, .nanoseconds = false}},
        format_case{"pcapng_big_endian",
                    {.pcapng = true, .big_endian = true, .nanoseconds = false}},
        format_case{"pcapng_nanoseconds",
                    {.pcapng = true, .big_endian = false, .nanoseconds = true}},
        format_case{"pcapng_big_endian_nanoseconds",
                    {.pcapng = true, .big_endian = true, .nanoseconds = true}}),
    [](const auto& test) { return std::string(test.param.name); });

class ip_link_types : public direct_captures, public testing::WithParamInterface<std::uint32_t> {};

TEST_P(ip_link_types, give_ip_records_of_whole_packets) {
    for (const bool pcapng : {false, true}) {
        auto source =
            opened(capture_image(GetParam(), {{router_advertisement(), 5}}, {.pcapng = pcapng}));
        const auto packet = source.next();
        ASSERT_TRUE(packet);
        EXPECT_EQ(packet->format, "ip");
        EXPECT_EQ(payload_of(*packet), router_advertisement());
        EXPECT_EQ(packet->timestamp, 5U);
        EXPECT_EQ(packet->failure, std::nullopt);
    }
}

INSTANTIATE_TEST_SUITE_P(all, ip_link_types, testing::Values(101, 228, 229));

TEST_F(direct_captures, may_hold_no_record) {
    EXPECT_FALSE(opened(capture_image(exported_pdu_link_type, {})).next());
    EXPECT_FALSE(opened(capture_image(exported_pdu_link_type, {}, {.pcapng = false})).next());
}

TEST_F(direct_captures, go_on_after_a_packet_without_a_dissector_name) {
    auto source = opened(
        capture_image(exported_pdu_link_type,
                      {{end_of_tags() + "m", 3}, {exported_pdu_image("nas-eps", "after"), 4}}));
    const auto nameless = source.next();
    ASSERT_TRUE(nameless);
    EXPECT_THAT(nameless->failure, malformed("no dissector name"));
    EXPECT_EQ(nameless->format, "");
    EXPECT_EQ(nameless->timestamp, 3U);
    const auto after = source.next();
    ASSERT_TRUE(after);
    EXPECT_EQ(payload_of(*after), "after");
    EXPECT_EQ(after->failure, std::nullopt);
}

TEST_F(direct_captures, go_on_after_a_packet_with_broken_tags) {
    auto source =
        opened(capture_image(exported_pdu_link_type,
                             {{"\x7f\x7f\x7f\x7f"}, {exported_pdu_image("nas-eps", "after"), 4}}));
    const auto broken = source.next();
    ASSERT_TRUE(broken);
    EXPECT_THAT(broken->failure, malformed("its tags run past its end"));
    EXPECT_EQ(payload_of(source.next().value()), "after");
}

TEST_F(direct_captures, tell_of_a_packet_that_was_cut_short) {
    for (const bool pcapng : {false, true}) {
        auto source = opened(capture_image(
            exported_pdu_link_type, {{exported_pdu_image("nas-eps", "mess"), 0, 23U}, {"", 0, 40U}},
            {.pcapng = pcapng}));
        const auto known = source.next();
        ASSERT_TRUE(known);
        EXPECT_EQ(known->failure,
                  (record_failure{failure_kind::truncated_packet,
                                  "cut short by the snapshot length: 20 of 23 bytes captured"}));
        EXPECT_EQ(known->format, "nas-eps");
        const auto unknown = source.next();
        ASSERT_TRUE(unknown);
        EXPECT_EQ(unknown->failure,
                  (record_failure{failure_kind::truncated_packet,
                                  "cut short by the snapshot length: 0 of 40 bytes captured"}));
        EXPECT_FALSE(source.next());
    }
}

TEST_F(direct_captures, tell_of_an_ip_packet_that_was_cut_short) {
    auto source = opened(capture_image(raw_ip_link_type, {{router_advertisement(), 0, 1500U}}));
    EXPECT_EQ(source.next().value().failure,
              (record_failure{failure_kind::truncated_packet,
                              "cut short by the snapshot length: 104 of 1500 bytes captured"}));
}

TEST_F(direct_captures, can_not_be_read_from_a_file_of_another_kind) {
    EXPECT_THAT([] { opened("this is no capture, it is a text\n"); },
                ThrowsMessage<std::runtime_error>("can't read capture: unknown file format"));
}

TEST_F(direct_captures, can_not_be_read_from_an_empty_file) {
    EXPECT_THAT([] { opened(""); },
                ThrowsMessage<std::runtime_error>(StartsWith("can't read capture: truncated")));
}

TEST_F(direct_captures, can_not_be_read_without_an_interface) {
    const std::string section = capture_image(exported_pdu_link_type, {}).substr(0, 28);
    EXPECT_THAT([&] { opened(section); },
                ThrowsMessage<std::runtime_error>(StartsWith("can't read capture: ")));
}

TEST_F(direct_captures, of_other_link_types_are_refused) {
    for (const bool pcapng : {false, true}) {
        EXPECT_THAT([&] { opened(capture_image(1, {}, {.pcapng = pcapng})); },
                    ThrowsMessage<std::runtime_error>(
                        "can't read capture: no packets of link type 1 can be read directly"));
    }
}

TEST_F(direct_captures, count_their_packets) {
    auto source = opened(capture_image(exported_pdu_link_type,
                                       {{exported_pdu_image("nas-eps", "1")}, {end_of_tags()}}));
    EXPECT_EQ(source.content().packets, 0U);
    while (source.next()) {
    }
    EXPECT_EQ(source.content().packets, 2U);
}

TEST_F(direct_captures, that_break_give_their_records_up_to_there) {
    for (const bool pcapng : {false, true}) {
        const auto whole = capture_image(
            exported_pdu_link_type,
            {{exported_pdu_image("nas-eps", "first")}, {exported_pdu_image("nas-eps", "second")}},
            {.pcapng = pcapng});
        auto source = opened(whole.substr(0, whole.size() - 9));
        EXPECT_EQ(payload_of(source.next().value()), "first");
        EXPECT_THAT([&] { source.next(); },
                    ThrowsMessage<std::runtime_error>(
                        AllOf(StartsWith("can't read capture: "), HasSubstr("truncated"))));
    }
}

TEST_F(direct_captures, tell_how_far_they_have_been_read) {
    // More than is read ahead.
    const std::string message(50'000, 'm');
    const auto image = capture_image(
        exported_pdu_link_type,
        {{exported_pdu_image("nas-eps", message)}, {exported_pdu_image("ip", message)}});
    auto source = opened(image);
    EXPECT_EQ(source.size(), image.size());
    const auto head = source.position();
    source.next();
    const auto middle = source.position();
    source.next();
    EXPECT_LT(head, middle);
    EXPECT_LT(middle, image.size());
    EXPECT_EQ(source.position(), image.size());
}

TEST_F(direct_captures, tell_when_they_are_about_to_wait) {
    const auto image =
        capture_image(exported_pdu_link_type, {{exported_pdu_image("nas-eps", "1")}});
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    // Reads and writes, so that opening does not wait for the other end.
    const int writer = open("pipe", O_RDWR | O_CLOEXEC);
    ASSERT_GE(writer, 0);
    ASSERT_EQ(write(writer, image.data(), image.size()), static_cast<ssize_t>(image.size()));
    int waits = 0;
    auto source = read_directly("pipe", [&] {
        ++waits;
        throw std::logic_error("no more");
    });
    EXPECT_EQ(payload_of(source.next().value()), "1");
    EXPECT_EQ(waits, 0);
    EXPECT_THROW(source.next(), std::logic_error);
    EXPECT_EQ(waits, 1);
    close(writer);
}

TEST_F(direct_captures, that_are_files_never_wait) {
    write_file("capture", capture_image(exported_pdu_link_type, {}));
    auto source = read_directly("capture", [] { FAIL(); });
    EXPECT_FALSE(source.next());
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
