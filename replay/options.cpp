#include "replay/options.h"

#include <stdexcept>

#include <CLI/CLI.hpp>

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr const char* exit_statuses =
    "Exit status:\n"
    "  0  every record went through\n"
    "  1  some records failed\n"
    "  2  the run could not start, or could not go on to the end";

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
    std::vector<std::string> captures;

    app.add_option("CAPTURE", captures,
                   "pcap or pcapng files of exported PDUs or raw IP packets\n"
                   "(link types 252, 101, 228, 229)")
        ->required()
        ->type_name("")
        ->check(reject_empty);
    app.add_option("--plugin", plugin,
                   "The plug-in (default: kivra-tshark-sink.so beside\n"
                   "this program, or in ../lib/kivra from there)")
        ->type_name("FILE")
        ->check(reject_empty);
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
    return options{plugin, tshark_directory, profile, {captures.begin(), captures.end()}};
}

}  // namespace KIVRA::TSHARK::REPLAY
