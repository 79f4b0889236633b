// The examples as their readers run them: as processes, with the built plug-in.
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/process.h"

namespace KIVRA::TSHARK {
namespace {

using namespace TESTING;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string description() {
    return "tshark sink plugin () 0.13.1\n" + read_file(data_file("init_parameter_schema.json")) +
           "\n";
}

/// The programs, one for each language.
std::vector<std::string> hosts() {
    std::istringstream list(KIVRA_EXAMPLE_HOSTS);
    std::vector<std::string> files;
    for (std::string file; std::getline(list, file, ':');) {
        files.push_back(file);
    }
    return files;
}

class examples : public scratch_test, public testing::WithParamInterface<std::string> {
  protected:
    static process_result run(const std::filesystem::path& plugin,
                              const std::filesystem::path& tshark) {
        return run_process({GetParam(), plugin, tshark, "profile.json"});
    }
};

TEST_P(examples, show_what_a_record_tells_and_write_the_profile) {
    const auto result = run(plugin_file(), tshark_directory());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, description() +
                                 "{\n"
                                 "    \"lte-rrc\": {\n"
                                 "        \"idrx_int\": \"1.28\",\n"
                                 "        \"idrx_reps\": \"16\"\n"
                                 "    }\n"
                                 "}\n");
    EXPECT_THAT(result.error, StartsWith("log (3): tshark processing took: "));
    EXPECT_THAT(names_in("."), ElementsAre("profile.json"));
    const auto profile = read_json("profile.json");
    EXPECT_EQ(profile.at("idrx_int"), "1.28");
    EXPECT_EQ(profile.at("idrx_reps"), "16");
}

TEST_P(examples, tell_why_the_plugin_can_not_start) {
    const auto result = run(plugin_file(), scratch());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, description());
    EXPECT_THAT(result.error, HasSubstr("tshark not found from path or default installation"));
    EXPECT_THAT(names_in("."), IsEmpty());
}

TEST_P(examples, tell_why_a_record_failed) {
    fake_tshark_prints("no JSON");
    const auto result = run(plugin_file(), fake_tshark_directory());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, description());
    EXPECT_THAT(result.error, HasSubstr("[json.exception.parse_error.101]"));
}

TEST_P(examples, tell_that_a_file_is_no_plugin) {
    write_file("plugin.so", "no plug-in");
    const auto result = run(scratch() / "plugin.so", tshark_directory());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.error, HasSubstr("plugin.so"));
}

INSTANTIATE_TEST_SUITE_P(of, examples, testing::ValuesIn(hosts()), [](const auto& instance) {
    return std::regex_replace(std::filesystem::path(instance.param).filename().string(),
                              std::regex("\\."), "_");
});

}  // namespace
}  // namespace KIVRA::TSHARK
