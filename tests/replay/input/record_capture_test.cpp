#include "replay/input/record_capture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/replay/capture_image.h"
#include "tests/support/files.h"
#include "tests/support/process.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace std::string_literals;
using namespace TESTING;

const image_packet nas{exported_pdu_image("nas-eps", "m")};
const image_packet rrc{exported_pdu_image("lte_rrc.pcch", "m")};
const image_packet other_spelling{exported_pdu_image("nas-eps_plain", "m")};
const image_packet foreign{exported_pdu_image("mac-lte-framed", "m")};
const image_packet nameless{end_of_tags() + "m"};
const image_packet by_port{pdu_tag(14, "udp.port") + end_of_tags() + "m"};

std::string exported(const std::vector<image_packet>& packets) {
    return capture_image(exported_pdu_link_type, packets);
}

std::string ipv4(char protocol) {
    std::string packet(20, '\0');
    packet[0] = 0x45;
    packet[9] = protocol;
    return packet;
}

constexpr char tcp = 6;
constexpr char sctp = '\x84';

capture_source source_of(const char* file, std::function<void()> before_waiting = {}) {
    capture_source source{.name = file};
    source.stream = std::make_unique<PLATFORM::input_stream>(file, std::move(before_waiting));
    return source;
}

class record_captures : public scratch_test {
  protected:
    static bool file_holds_records(const std::string& image) {
        write_file("capture", image);
        auto source = source_of("capture");
        return open_records(source) != nullptr;
    }

    /// By what tshark prints of it.
    static bool compressed_file_holds_records(const std::string& image) {
        write_file("capture", image);
        EXPECT_EQ(run_process({"/bin/gzip", "--force", "capture"}).status, 0);
        auto source = source_of("capture.gz");
        source.file = std::filesystem::absolute("capture.gz");
        source.tshark = "/usr/bin/tshark";
        return open_records(source) != nullptr;
    }

    static bool pipe_holds_records(const std::string& image) {
        EXPECT_EQ(mkfifo("pipe", 0600), 0);
        const int writer = open("pipe", O_RDWR | O_CLOEXEC);
        EXPECT_GE(writer, 0);
        EXPECT_EQ(write(writer, image.data(), image.size()), static_cast<ssize_t>(image.size()));
        auto source = source_of("pipe");
        close(writer);
        const bool result = open_records(source) != nullptr;
        std::filesystem::remove("pipe");
        return result;
    }
};

TEST_F(record_captures, find_records_in_exported_pdus_of_lte) {
    EXPECT_TRUE(file_holds_records(exported({nas, rrc})));
    EXPECT_TRUE(file_holds_records(exported({other_spelling})));
}

TEST_F(record_captures, find_records_where_lte_is_among_foreign_dissectors) {
    EXPECT_TRUE(file_holds_records(exported({foreign, foreign, nas})));
    EXPECT_TRUE(file_holds_records(exported({foreign, other_spelling})));
}

TEST_F(record_captures, find_none_where_all_dissectors_are_foreign) {
    EXPECT_FALSE(file_holds_records(exported({foreign})));
    EXPECT_FALSE(file_holds_records(exported({foreign, nameless})));
}

TEST_F(record_captures, find_none_where_a_packet_names_a_table) {
    EXPECT_FALSE(file_holds_records(exported({by_port})));
    EXPECT_FALSE(file_holds_records(exported({nas, by_port})));
    EXPECT_FALSE(file_holds_records(exported({by_port, nas})));
}

TEST_F(record_captures, leave_packets_that_name_nothing_to_who_reads_them) {
    EXPECT_TRUE(file_holds_records(exported({nameless})));
    EXPECT_TRUE(file_holds_records(exported({})));
}

TEST_F(record_captures, find_records_in_raw_ip) {
    for (const auto link_type : {101U, 228U, 229U}) {
        for (const bool pcapng : {false, true}) {
            EXPECT_TRUE(file_holds_records(capture_image(
                link_type, {{router_advertisement()}, {ipv4(tcp)}}, {.pcapng = pcapng})));
        }
    }
}

