// kivra-replay --each --watch as its users run it.
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "replay/fleet/csv.h"
#include "replay/fleet/fleet_row.h"
#include "tests/replay/sample_captures.h"
#include "tests/support/files.h"
#include "tests/support/process.h"

namespace KIVRA::TSHARK::REPLAY {
namespace {

namespace fs = std::filesystem;
using namespace TESTING;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr const char* is_ok = ": ok, 8 records, network 232/01, PSM granted";

/// A program that runs beside the test. Its errors go to the file "errors".
class running_program {
  public:
    explicit running_program(std::vector<std::string> command) {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        std::vector<char*> arguments;
        for (auto& argument : command) {
            arguments.push_back(argument.data());
        }
        arguments.push_back(nullptr);
        process_ = fork();
        if (process_ == 0) {
            dup2(ends[1], STDOUT_FILENO);
            dup2(open("errors", O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
            // What the test has open for writing is for itself alone.
            closefrom(STDERR_FILENO + 1);
            execv(arguments.front(), arguments.data());
            _exit(127);
        }
        close(ends[1]);
        output_ = ends[0];
    }
    ~running_program() {
        close(output_);
        if (process_ != 0) {
            end(SIGKILL);
        }
    }
    running_program(const running_program&) = delete;
    running_program& operator=(const running_program&) = delete;

    /// Waits for the next line of its output; empty behind the last.
    std::string line() {
        std::string text;
        for (char letter = read_letter(); letter != '\0' && letter != '\n';
             letter = read_letter()) {
            text += letter;
        }
        return text;
    }

    /// @return the signal that ended it, as a negative number, or its exit status
    int end(int signal) {
        kill(process_, signal);
        return wait();
    }

    int wait() {
        int status = 0;
        waitpid(process_, &status, 0);
        process_ = 0;
        return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    }

  private:
    char read_letter() const {
        constexpr int longest_wait = 60'000;
        pollfd entry{output_, POLLIN, 0};
        EXPECT_EQ(poll(&entry, 1, longest_wait), 1) << "nothing is printed";
        char letter = '\0';
        return read(output_, &letter, 1) == 1 ? letter : '\0';
    }

    pid_t process_ = 0;
    int output_ = -1;
};

class watched_captures : public scratch_test {
  protected:
    watched_captures() {
        fs::create_directories("lab/night");
        fs::create_directory("tmp");
        put("lab/a.pcapng");
    }

    static void put(const fs::path& file) {
        fs::copy_file(capture_file("nbiot_attach.pcapng"), file);
    }

    /// One job, which takes captures in the order in which they come.
    static std::vector<std::string> command(const std::vector<std::string>& options) {
        std::vector<std::string> words{"/usr/bin/env", "TMPDIR=tmp", KIVRA_REPLAY, "--each",
                                       "--watch",      "lab",        "--jobs",     "1"};
        words.insert(words.end(), options.begin(), options.end());
        if (std::ranges::count(options, "--table") == 0) {
            words.insert(words.end(), {"--table", "t.csv"});
        }
        return words;
    }

    static running_program watch(const std::vector<std::string>& options = {}) {
        return running_program(command(options));
    }

    static void expect_refused(const std::vector<std::string>& options, const std::string& why) {
        const auto result = run_process(command(options));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.error, "kivra-replay: " + why + "\n");
    }

    /// Of each capture, as a run of its own writes it.
    static std::string table_of(const std::vector<std::string>& captures) {
        auto arguments = captures;
        arguments.insert(arguments.end(), {"--each", "-q", "--table", "expected.csv"});
        run_replay(arguments);
        return read_file("expected.csv");
    }

    /// A folder "bin" with a tshark that runs these commands before it works as always.
    static void write_tshark(const std::string& commands) {
        TESTING::write_tshark("bin", commands + "\nexec /usr/bin/tshark \"$@\"\n");
    }
};

TEST_F(watched_captures, are_those_that_stand_there_and_those_that_come) {
    put("lab/0.pcapng");
    auto run = watch();
    EXPECT_EQ(run.line(), std::string("lab/0.pcapng") + is_ok);
    EXPECT_EQ(run.line(), std::string("lab/a.pcapng") + is_ok);
    put("new");
    fs::rename("new", "lab/1.pcapng");
    EXPECT_EQ(run.line(), std::string("lab/1.pcapng") + is_ok);
    EXPECT_EQ(run.end(SIGINT), -SIGINT);
    EXPECT_EQ(read_file("t.csv"), table_of({"lab/0.pcapng", "lab/a.pcapng", "lab/1.pcapng"}));
}

TEST_F(watched_captures, are_taken_when_they_are_closed_after_writing) {
    const auto image = read_file(capture_file("nbiot_attach.pcapng"));
    std::ofstream before("lab/0.pcapng", std::ios::binary);
    before << image.substr(0, 300) << std::flush;
    auto run = watch();
    EXPECT_EQ(run.line(), std::string("lab/a.pcapng") + is_ok);
    std::ofstream later("lab/b.pcapng", std::ios::binary);
    later << image.substr(0, 300) << std::flush;
    put("lab/c.pcapng");
    EXPECT_EQ(run.line(), std::string("lab/c.pcapng") + is_ok);
    later << image.substr(300);
    later.close();
    EXPECT_EQ(run.line(), std::string("lab/b.pcapng") + is_ok);
    before << image.substr(300);
    before.close();
    EXPECT_EQ(run.line(), std::string("lab/0.pcapng") + is_ok);
}

TEST_F(watched_captures, come_in_folders_within_the_folder_when_told_to) {
    auto run = watch({"--recursive"});
    EXPECT_EQ(run.line(), std::string("lab/a.pcapng") + is_ok);
    fs::create_directories("lab/.copying");
    put("lab/.copying/b.pcapng");
    put("lab/.c.pcapng");
    put("lab/night/d.part");
    fs::rename("lab/night/d.part", "lab/night/d.pcapng");
    EXPECT_EQ(run.line(), std::string("lab/night/d.pcapng") + is_ok);
    fs::create_directories("lab/day/1");
    put("lab/day/1/e.pcapng");
    EXPECT_EQ(run.line(), std::string("lab/day/1/e.pcapng") + is_ok);
}

TEST_F(watched_captures, do_not_come_in_folders_within_it_else) {
    put("lab/night/0.pcapng");
    auto run = watch();
    EXPECT_EQ(run.line(), std::string("lab/a.pcapng") + is_ok);
    put("lab/night/1.pcapng");
    put("lab/b.pcapng");
    EXPECT_EQ(run.line(), std::string("lab/b.pcapng") + is_ok);
}

TEST_F(watched_captures, that_a_table_can_not_name_are_left_out) {
    put("lab/0\xff.pcapng");
    auto run = watch();
    EXPECT_EQ(run.line(), std::string("lab/a.pcapng") + is_ok);
    EXPECT_EQ(read_file("errors"),
              "kivra-replay: lab/0\\xff.pcapng is left out: its name is not UTF-8\n");
}

TEST_F(watched_captures, are_taken_once) {
    auto run = watch();
    EXPECT_EQ(run.line(), std::string("lab/a.pcapng") + is_ok);
    fs::remove("lab/a.pcapng");
    put("lab/a.pcapng");
    put("lab/b.pcapng");
    EXPECT_EQ(run.line(), std::string("lab/b.pcapng") + is_ok);
}

TEST_F(watched_captures, are_not_run_again_by_the_next_run) {
    put("lab/b.pcapng");
    {
        auto run = watch();
        run.line();
        run.line();
        EXPECT_EQ(run.end(SIGKILL), -SIGKILL);
    }
    put("lab/c.pcapng");
    auto run = watch();
    EXPECT_EQ(run.line(), std::string("lab/c.pcapng") + is_ok);
    EXPECT_EQ(run.end(SIGTERM), -SIGTERM);
    EXPECT_EQ(read_file("t.csv"), table_of({"lab/a.pcapng", "lab/b.pcapng", "lab/c.pcapng"}));
}

TEST_F(watched_captures, are_counted_in_the_end) {
    write_file("lab/b.pcapng", "no capture\n");
    auto run = watch();
    run.line();
    EXPECT_THAT(run.line(), StartsWith("lab/b.pcapng: unreadable"));
    EXPECT_EQ(run.end(SIGINT), -SIGINT);
    for (const char* line :
         {"", "captures", "    ok                         1", "    unreadable                 1",
          "", "PSM", "    granted                    1"}) {
        EXPECT_EQ(run.line(), line);
    }
}

TEST_F(watched_captures, leave_nothing_behind_but_the_table) {
    auto run = watch();
    run.line();
    run.end(SIGTERM);
    EXPECT_THAT(names_in("tmp"), IsEmpty());
    EXPECT_THAT(names_in("."), ElementsAre("errors", "lab", "t.csv", "tmp"));
}

TEST_F(watched_captures, that_are_interrupted_have_no_row_and_are_run_by_the_next_run) {
    put("lab/b.pcapng");
    write_tshark(
        "if [ -e second ]; then kill -INT \"$(cat run)\"; exec cat >/dev/null; fi\n"
        "touch second");
    const auto words = command({"--tshark-directory", "bin"});
    std::string script = "echo $$ > run; exec";
    for (const auto& word : words) {
        script += ' ' + word;
    }
    const auto result = run_process({"/bin/bash", "-c", script});
    EXPECT_EQ(result.status, -SIGINT);
    EXPECT_THAT(result.output, HasSubstr("\ninterrupted: 1 of 2 captures done\n"));
    EXPECT_EQ(read_file("t.csv"), table_of({"lab/a.pcapng"}));
    auto run = watch();
    EXPECT_EQ(run.line(), std::string("lab/b.pcapng") + is_ok);
}

TEST_F(watched_captures, that_go_away_before_they_are_run_have_no_row_until_they_come_again) {
    put("lab/b.pcapng");
    put("lab/c.pcapng");
    write_tshark("[ -e once ] || { touch once; rm lab/b.pcapng; }");
    auto run = watch({"--tshark-directory", "bin"});
    EXPECT_EQ(run.line(), std::string("lab/a.pcapng") + is_ok);
    EXPECT_EQ(run.line(), std::string("lab/c.pcapng") + is_ok);
    EXPECT_EQ(read_file("errors"),
              "kivra-replay: lab/b.pcapng is no longer there, and has no row\n");
    put("lab/b.pcapng");
    EXPECT_EQ(run.line(), std::string("lab/b.pcapng") + is_ok);
}

TEST_F(watched_captures, that_no_tshark_can_read_have_no_row_and_are_run_by_the_next_run) {
    put("lab/b.pcapng");
    write_tshark("rm bin/tshark");
    auto run = watch({"--tshark-directory", "bin"});
    EXPECT_EQ(run.line(), std::string("lab/a.pcapng") + is_ok);
    EXPECT_EQ(run.wait(), 2);
    EXPECT_EQ(read_file("errors"),
              "kivra-replay: tshark not found from path or default installation location\n");
    EXPECT_EQ(read_file("t.csv"), table_of({"lab/a.pcapng"}));
    auto next = watch();
    EXPECT_EQ(next.line(), std::string("lab/b.pcapng") + is_ok);
}

TEST_F(watched_captures, without_a_program_to_run_them_have_no_row) {
    put("lab/b.pcapng");
    write_tshark("chmod a-x replay");
    fs::copy_file(KIVRA_REPLAY, "replay");
    auto words = command({"--tshark-directory", "bin"});
    std::ranges::replace(words, KIVRA_REPLAY, "./replay");
    const auto result = run_process(words);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't start " + fs::absolute("replay").string() +
                                ": Permission denied\n");
    EXPECT_EQ(read_file("t.csv"), table_of({"lab/a.pcapng"}));
}

TEST_F(watched_captures, have_the_summaries_of_runs_of_their_own) {
    auto run = watch({"--recursive", "--summary", "s/1"});
    run.line();
    put("lab/night/b.pcapng");
    run.line();
    ASSERT_EQ(run_replay({"-q", "--summary", "own.json", "lab/a.pcapng"}).status, 0);
    auto own = read_json("own.json");
    own["profile"].erase("file");
    for (const char* file : {"s/1/a.pcapng.summary.json", "s/1/night/b.pcapng.summary.json"}) {
        EXPECT_EQ(read_json(file), own);
    }
}

TEST_F(watched_captures, that_can_not_be_opened_leave_no_summary_of_another_one) {
    put("lab/b.pcapng");
    fs::create_directory("s");
    write_file("s/b.pcapng.summary.json", "{}");
    write_tshark("[ -e once ] || { touch once; rm lab/b.pcapng; mkdir lab/b.pcapng; }");
    auto run = watch({"--tshark-directory", "bin", "--summary", "s"});
    run.line();
    EXPECT_EQ(run.line(), "lab/b.pcapng: unreadable");
    EXPECT_THAT(names_in("s"), ElementsAre("a.pcapng.summary.json"));
}

TEST_F(watched_captures, have_no_row_without_their_summary) {
    write_file("s", "");
    const auto result = run_process(command({"--summary", "s"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "kivra-replay: can't write s/a.pcapng.summary.json: Not a directory\n");
    EXPECT_EQ(read_file("t.csv"), csv_line(fleet_columns()));
}

TEST_F(watched_captures, end_with_their_folder) {
    auto run = watch();
    run.line();
    fs::remove_all("lab");
    EXPECT_EQ(run.wait(), 2);
    EXPECT_EQ(read_file("errors"), "kivra-replay: lab is no longer there\n");
}

TEST_F(watched_captures, need_a_folder) {
    fs::remove_all("lab");
    expect_refused({}, "can't watch lab: No such file or directory");
    EXPECT_FALSE(fs::exists("t.csv"));
}

TEST_F(watched_captures, need_a_tshark) {
    EXPECT_EQ(run_process(command({"--tshark-directory", "lab"})).status, 2);
    EXPECT_FALSE(fs::exists("t.csv"));
}

TEST_F(watched_captures, are_not_written_over) {
    const auto image = read_file("lab/a.pcapng");
    expect_refused({"-o", "lab/a.pcapng"}, "lab/a.pcapng is a capture to read, not to write");
    EXPECT_EQ(read_file("lab/a.pcapng"), image);
}

class watched_table : public watched_captures {
  protected:
    static std::string columns() { return csv_line(fleet_columns()); }

    static std::string row_for(const std::string& capture) {
        fleet_row row(fleet_columns().size());
        row[0] = capture;
        row[2] = "two\r\nlines";
        return csv_line({row.begin(), row.end()});
    }
};

TEST_F(watched_table, is_gone_on_with_behind_the_last_whole_row) {
    const auto row = row_for("lab/0.pcapng");
    put("lab/0.pcapng");
    const auto whole = columns() + row;
    const auto rest = table_of({"lab/a.pcapng"}).substr(columns().size());
    const auto torn = row_for("lab/a.pcapng");
    for (const auto length : {std::size_t(0), std::size_t(1), torn.find("\r\n") + 2,
                              torn.size() - 2, torn.size() - 1}) {
        write_file("t.csv", whole + torn.substr(0, length));
        auto run = watch();
        EXPECT_EQ(run.line(), std::string("lab/a.pcapng") + is_ok);
        run.end(SIGINT);
        EXPECT_EQ(read_file("t.csv"), whole + rest) << length;
    }
}

TEST_F(watched_table, begins_anew_when_it_had_barely_begun) {
    const auto expected = table_of({"lab/a.pcapng"});
    for (const auto length : {std::size_t(0), std::size_t(20), columns().size() - 1}) {
        write_file("t.csv", columns().substr(0, length));
        auto run = watch();
        run.line();
        run.end(SIGINT);
        EXPECT_EQ(read_file("t.csv"), expected) << length;
    }
}

TEST_F(watched_table, with_other_columns_is_refused_and_stays) {
    for (const auto& content :
         {std::string("notes"), "capture,more\r\n" + row_for("a"), "x" + columns(),
          columns().substr(0, columns().size() - 2) + "\n"}) {
        write_file("t.csv", content);
        expect_refused({}, "t.csv is no table of this version: its columns are others");
        EXPECT_EQ(read_file("t.csv"), content);
    }
}

TEST_F(watched_table, with_a_line_that_is_no_row_is_refused_and_stays) {
    const auto content = columns() + row_for("a") + "b\r\n" + row_for("c");
    write_file("t.csv", content);
    expect_refused({}, "t.csv: row 2 is not one of this table");
    EXPECT_EQ(read_file("t.csv"), content);
}

TEST_F(watched_table, is_refused_to_a_second_run) {
    auto run = watch();
    run.line();
    expect_refused({}, "another run writes t.csv");
    put("lab/b.pcapng");
    EXPECT_EQ(run.line(), std::string("lab/b.pcapng") + is_ok);
}

TEST_F(watched_table, is_not_the_output_too) {
    write_file("t.csv", columns() + row_for("lab/0.pcapng"));
    expect_refused({"-o", "t.csv"}, "t.csv is the table, and can't be the output, too");
    EXPECT_EQ(read_file("t.csv"), columns() + row_for("lab/0.pcapng"));
}

TEST_F(watched_table, has_to_be_a_file_that_can_be_written) {
    fs::create_directory("folder");
    expect_refused({"--table", "folder"}, "can't write folder: Is a directory");
}

TEST_F(watched_table, is_where_the_next_run_finds_what_a_killed_one_has_left) {
    fs::create_directories("tables/.t.csv.kivra-123/0");
    fs::create_directory("tables/.t.csv.kivra-");
    fs::create_directory("tables/.t.csv.kivra-1b");
    fs::create_directory("tables/.u.csv.kivra-1");
    auto run = watch({"--table", "tables/t.csv"});
    run.line();
    run.end(SIGINT);
    EXPECT_THAT(names_in("tables"),
                ElementsAre(".t.csv.kivra-", ".t.csv.kivra-1b", ".u.csv.kivra-1", "t.csv"));
}

}  // namespace
}  // namespace KIVRA::TSHARK::REPLAY
