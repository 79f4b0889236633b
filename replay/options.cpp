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
    "  130  interrupted";

std::string reject_empty(const std::string& value) {
    return value.empty() ? "must not be empty" : "";
}

}  // namespace

std::variant<options, std::string> read_command_line(int count, const char* const* arguments) {
    CLI::App app(
        "Replays captures through kivra-tshark-sink and shows what it makes of each record.",
        "kivra-replay");
    std::string plugin;
    std::string tshark_directory;
    std::string profile = "kivra-profile.json";
    std::string output;
    options wanted;
    std::vector<std::string> captures;

    app.add_option("CAPTURE", captures,
                   "pcap or pcapng files of exported PDUs or raw IP packets\n"
                   "(link types 252, 101, 228, 229), one stream in the order\n"
                   "given; - for the standard input")
        ->required()
        ->type_name("")
        ->check(reject_empty);
    app.add_flag("--batch", wanted.batch,
                 "Run all records through one tshark, without the plug-in:\n"
                 "the same results, much faster");
    app.add_flag("--json", wanted.json, "Print JSON Lines, an object a record");
    app.add_flag("-q,--quiet", wanted.quiet,
                 "Print nothing for people but errors: no table, no\n"
                 "summary, no progress");
    app.add_option("-o,--output", output,
                   "Where the table or the JSON Lines go (default: the\n"
                   "standard output)")
        ->type_name("FILE")
        ->check(reject_empty);
    app.add_option("--plugin", plugin,
                   "The plug-in (default: kivra-tshark-sink.so beside\n"
                   "this program, or in ../lib/kivra from there)")
        ->type_name("FILE")
        ->check(reject_empty)
        ->excludes("--batch");
    app.add_option("--tshark-directory", tshark_directory,
                   "The folder of tshark (default: the first on PATH\n"
                   "that has it)")
        ->type_name("DIR")
        ->check(reject_empty);
    app.add_option("--profile", profile,
                   "The power-profile parameter file to write\n"
                   "(default: kivra-profile.json)")
        ->type_name("FILE")
        ->check(reject_empty);
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
    if (std::ranges::count(captures, "-") > 1) {
        throw std::runtime_error("the standard input can be read only once");
    }
    wanted.plugin = plugin;
    wanted.tshark_directory = tshark_directory;
    wanted.profile = profile;
    wanted.output = output;
    wanted.captures = {captures.begin(), captures.end()};
    return wanted;
}

}  // namespace KIVRA::TSHARK::REPLAY
