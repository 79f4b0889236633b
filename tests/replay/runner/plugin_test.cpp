#include "replay/runner/plugin.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>

#include "tests/support/files.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using testing::AllOf;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::ThrowsMessage;

/// What these plug-ins are given is no message.
constexpr const char* no_tshark = "no-tshark";

trace_record record_of(const char* format, std::string_view payload) {
    return {.timestamp = 99,
            .format = format,
            .payload = {reinterpret_cast<const std::uint8_t*>(payload.data()), payload.size()},
            .failure = {}};
}

outcome run(record_runner& runner, const trace_record& record) {
    std::vector<outcome> results;
    runner.submit(record, [&](const trace_record& finished, const outcome& result) {
        EXPECT_EQ(finished.format, record.format);
        results.push_back(result);
    });
    EXPECT_EQ(results.size(), 1U);
    return results.at(0);
}

class plugins : public scratch_test {
  protected:
    const std::shared_ptr<const plugin> loaded_ = std::make_shared<plugin>(KIVRA_RECORDING_PLUGIN);
};

TEST_F(plugins, describe_themselves) {
    const auto description = loaded_->describe();
    EXPECT_EQ(description.version, "1.22.3");
    EXPECT_EQ(description.parameter_schema, "{}");
}

TEST_F(plugins, are_called_in_order) {
    static_cast<void>(loaded_->describe());
    {
        plugin_sink target(loaded_, "/t", no_tshark, "p.json");
        run(target, record_of("nas-eps", "message"));
        run(target, record_of("ip", ""));
        target.complete();
    }
    EXPECT_EQ(read_file("calls"),
              "version\n"
              "init_parameters\n"
              "init tshark_directory=/t file_path=p.json\n"
              "data nas-eps message 99\n"
              "data ip  99\n"
              "complete\n"
              "release\n");
}

TEST_F(plugins, are_asked_for_a_session) {
    { const plugin_sink target(loaded_, "/t", no_tshark, "p.json", true); }
    EXPECT_THAT(read_file("calls"),
                StartsWith("init tshark_directory=/t file_path=p.json tshark_session=on\n"));
}

TEST_F(plugins, are_cancelled_when_the_run_is_broken_off) {
    { const plugin_sink target(loaded_, "/t", no_tshark, "p.json"); }
    EXPECT_EQ(read_file("calls"), "init tshark_directory=/t file_path=p.json\ncancel\nrelease\n");
}

TEST_F(plugins, hand_documents_back) {
    plugin_sink target(loaded_, "/t", no_tshark, "p.json");
    const auto result = run(target, record_of("document", ""));
    EXPECT_EQ(result.document, nlohmann::json({{"a", "b"}}));
    EXPECT_THAT(result.log, IsEmpty());
    EXPECT_EQ(result.failure, std::nullopt);
}

TEST_F(plugins, tell_why_a_record_failed_and_go_on) {
    plugin_sink target(loaded_, "/t", no_tshark, "p.json");
    EXPECT_EQ(run(target, record_of("fail", "this")).failure,
              (record_failure{failure_kind::analysis, "failed on this"}));
    EXPECT_EQ(run(target, record_of("document", "")).failure, std::nullopt);
}

TEST_F(plugins, log_for_the_record_that_is_run) {
    plugin_sink target(loaded_, "/t", no_tshark, "p.json");
    EXPECT_THAT(run(target, record_of("log", "")).log,
                ElementsAre(FieldsAre(3U, "x mapping not found"),
                            FieldsAre(3U, "tshark processing took: 412ms")));
    EXPECT_THAT(run(target, record_of("ip", "")).log, IsEmpty());
}

TEST_F(plugins, are_not_given_a_record_that_can_not_be_run) {
    {
        plugin_sink target(loaded_, "/t", no_tshark, "p.json");
        auto record = record_of("document", "");
        record.failure = {failure_kind::truncated_packet, "cut short"};
        const auto result = run(target, record);
        EXPECT_EQ(result.failure, record.failure);
        EXPECT_TRUE(result.document.is_null());
    }
    EXPECT_THAT(read_file("calls"), testing::Not(HasSubstr("data")));
}

TEST_F(plugins, tell_why_they_refuse_to_start) {
    EXPECT_THAT([this] { plugin_sink(loaded_, "/refused", no_tshark, "p.json"); },
                ThrowsMessage<std::runtime_error>("the plug-in can't start: refused"));
    EXPECT_EQ(read_file("calls"), "init tshark_directory=/refused file_path=p.json\n");
}

TEST_F(plugins, that_lack_an_export_can_not_be_loaded) {
    EXPECT_THAT([] { plugin(KIVRA_INCOMPLETE_PLUGIN); },
                ThrowsMessage<std::runtime_error>(AllOf(StartsWith("can't load the plug-in: "),
                                                        HasSubstr("kivra_sink_init_parameters"))));
}

TEST_F(plugins, that_are_no_libraries_can_not_be_loaded) {
    write_file("plugin.so", "no library");
    EXPECT_THAT([this] { plugin(scratch() / "plugin.so"); },
                ThrowsMessage<std::runtime_error>(StartsWith("can't load the plug-in: ")));
}

TEST_F(plugins, are_loaded_from_the_working_directory_by_a_bare_name) {
    std::filesystem::copy_file(KIVRA_RECORDING_PLUGIN, "bare.so");
    EXPECT_EQ(plugin("bare.so").describe().version, "1.22.3");
}

TEST_F(plugins, are_not_searched_for_in_the_system) {
    EXPECT_THAT([] { plugin("libc.so.6"); },
                ThrowsMessage<std::runtime_error>(HasSubstr((scratch() / "libc.so.6").string())));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