TEST_F(record_captures, find_none_in_raw_ip_with_signalling) {
    EXPECT_FALSE(file_holds_records(
        capture_image(raw_ip_link_type, {{router_advertisement()}, {ipv4(tcp)}, {ipv4(sctp)}})));
    EXPECT_FALSE(file_holds_records(capture_image(raw_ip_link_type, {{ipv4(sctp)}, {ipv4(tcp)}})));
}

TEST_F(record_captures, find_records_in_compressed_exported_pdus_of_lte) {
    EXPECT_TRUE(compressed_file_holds_records(exported({nas, rrc})));
    EXPECT_TRUE(compressed_file_holds_records(exported({foreign, other_spelling})));
}

TEST_F(record_captures, find_none_in_compressed_captures_of_other_packets) {
    EXPECT_FALSE(compressed_file_holds_records(exported({foreign})));
    EXPECT_FALSE(compressed_file_holds_records(exported({nas, by_port})));
    EXPECT_FALSE(compressed_file_holds_records(
        capture_image(raw_ip_link_type, {{ipv4(sctp)}, {ipv4(tcp)}})));
    EXPECT_FALSE(compressed_file_holds_records(capture_image(1, {nas})));
}

TEST_F(record_captures, find_none_in_other_link_types) {
    for (const auto link_type : {1U, 113U, 149U}) {
        for (const bool pcapng : {false, true}) {
            EXPECT_FALSE(file_holds_records(
                capture_image(link_type, {nas, {router_advertisement()}}, {.pcapng = pcapng})));
        }
    }
}

/// A second interface of Ethernet, and a packet on it.
std::string with_another_interface(const std::string& pcapng) {
    return pcapng + "\1\0\0\0\x14\0\0\0\1\0\0\0\0\0\0\0\x14\0\0\0"s +
           "\6\0\0\0\x24\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\4\0\0\0\4\0\0\0abcd\x24\0\0\0"s;
}

TEST_F(record_captures, find_none_where_link_types_are_mixed) {
    EXPECT_FALSE(file_holds_records(with_another_interface(exported({nas}))));
}

TEST_F(record_captures, leave_captures_that_break_off_to_who_reads_them) {
    const auto whole = exported({nas, nas});
    EXPECT_TRUE(file_holds_records(whole.substr(0, whole.size() - 5)));
}

TEST_F(record_captures, find_none_in_what_is_no_capture) {
    EXPECT_FALSE(file_holds_records("this is no capture, it is a text\n"));
    EXPECT_FALSE(file_holds_records(""));
}

TEST_F(record_captures, trust_the_first_packet_of_a_pipe) {
    EXPECT_TRUE(pipe_holds_records(exported({nas, by_port})));
    EXPECT_FALSE(pipe_holds_records(exported({foreign, nas})));
    EXPECT_FALSE(pipe_holds_records(exported({by_port, nas})));
    EXPECT_TRUE(pipe_holds_records(exported({nameless, by_port})));
}

TEST_F(record_captures, read_no_more_than_the_first_packet_of_a_pipe) {
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    const int writer = open("pipe", O_RDWR | O_CLOEXEC);
    const auto image = exported({nas});
    ASSERT_EQ(write(writer, image.data(), image.size()), static_cast<ssize_t>(image.size()));
    auto source = source_of("pipe", [] { throw std::logic_error("waits"); });
    EXPECT_NE(open_records(source), nullptr);
    close(writer);
}

TEST_F(record_captures, find_none_in_raw_ip_from_a_pipe) {
    EXPECT_FALSE(pipe_holds_records(capture_image(raw_ip_link_type, {{router_advertisement()}})));
}

TEST_F(record_captures, find_none_in_a_pipe_that_is_no_capture) {
    EXPECT_FALSE(pipe_holds_records("this is no capture, it is a text\n"));
    EXPECT_FALSE(pipe_holds_records(capture_image(1, {nas})));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
