// The man page and the completion tell of the options that there are.
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <gmock/gmock.h>

#include "tests/support/files.h"
#include "tests/support/process.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

using namespace TESTING;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;

std::set<std::string> options_in(const std::string& text) {
    static const std::regex option("--[a-z][a-z-]*");
    std::set<std::string> options;
    for (std::sregex_iterator found(text.begin(), text.end(), option), end; found != end; ++found) {
        options.insert(found->str());
    }
    return options;
}

std::set<std::string> options() {
    return options_in(run_process({KIVRA_REPLAY, "--help"}).output);
}

class manners : public scratch_test {
  protected:
    /// What bash offers behind a command line, word by word.
    static std::set<std::string> completions_of(const std::string& line) {
        const auto result = run_process({"/bin/bash", "-c",
                                         "source " KIVRA_REPLAY_COMPLETION "\n"
                                         "COMP_WORDS=(kivra-replay " +
                                             line +
                                             ")\n"
                                             "COMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n"
                                             "_kivra_replay\n"
                                             "printf '%s\\n' \"${COMPREPLY[@]}\"\n"});
        EXPECT_EQ(result.error, "");
        std::set<std::string> words;
        std::istringstream lines(result.output);
        for (std::string word; std::getline(lines, word);) {
            words.insert(word);
        }
        return words;
    }
};

TEST_F(manners, have_every_option_in_the_man_page) {
    const auto page = run_process({"/usr/bin/mandoc", "-T", "ascii", KIVRA_REPLAY_MAN_PAGE});
    // Bold print strikes letters twice.
    const auto text = std::regex_replace(page.output, std::regex(".\b"), "");
    EXPECT_THAT(options_in(text), testing::IsSupersetOf(options()));
}

TEST_F(manners, have_a_man_page_without_a_fault) {
    const auto lint =
        run_process({"/usr/bin/mandoc", "-T", "lint", "-W", "warning", KIVRA_REPLAY_MAN_PAGE});
    EXPECT_EQ(lint.status, 0);
    EXPECT_EQ(lint.output, "");
}

TEST_F(manners, complete_every_option) {
    EXPECT_EQ(completions_of("--"), options());
    EXPECT_THAT(completions_of("--pr"), ElementsAre("--profile"));
    EXPECT_THAT(completions_of("-"), AllOf(Contains("-q"), Contains("-o"), Contains("--json")));
}

TEST_F(manners, complete_files_and_folders) {
    std::filesystem::create_directory("folder");
    write_file("file", "");
    EXPECT_THAT(completions_of("f"), ElementsAre("file", "folder"));
    EXPECT_THAT(completions_of("--output f"), ElementsAre("file", "folder"));
    EXPECT_THAT(completions_of("--tshark-directory f"), ElementsAre("folder"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
