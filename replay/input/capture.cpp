#include "replay/input/capture.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace KIVRA::TSHARK::REPLAY {

namespace {

[[noreturn]] void fail(const std::string& name, const std::string& reason) {
    throw std::runtime_error("can't read " + name + ": " + reason);
}

[[noreturn]] void fail_for_system(const std::string& name) {
    fail(name, std::generic_category().message(errno));
}

bool is_standard_input(const std::filesystem::path& file) {
    return file == "-";
}

std::string name_of(const std::filesystem::path& file) {
    return is_standard_input(file) ? "standard input" : file.string();
}

std::FILE* open(const std::filesystem::path& file) {
    if (is_standard_input(file)) {
        return fdopen(dup(STDIN_FILENO), "rb");
    }
    return std::fopen(file.c_str(), "rb");
}

pcap_t* read_head(const std::string& name, std::FILE* stream) {
    if (stream == nullptr) {
        fail_for_system(name);
    }
    std::array<char, PCAP_ERRBUF_SIZE> reason{};
    pcap_t* handle = pcap_fopen_offline(stream, reason.data());
    if (handle == nullptr) {
        static_cast<void>(std::fclose(stream));
        fail(name, reason.data());
    }
    return handle;
}

std::string link_type_name(int link_type) {
    const char* name = pcap_datalink_val_to_name(link_type);
    return name == nullptr ? std::to_string(link_type) : name;
}

}  // namespace

capture::capture(const std::filesystem::path& file) : capture(name_of(file), open(file)) {}

capture::capture(const std::filesystem::path& file, const working_file& copy)
    : capture(name_of(file), open(copy.path())) {}

capture::capture(std::string name, std::FILE* stream)
    : name_(std::move(name)), handle_(read_head(name_, stream)) {
    const int link_type = pcap_datalink(handle_.get());
    read_packet_ = packet_reader_of(link_type);
    if (read_packet_ == nullptr) {
        fail(name_, "unsupported link type " + link_type_name(link_type) +
                        " (exported PDUs and raw IP packets are supported)");
    }
}

std::optional<trace_record> capture::next() {
    pcap_pkthdr* header = nullptr;
    const u_char* data = nullptr;
    const int result = pcap_next_ex(handle_.get(), &header, &data);
    if (result == PCAP_ERROR_BREAK) {
        return std::nullopt;
    }
    if (result != 1) {
        fail(name_, pcap_geterr(handle_.get()));
    }

    trace_record record;
    record.timestamp = static_cast<std::uint64_t>(header->ts.tv_sec) * 1'000'000 +
                       static_cast<std::uint64_t>(header->ts.tv_usec);
    record.payload = {data, header->caplen};
    try {
        auto message = read_packet_(record.payload);
        record.format = std::move(message.dissector);
        record.payload = message.bytes;
    } catch (const std::runtime_error& error) {
        record.failure = {failure_kind::malformed_packet, error.what()};
    }
    if (header->caplen < header->len) {
        record.failure = {failure_kind::truncated_packet,
                          "cut short by the snapshot length: " + std::to_string(header->caplen) +
                              " of " + std::to_string(header->len) + " bytes captured"};
    }
    return record;
}

std::uint64_t capture::size() const {
    struct stat status {};
    const bool known = fstat(fileno(pcap_file(handle_.get())), &status) == 0;
    return known && S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

std::uint64_t capture::position() const {
    const auto position = ftello(pcap_file(handle_.get()));
    return position < 0 ? 0 : static_cast<std::uint64_t>(position);
}

working_file copy_of_capture(const std::filesystem::path& file) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(open(file), std::fclose);
    if (stream == nullptr) {
        fail_for_system(name_of(file));
    }
    working_file copy;
    std::array<char, 65'536> chunk{};
    while (const auto count = std::fread(chunk.data(), 1, chunk.size(), stream.get())) {
        copy.write({chunk.data(), count});
    }
    if (std::ferror(stream.get()) != 0) {
        fail_for_system(name_of(file));
    }
    copy.flush();
    return copy;
}

}  // namespace KIVRA::TSHARK::REPLAY
