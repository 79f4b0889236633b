#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <regex>
#include <sstream>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "analysis/tshark/pcapng_image.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using TESTING::error_entry;
using testing::HasSubstr;
using TESTING::host;
using testing::IsEmpty;
using testing::StartsWith;

constexpr auto one_packet =
    R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.defaultPagingCycle": "2",
                                            "lte-rrc.mpdcch_NumRepetition_Paging_r13": "4"}}}}])";

class data : public TESTING::scratch_test {
  protected:
    void SetUp() override { ASSERT_EQ(host_.init_with_fake_tshark("profile.json"), 0); }

    /// The files of the test, without those that the fake tshark needs and what the system writes
    /// of a process that was ended.
    static std::vector<std::string> files() {
        auto names = TESTING::names_in(".");
        std::erase_if(names, [](const std::string& name) {
            return name.starts_with("fake_tshark") || name.starts_with("core");
        });
        return names;
    }

    host host_;
};

TEST_F(data, hands_the_result_document_back_indented_and_without_a_final_newline) {
    TESTING::fake_tshark_prints(one_packet);
    EXPECT_EQ(host_.data("lte_rrc.bcch_dl_sch_br", "x"), 0);
    EXPECT_THAT(host_.texts, ElementsAre("{\n"
                                         "    \"lte-rrc\": {\n"
                                         "        \"idrx_int\": \"1.28\",\n"
                                         "        \"idrx_reps\": \"16\"\n"
                                         "    }\n"
                                         "}"));
}

TEST_F(data, hands_the_64_bytes_of_the_record_back_as_they_came) {
    TESTING::fake_tshark_prints(one_packet);
    const char* format = "lte_rrc";
    kivra_trace_chunk chunk;
    auto* bytes = reinterpret_cast<unsigned char*>(&chunk);
    for (std::size_t i = 0; i < sizeof chunk; ++i) {
        bytes[i] = static_cast<unsigned char>(0x80 + i);
    }
    chunk.data = nullptr;
    chunk.size = 0;
    chunk.format = format;

    std::vector<unsigned char> returned;
    const auto note = [](void* user_data, const kivra_annotated_chunk* annotated) {
        const auto* begin = reinterpret_cast<const unsigned char*>(annotated);
        static_cast<std::vector<unsigned char>*>(user_data)->assign(begin, begin + 64);
    };
    EXPECT_EQ(host_.exports.data(host_.context, &chunk, nullptr, nullptr, &returned, note), 0);
    EXPECT_EQ(returned, std::vector<unsigned char>(bytes, bytes + 64));
}

TEST_F(data, ignores_the_third_and_fourth_argument) {
    TESTING::fake_tshark_prints("[]");
    kivra_trace_chunk chunk{};
    chunk.format = "nas-eps";
    int anything = 0;
    EXPECT_EQ(host_.exports.data(host_.context, &chunk, &anything, reinterpret_cast<void*>(1),
                                 nullptr, nullptr),
              0);
}

TEST_F(data, gives_tshark_its_command_line) {
    TESTING::fake_tshark_runs(R"(printf '%s\n' "$@" > fake_tshark.arguments; echo '[]')");
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    const std::string arguments = TESTING::read_file("fake_tshark.arguments");
    EXPECT_TRUE(std::regex_match(
        arguments,
        std::regex("-Y\nnas-eps\\|\\|lte_rrc\n-r\n.*tshark_temp[0-9]+\\.pcapng\n-T\njson\n")))
        << arguments;
}

TEST_F(data, gives_tshark_the_record_in_a_capture_of_the_working_directory) {
    TESTING::fake_tshark_runs("cp tshark_temp*.pcapng fake_tshark.capture; echo '[]'");
    const std::string payload = TESTING::bytes_of("2c02ff");
    EXPECT_EQ(host_.data("lte_rrc.dl_dcch", payload, 0x0000000100000002), 0);
    const std::string expected =
        ANALYSIS::pcapng_head() +
        ANALYSIS::pcapng_packet(
            "lte_rrc.dl_dcch",
            {reinterpret_cast<const std::uint8_t*>(payload.data()), payload.size()},
            0x0000000100000002);
    EXPECT_EQ(TESTING::hex_of(TESTING::read_file("fake_tshark.capture")),
              TESTING::hex_of(expected));
}

