#include "replay/options.h"

#include <algorithm>
#include <stdexcept>

#include <CLI/CLI.hpp>

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr const char* exit_statuses =
    "Exit status:\n"
    "  0    every record went through\n"
    "  1    some records failed\n"
    "  2    the run could not start, or could not go on to the end\n"
    "  130  interrupted, as shells show a program that SIGINT ended";

/// The options as CLI11 reads them.
struct command_line {
    bool batch = false;
    bool json = false;
    bool quiet = false;
    std::string output;
    std::string plugin;
    std::string tshark_directory;
    std::string profile = "kivra-profile.json";
    std::vector<std::string> captures;
};

std::string reject_empty(const std::string& value) {
    return value.empty() ? "must not be empty" : "";
}

CLI::Option* add_place(CLI::App& app, const char* name, const char* type, std::string& place,
                       const char* description) {
    return app.add_option(name, place, description)->type_name(type)->check(reject_empty);
}

void add_report_options(CLI::App& app, command_line& line) {
    app.add_flag("--json", line.json, "Print JSON Lines, an object a record");
    app.add_flag("-q,--quiet", line.quiet,
                 "Print nothing for people but errors: no table, no\n"
                 "summary, no progress");
    add_place(app, "-o,--output", "FILE", line.output,
              "Where the table or the JSON Lines go (default: the\n"
              "standard output)");
}

void add_run_options(CLI::App& app, command_line& line) {
    app.add_flag("--batch", line.batch,
                 "Run all records through one tshark, without the plug-in:\n"
                 "the same results, much faster");
    add_place(app, "--plugin", "FILE", line.plugin,
              "The plug-in (default: kivra-tshark-sink.so beside\n"
              "this program, or in ../lib/kivra from there)")
        ->excludes("--batch");
    add_place(app, "--tshark-directory", "DIR", line.tshark_directory,
              "The folder of tshark (default: the first on PATH\n"
              "that has it)");
    add_place(app, "--profile", "FILE", line.profile,
              "The power-profile parameter file to write\n"
              "(default: kivra-profile.json)");
}

options options_of(const command_line& line) {
    if (std::ranges::count(line.captures, "-") > 1) {
        throw std::runtime_error("the standard input can be read only once");
    }
    return {.plugin = line.plugin,
            .tshark_directory = line.tshark_directory,
            .profile = line.profile,
            .output = line.output,
            .batch = line.batch,
            .json = line.json,
            .quiet = line.quiet,
            .captures = {line.captures.begin(), line.captures.end()}};
}

}  // namespace

std::variant<options, std::string> read_command_line(int count, const char* const* arguments) {
    CLI::App app(
        "Replays captures through kivra-tshark-sink and shows what it makes of each record.",
        "kivra-replay");
    command_line line;
    app.add_option("CAPTURE", line.captures,
                   "pcap or pcapng files of exported PDUs or raw IP packets\n"
                   "(link types 252, 101, 228, 229), one stream in the order\n"
                   "given; - for the standard input")
        ->required()
        ->type_name("")
        ->check(reject_empty);
    add_report_options(app, line);
    add_run_options(app, line);
    app.set_version_flag("--version", "kivra-replay " KIVRA_VERSION);
    app.footer(exit_statuses);

    try {
        app.parse(count, arguments);
    } catch (const CLI::CallForHelp&) {
        return app.help();
    } catch (const CLI::CallForVersion&) {
        return app.version() + "\n";
    } catch (const CLI::ParseError& error) {
        throw std::runtime_error(std::string(error.what()) + " (see kivra-replay --help)");
    }
    return options_of(line);
}

}  // namespace KIVRA::TSHARK::REPLAY
