// An installation, as those who build hosts use it. Each test works with one of its own, which has
// been moved after it was made.
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/process.h"

namespace KIVRA::TSHARK {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

constexpr const char* documentation = "share/doc/kivra-tshark-sink";
constexpr const char* plugin = "lib/kivra/kivra-tshark-sink.so";

class installation : public scratch_test {
  protected:
    installation() {
        const auto install =
            run_process({KIVRA_CMAKE, "--install", KIVRA_BINARY_DIR, "--prefix", "made here"});
        EXPECT_EQ(install.status, 0) << install.error;
        fs::rename("made here", "moved");
    }

    fs::path prefix() const { return scratch() / "moved"; }

    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(prefix())) {
            if (entry.is_regular_file()) {
                names.push_back(entry.path().lexically_relative(prefix()));
            }
        }
        return names;
    }

    /// What pkg-config says about the installation, without the line break.
    std::string pkg_config(const std::string& question) const {
        const auto directory = prefix() / KIVRA_LIBRARY_DIR / "pkgconfig";
        const auto result = run_process({"/usr/bin/env", "PKG_CONFIG_PATH=" + directory.string(),
                                         KIVRA_PKG_CONFIG, question, "kivra-tshark-sink"});
        EXPECT_EQ(result.status, 0) << result.error;
        return result.output.substr(0, result.output.find_last_not_of(" \n") + 1);
    }

    process_result configure(const fs::path& project) const {
        return run_process({KIVRA_CMAKE, "-S", project, "-B", "project", "-G", "Ninja",
                            "-DCMAKE_PREFIX_PATH=" + prefix().string(),
                            std::string("-DCMAKE_C_COMPILER=") + KIVRA_C_COMPILER});
    }

    void expect_host_works(const fs::path& host) const {
        const auto result =
            run_process({host, prefix() / plugin, tshark_directory(), "profile.json"});
        EXPECT_EQ(result.status, 0) << result.error;
        EXPECT_THAT(result.output, HasSubstr("\"idrx_reps\": \"16\""));
        EXPECT_TRUE(fs::remove("profile.json"));
    }
};

TEST_F(installation, holds_plugin_header_program_and_documents) {
    EXPECT_THAT(
        files(),
        IsSupersetOf({std::string(plugin), std::string("include/kivra/tshark_sink.h"),
                      std::string("bin/kivra-replay"), std::string("share/man/man1/kivra-replay.1"),
                      std::string("share/bash-completion/completions/kivra-replay")}));
    std::vector<std::string> documents;
    for (const char* name : {"LICENSE", "NOTICE", "copyright", "README.md", "CHANGELOG.md",
                             "docs/architecture.md", "examples/host.c", "examples/host.cpp",
                             "examples/host.py", "examples/captures/nbiot_attach.pcapng"}) {
        documents.push_back(fs::path(documentation) / name);
    }
    EXPECT_THAT(files(), IsSupersetOf(documents));
}

TEST_F(installation, names_no_folder_of_the_build) {
    for (const auto& name : files()) {
        if (name.ends_with(".cmake") || name.ends_with(".pc")) {
            EXPECT_THAT(read_file(prefix() / name),
                        AllOf(Not(HasSubstr(KIVRA_SOURCE_DIR)), Not(HasSubstr(KIVRA_BINARY_DIR)),
                              Not(HasSubstr("made here"))))
                << name;
        }
    }
}

TEST_F(installation, replay_finds_its_plugin) {
    const auto result = run_process({prefix() / "bin/kivra-replay", "--profile", "profile.json",
                                     capture_file("nbiot_attach.pcapng")});
    EXPECT_EQ(result.status, 0) << result.error;
    EXPECT_THAT(result.output, HasSubstr("\nprofile "));
    EXPECT_EQ(read_json("profile.json").at("idrx_reps"), "64");
}

TEST_F(installation, pkg_config_tells_version_and_plugin) {
    EXPECT_EQ(pkg_config("--modversion"), KIVRA_VERSION);
    EXPECT_EQ(fs::canonical(pkg_config("--variable=plugin")), prefix() / plugin);
}

TEST_F(installation, a_host_compiles_with_the_flags_of_pkg_config) {
    const auto result = run_process({KIVRA_C_COMPILER, pkg_config("--cflags"),
                                     prefix() / documentation / "examples/host.c", "-o", "host"});
    ASSERT_EQ(result.status, 0) << result.error;
    expect_host_works(scratch() / "host");
}

TEST_F(installation, the_examples_build_with_find_package) {
    const auto configured = configure(prefix() / documentation / "examples");
    ASSERT_EQ(configured.status, 0) << configured.error;
    EXPECT_THAT(configured.output, HasSubstr("Try: host_c " + (prefix() / plugin).string()));
    const auto built = run_process({KIVRA_CMAKE, "--build", "project"});
    ASSERT_EQ(built.status, 0) << built.output;
    expect_host_works(scratch() / "project/host_c");
    expect_host_works(scratch() / "project/host_cpp");
}

TEST_F(installation, satisfies_find_package_for_its_minor_version_alone) {
    const auto status_for = [this](const std::string& version) {
        fs::create_directories("source");
        write_file("source/CMakeLists.txt",
                   "cmake_minimum_required(VERSION 3.25)\nproject(host LANGUAGES NONE)\n"
                   "find_package(kivra-tshark-sink " +
                       version + " REQUIRED)\n");
        return configure("source").status;
    };
    EXPECT_EQ(status_for(KIVRA_VERSION), 0);
    EXPECT_NE(status_for("0.1"), 0);
    EXPECT_NE(status_for("1.0"), 0);
}

}  // namespace
}  // namespace KIVRA::TSHARK