TEST_F(data, names_its_working_files_and_deletes_them) {
    TESTING::fake_tshark_runs("ls > fake_tshark.files; echo '[]'");
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    const std::string during = TESTING::read_file("fake_tshark.files");
    EXPECT_TRUE(
        std::regex_search(during, std::regex("^tshark[0-9]+\\.json", std::regex::multiline)))
        << during;
    EXPECT_TRUE(
        std::regex_search(during, std::regex("^tshark_temp[0-9]+\\.pcapng", std::regex::multiline)))
        << during;
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(data, uses_the_same_output_file_for_every_record_and_a_fresh_capture_for_each) {
    TESTING::fake_tshark_runs("ls tshark* >> fake_tshark.files; echo '[]'");
    host_.data("nas-eps", "");
    host_.data("nas-eps", "");
    std::istringstream lines(TESTING::read_file("fake_tshark.files"));
    std::vector<std::string> names(std::istream_iterator<std::string>(lines), {});
    ASSERT_EQ(names.size(), 4U);
    EXPECT_EQ(names[0], names[2]);
    EXPECT_NE(names[1], names[3]);
}

TEST_F(data, takes_the_working_directory_of_the_call_for_the_capture) {
    fs::create_directory("elsewhere");
    TESTING::write_file("elsewhere/fake_tshark.sh", "ls > fake_tshark.files; echo '[]'");
    fs::current_path("elsewhere");
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    EXPECT_THAT(TESTING::read_file("fake_tshark.files"),
                StartsWith("fake_tshark.files\nfake_tshark.sh\ntshark_temp"));
    EXPECT_EQ(TESTING::names_in("."),
              (std::vector<std::string>{"fake_tshark.files", "fake_tshark.sh"}));
}

TEST_F(data, logs_how_long_tshark_took) {
    TESTING::fake_tshark_prints("[]");
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    ASSERT_EQ(host_.logs.size(), 1U);
    EXPECT_TRUE(TESTING::is_timing(host_.logs.front().message)) << host_.logs.front().message;
    EXPECT_EQ(host_.logs.front().level, 3U);
    EXPECT_NE(host_.logs.front().caller, nullptr);
}

TEST_F(data, logs_the_time_before_it_hands_the_result_back) {
    TESTING::fake_tshark_prints(one_packet);
    std::size_t logged = 0;
    host_.on_chunk = [&](const kivra_annotated_chunk&) { logged = host_.logs.size(); };
    host_.data("lte_rrc", "");
    EXPECT_EQ(logged, 1U);
}

TEST_F(data, hands_nothing_back_for_an_output_without_packets) {
    for (const char* output : {"[]", "{}", "null", R"([{"_source": {}}])",
                               R"([{"_source": {"layers": {"frame": {}}}}])"}) {
        TESTING::fake_tshark_prints(output);
        EXPECT_EQ(host_.data("nas-eps", ""), 0);
        EXPECT_THAT(host_.texts, IsEmpty()) << output;
    }
}

TEST_F(data, needs_no_callback) {
    TESTING::fake_tshark_prints(one_packet);
    kivra_trace_chunk chunk{};
    chunk.format = "lte_rrc";
    EXPECT_EQ(host_.exports.data(host_.context, &chunk, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(host_.logs.size(), 1U);
    EXPECT_THAT(files(), ElementsAre("profile.json"));
}

TEST_F(data, needs_no_log_callback) {
    TESTING::fake_tshark_prints(
        R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.onDurationTimer": "99"}}}}])");
    kivra_init_parameters block = host_.block({});
    const std::string directory = TESTING::fake_tshark_directory().string();
    block.entries[0] = {"tshark_directory", directory.c_str(), {}};
    block.count = 1;
    block.log_callback = nullptr;
    host silent;
    ASSERT_EQ(silent.exports.init(&silent.context, &block), 0);
    EXPECT_EQ(silent.data("lte_rrc", ""), 0);
}

TEST_F(data, logs_values_without_a_mapping_from_the_parser) {
    TESTING::fake_tshark_prints(
        R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.onDurationTimer": "99"}}}}])");
    EXPECT_EQ(host_.data("lte_rrc", ""), 0);
    ASSERT_EQ(host_.logs.size(), 2U);
    EXPECT_EQ(host_.logs[0].message, "99 mapping not found");
    EXPECT_EQ(host_.logs[0].level, 3U);
    EXPECT_NE(host_.logs[0].caller, host_.logs[1].caller);
}

TEST_F(data, ignores_records_of_other_formats_without_a_word) {
    TESTING::fake_tshark_runs("touch fake_tshark.was_run");
    for (const char* format : {"nas-epsx", "NAS-EPS", "lte-rrc.dl_dcch", "ipx", "IP", "", "http"}) {
        EXPECT_EQ(host_.data(format, std::string(100, 'x')), 0) << format;
    }
    kivra_trace_chunk chunk{};
    EXPECT_EQ(host_.exports.data(host_.context, &chunk, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_THAT(host_.logs, IsEmpty());
    EXPECT_THAT(host_.texts, IsEmpty());
    EXPECT_FALSE(fs::exists("fake_tshark.was_run"));
}

TEST_F(data, takes_the_prefix_of_a_router_advertisement_without_tshark) {
    TESTING::fake_tshark_runs("touch fake_tshark.was_run");
    std::string packet(88, '\0');
    packet[6] = 58;
    packet[40] = static_cast<char>(134);
    packet.replace(72, 4, "\x20\x01\x0d\xb8");
    EXPECT_EQ(host_.data("ip", packet), 0);
    EXPECT_EQ(host_.document(), json::parse(R"({"nas-eps": {"pdn": {
                  "ICMPv6_prefix": "2001:0db8:0000:0000:0000:0000:0000:0000"}}})"));
    EXPECT_FALSE(fs::exists("fake_tshark.was_run"));
    EXPECT_THAT(host_.logs, IsEmpty());
}

TEST_F(data, writes_the_parameter_file) {
    TESTING::fake_tshark_prints(one_packet);
    EXPECT_EQ(host_.data("lte_rrc", ""), 0);
    EXPECT_EQ(TESTING::read_file("profile.json"),
              TESTING::read_file(TESTING::data_file("profile_of_defaults.json")));
}

TEST_F(data, carries_values_from_one_record_to_the_file_that_a_later_one_writes_and_no_further) {
    TESTING::fake_tshark_prints(
        R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.onDurationTimer": "7"}}}}])");
    host_.data("lte_rrc", "");
    EXPECT_THAT(files(), IsEmpty());
    TESTING::fake_tshark_prints(one_packet);
    host_.data("lte_rrc", "");
    EXPECT_EQ(TESTING::read_json("profile.json")["cdrx_on_duration"], "10");
    host_.data("lte_rrc", "");
    EXPECT_EQ(TESTING::read_json("profile.json")["cdrx_on_duration"], "0");
}

TEST_F(data, carries_the_pdn_of_a_nas_record_to_an_ip_record) {
    TESTING::fake_tshark_prints(
        R"([{"_source": {"layers": {"nas-eps": {"PDN address": {"ipv4": "10.0.0.1"}}}}}])");
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    std::string packet(88, '\0');
    packet[6] = 58;
    packet[40] = static_cast<char>(134);
    EXPECT_EQ(host_.data("ip", packet), 0);
    ASSERT_EQ(host_.texts.size(), 2U);
    EXPECT_EQ(json::parse(host_.texts.back()), json::parse(R"({"nas-eps": {"pdn": {
                  "ICMPv6_prefix": "0000:0000:0000:0000:0000:0000:0000:0000",
                  "ipv4": "10.0.0.1"}}})"));
    TESTING::fake_tshark_prints(
        R"([{"_source": {"layers": {"nas-eps": {"PDN address": {"ipv4": "10.0.0.2"}}}}}])");
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    EXPECT_EQ(host_.data("ip", packet), 0);
    EXPECT_EQ(json::parse(host_.texts.back()), json::parse(R"({"nas-eps": {"pdn": {
                  "ICMPv6_prefix": "0000:0000:0000:0000:0000:0000:0000:0000",
                  "ipv4": "10.0.0.2"}}})"));
}

TEST_F(data, carries_the_pdn_through_complete_and_cancel) {
    TESTING::fake_tshark_prints(
        R"([{"_source": {"layers": {"nas-eps": {"PDN address": {"ipv4": "10.0.0.1"}}}}}])");
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    host_.exports.complete(host_.context);
    host_.exports.cancel(host_.context);
    std::string packet(88, '\0');
    packet[6] = 58;
    packet[40] = static_cast<char>(134);
    EXPECT_EQ(host_.data("ip", packet), 0);
    EXPECT_EQ(json::parse(host_.texts.back())["nas-eps"]["pdn"]["ipv4"], "10.0.0.1");
}

TEST_F(data, has_a_release_that_leaves_nothing_at_the_place_of_tsharks_output) {
    TESTING::fake_tshark_runs("ls tshark[0-9]*.json > fake_tshark.output_name; echo '[]'");
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    std::istringstream line(TESTING::read_file("fake_tshark.output_name"));
    std::string name;
    line >> name;
    ASSERT_THAT(name, testing::EndsWith(".json"));
    fs::create_directory(name);
    EXPECT_EQ(host_.release(), 0);
    EXPECT_THAT(files(), IsEmpty());
    ASSERT_EQ(host_.init_with_fake_tshark(), 0);
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    line = std::istringstream(TESTING::read_file("fake_tshark.output_name"));
    line >> name;
    TESTING::write_file(name, "[]");
    EXPECT_EQ(host_.release(), 0);
    EXPECT_THAT(files(), IsEmpty());
}

TEST_F(data, does_not_carry_the_result_document_from_one_record_to_the_next) {
    TESTING::fake_tshark_prints(one_packet);
    host_.data("lte_rrc", "");
    TESTING::fake_tshark_prints("[]");
    host_.data("lte_rrc", "");
    EXPECT_EQ(host_.texts.size(), 1U);
}

// What fails: the result is 100, the reason is kept, neither a timing message nor a chunk comes,
// and the working files are gone.
class failing_data : public data {
  protected:
    void expect_failure(const testing::Matcher<std::string>& reason) {
        EXPECT_EQ(host_.data("nas-eps", ""), 100);
        EXPECT_THAT(host_.last_error().first, reason);
        EXPECT_EQ(host_.last_error().second, 100U);
        EXPECT_THAT(host_.logs, IsEmpty());
        EXPECT_THAT(host_.texts, IsEmpty());
        EXPECT_THAT(files(), IsEmpty());
    }
};

TEST_F(failing_data, when_tshark_has_gone_since_init) {
    fs::copy(TESTING::fake_tshark_directory(), "tools");
    host_.release();
    ASSERT_EQ(host_.init({{"tshark_directory", "tools"}}), 0);
    fs::remove_all("tools");
    expect_failure(HasSubstr("parse_error.101"));
}

TEST_F(failing_data, without_an_output) {
    TESTING::fake_tshark_runs("rm tshark[0-9]*.json");
    expect_failure("cannot open file");
}

TEST_F(failing_data, with_an_empty_output) {
    TESTING::fake_tshark_prints("");
    expect_failure(HasSubstr("parse_error.101"));
}

TEST_F(failing_data, with_an_output_that_is_no_json) {
    TESTING::fake_tshark_prints("tshark: something went wrong");
    expect_failure(HasSubstr("parse_error.101"));
}

TEST_F(failing_data, with_half_an_output) {
    TESTING::fake_tshark_prints(std::string(one_packet).substr(0, 60));
    expect_failure(HasSubstr("parse_error.101"));
}

TEST_F(failing_data, with_a_field_that_is_no_text) {
    TESTING::fake_tshark_prints(
        R"([{"_source": {"layers": {"lte_rrc": {"lte-rrc.onDurationTimer": 7}}}}])");
    expect_failure(HasSubstr("type must be string, but is number"));
}

TEST_F(failing_data, with_a_message_on_stderr_alone_and_a_bad_status) {
    TESTING::fake_tshark_runs("echo broken >&2; exit 2");
    expect_failure(HasSubstr("parse_error.101"));
}

TEST_F(failing_data, with_a_null_payload_that_has_a_size) {
    kivra_trace_chunk chunk{};
    chunk.format = "nas-eps";
    chunk.size = 1;
    EXPECT_EQ(host_.exports.data(host_.context, &chunk, nullptr, nullptr, nullptr, nullptr), 100);
    EXPECT_EQ(host_.last_error(), error_entry("record has a size but no data", 100U));
    chunk.format = "ignored";
    EXPECT_EQ(host_.exports.data(host_.context, &chunk, nullptr, nullptr, nullptr, nullptr), 0);
}

TEST_F(failing_data, without_a_record_or_a_context) {
    EXPECT_EQ(host_.exports.data(host_.context, nullptr, nullptr, nullptr, nullptr, nullptr), 100);
    EXPECT_EQ(host_.last_error(), error_entry("no record was given", 100U));
    kivra_trace_chunk chunk{};
    EXPECT_EQ(host_.exports.data(nullptr, &chunk, nullptr, nullptr, nullptr, nullptr), 100);
}

TEST_F(failing_data, keeps_its_reason_through_later_successes) {
    TESTING::fake_tshark_runs("rm tshark[0-9]*.json");
    EXPECT_EQ(host_.data("nas-eps", ""), 100);
    TESTING::fake_tshark_prints("[]");
    EXPECT_EQ(host_.data("nas-eps", ""), 0);
    EXPECT_EQ(host_.last_error(), error_entry("cannot open file", 100U));
}

TEST_F(failing_data, with_an_output_that_is_no_utf8) {
    TESTING::fake_tshark_prints("[{\"_source\": {\"layers\": {\"lte_rrc\": {\"a\": \"\xFF\"}}}}]");
    expect_failure(AllOf(HasSubstr("parse_error.101"), HasSubstr("last read: '\"\xFF'")));
}

// The process that ends may be a new one, which runs the test from its beginning: it is sent to the
// scratch directory of the first.
class undeletable_files : public data {
  protected:
    undeletable_files() {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing else changes the environment here
        if (const char* directory = std::getenv(variable)) {
            fs::current_path(directory);
        }
        TESTING::set_environment(variable, fs::current_path().string());
    }

  private:
    static constexpr auto variable = "KIVRA_SCRATCH_DIRECTORY";
    TESTING::environment_guard guard_{variable};
};

TEST_F(undeletable_files, end_the_process_after_the_capture_was_deleted) {
    TESTING::fake_tshark_runs(
        "output=$(ls tshark[0-9]*.json); rm $output; mkdir $output; touch $output/inside");
    EXPECT_DEATH(host_.data("nas-eps", ""), "");
    ASSERT_EQ(files().size(), 1U);
    EXPECT_THAT(files().front(), testing::EndsWith(".json"));
}

TEST_F(undeletable_files, end_the_process_before_the_output_is_deleted) {
    TESTING::fake_tshark_runs(
        "capture=$(ls tshark_temp*.pcapng); rm $capture; mkdir $capture; touch $capture/inside");
    EXPECT_DEATH(host_.data("nas-eps", ""), "");
    ASSERT_EQ(files().size(), 2U);
    EXPECT_THAT(files().front(), testing::EndsWith(".json"));
}

}  // namespace
}  // namespace KIVRA::TSHARK
