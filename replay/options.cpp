#include "replay/options.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include <CLI/CLI.hpp>

#include "replay/record/path_text.h"

namespace KIVRA::TSHARK::REPLAY {

namespace {

constexpr const char* exit_statuses =
    "Exit status:\n"
    "  0    every record went through\n"
    "  1    some records failed, or a capture holds no record\n"
    "  2    the run could not start, or could not go on to the end\n"
    "  130  interrupted, as shells show a program that SIGINT ended";

/// The options as CLI11 reads them.
struct command_line {
    bool session = false;
    bool json = false;
    bool all = false;
    bool quiet = false;
    bool each = false;
    bool recursive = false;
    bool from_tables = false;
    bool watch = false;
    std::size_t jobs = 0;
    std::string table;
    std::string output;
    std::string summary;
    std::string report;
    std::string plugin;
    std::string tshark_directory;
    std::string profile;
    bool temporary_profile = false;
    bool one_of_many = false;
    std::vector<std::string> user_link_types;
    std::vector<std::string> tshark_options;
    std::vector<std::string> captures;
    std::vector<std::string> compared;
};

std::string reject_empty(const std::string& value) {
    return value.empty() ? "must not be empty" : "";
}

std::string reject_standard_output(const std::string& value) {
    return value == "-" ? "must be a file" : "";
}

CLI::Option* add_place(CLI::App& app, const char* name, const char* type, std::string& place,
                       const char* description) {
    return app.add_option(name, place, description)->type_name(type)->check(reject_empty);
}

void add_report_options(CLI::App& app, command_line& line) {
    app.add_flag("--json", line.json, "Print JSON Lines, an object a record");
    app.add_flag("--all", line.all,
                 "Show every record in the table, also those that tell\n"
                 "nothing new");
    app.add_flag("-q,--quiet", line.quiet,
                 "Print nothing for people but errors: no table, no\n"
                 "summary, no progress");
    add_place(app, "-o,--output", "FILE", line.output,
              "Where the table or the JSON Lines go (default: the\n"
              "standard output)");
    add_place(app, "--summary", "FILE", line.summary,
              "Write the summary of the run to this file, as JSON");
    auto* const report = add_place(app, "--report", "FILE", line.report,
                                   "Write all of the run to this file, as a web page with a\n"
                                   "timeline")
                             ->check(reject_standard_output);
    app.add_option("--compare", line.compared,
                   "A capture that the page shows beside the others, with\n"
                   "what differs; repeatable")
        ->type_name("CAPTURE")
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->check(reject_empty)
        ->needs(report);
}

void add_run_options(CLI::App& app, command_line& line) {
    auto* const plugin = add_place(app, "--plugin", "FILE", line.plugin,
                                   "Run the records through this plug-in, with a tshark for\n"
                                   "each (default: in this program, by the same rules, with\n"
                                   "one tshark for all of them)");
    app.add_flag("--session", line.session, "Let the plug-in use one tshark for all records")
        ->needs(plugin);
    add_place(app, "--tshark-directory", "DIR", line.tshark_directory,
              "The folder of tshark (default: the first on PATH\n"
              "that has it)");
    add_place(app, "--profile", "FILE", line.profile,
              "The power-profile parameter file to write\n"
              "(default: kivra-profile.json)");
    // For the runs of --each: a group without a name is not in the help.
    app.add_flag("--temporary-profile", line.temporary_profile)->group("");
    app.add_flag("--one-of-many", line.one_of_many)->group("");
}

void add_fleet_options(CLI::App& app, command_line& line) {
    auto* const each = app.add_flag("--each", line.each,
                                    "Run each capture as a trace of its own, and those in\n"
                                    "folders, with a line for each. --summary, --profile\n"
                                    "and --report name folders then, for those of every\n"
                                    "capture; the latter gets an overview, index.html");
    app.add_flag("--recursive", line.recursive, "With --each, look into folders within folders")
        ->needs(each);
    app.add_option("--jobs", line.jobs,
                   "With --each, how many captures at a time (default: as\n"
                   "many as there are cores)")
        ->type_name("N")
        ->check(CLI::Range(1, 1024))
        ->needs(each);
    add_place(app, "--table", "FILE", line.table,
              "With --each, write a table to this file, as CSV with a\n"
              "row a capture")
        ->check(reject_standard_output)
        ->needs(each);
    app.add_flag("--from-tables", line.from_tables,
                 "With --each, take the rows of tables that were written\n"
                 "before, instead of captures, and run nothing")
        ->needs(each);
    app.add_flag("--watch", line.watch,
                 "With --each, run also the captures that come into the\n"
                 "folder, until interrupted; --table says which are done")
        ->needs(each);
}

void add_extraction_options(CLI::App& app, command_line& line) {
    // One value each time: the captures behind it are none.
    app.add_option("--user-dlt", line.user_link_types,
                   "What a link type for private use (147 to 162) holds, by\n"
                   "the dissector's name, as 149=mac-lte-framed; repeatable")
        ->type_name("N=PROTOCOL")
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_option("--tshark-option", line.tshark_options,
                   "A further argument for the tshark that reads captures,\n"
                   "as it stands; repeatable")
        ->type_name("ARGUMENT")
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

/// @param text "149=mac-lte-framed"
user_link_type read_user_link_type(const std::string& text) {
    const auto mark = std::min(text.find('='), text.size());
    user_link_type result;
    const char* const end = text.data() + mark;
    const auto [behind, error] = std::from_chars(text.data(), end, result.number);
    result.protocol = text.substr(std::min(mark + 1, text.size()));
    // A quotation mark or a comma would end the field in tshark's own table.
    if (error != std::errc() || behind != end || result.number < first_user_link_type ||
        result.number > last_user_link_type || result.protocol.empty() ||
        result.protocol.find_first_of("\",") != std::string::npos) {
        throw std::runtime_error(
            "--user-dlt " + text + " is not of the form N=PROTOCOL with N from " +
            std::to_string(first_user_link_type) + " to " + std::to_string(last_user_link_type));
    }
    return result;
}

extraction_options extraction_options_of(const command_line& line) {
    extraction_options options{.tshark_options = line.tshark_options};
    for (const auto& text : line.user_link_types) {
        options.user_link_types.push_back(read_user_link_type(text));
    }
    return options;
}

void refuse(bool given, const std::string& why) {
    if (given) {
        throw std::runtime_error(why);
    }
}

/// What is of captures that are run.
void check_joining(const command_line& line) {
    const std::vector<std::pair<const char*, bool>> options{
        {"--recursive", line.recursive},
        {"--watch", line.watch},
        {"--jobs", line.jobs != 0},
        {"--summary", !line.summary.empty()},
        {"--profile", !line.profile.empty()},
        {"--plugin", !line.plugin.empty()},
        {"--tshark-directory", !line.tshark_directory.empty()},
        {"--user-dlt", !line.user_link_types.empty()},
        {"--tshark-option", !line.tshark_options.empty()}};
    for (const auto& [name, given] : options) {
        refuse(given,
               std::string(name) + " is for captures that are run, and --from-tables runs none");
    }
}

void check_watching(const command_line& line) {
    refuse(line.table.empty(), "--watch needs --table, which says what captures are done");
    refuse(!line.profile.empty(), "--profile is not for --watch, which keeps summaries alone");
    refuse(!line.report.empty(),
           "--report is not for --watch; make one of its table with --from-tables");
    refuse(line.captures.size() != 1, "--watch is for one folder");
}

/// What makes no sense with --each.
void check_fleet(const command_line& line) {
    refuse(line.json, "--json goes with one stream of records; with --each, use --summary DIR");
    refuse(line.all, "--all goes with one stream of records, and not with --each");
    refuse(!line.compared.empty(),
           "--compare sets one stream of records beside another; with --each there are several");
    refuse(std::ranges::count(line.captures, "-") != 0,
           "--each reads files and folders, and not the standard input");
}

options options_of(const command_line& line) {
    if (line.each) {
        check_fleet(line);
    }
    if (line.from_tables) {
        check_joining(line);
    }
    if (line.watch) {
        check_watching(line);
    }
    if (std::ranges::count(line.captures, "-") + std::ranges::count(line.compared, "-") > 1) {
        throw std::runtime_error("the standard input can be read only once");
    }
    options wanted{.plugin = path_of(line.plugin),
                   .session = line.session,
                   .tshark_directory = path_of(line.tshark_directory),
                   .profile = path_of(line.profile.empty() && !line.each ? "kivra-profile.json"
                                                                         : line.profile),
                   .temporary_profile = line.temporary_profile,
                   .one_of_many = line.one_of_many,
                   .output = path_of(line.output),
                   .summary = path_of(line.summary),
                   .report = path_of(line.report),
                   .each = line.each,
                   .recursive = line.recursive,
                   .jobs = line.jobs,
                   .table = path_of(line.table),
                   .from_tables = line.from_tables,
                   .watch = line.watch,
                   .json = line.json,
                   .all = line.all,
                   .quiet = line.quiet,
                   .extraction = extraction_options_of(line),
                   .captures = {},
                   .compared = {}};
    std::ranges::transform(line.captures, std::back_inserter(wanted.captures), path_of);
    std::ranges::transform(line.compared, std::back_inserter(wanted.compared), path_of);
    return wanted;
}

}  // namespace

std::variant<options, std::string> read_command_line(std::vector<std::string> arguments) {
    CLI::App app(
        "Replays captures as kivra-tshark-sink analyses them and shows what comes of each record.",
        "kivra-replay");
    // On Windows as well, "/captures/1.pcap" is a file.
    app.allow_windows_style_options(false);
    command_line line;
    app.add_option("CAPTURE", line.captures,
                   "Files that Wireshark can open, one stream in the order\n"
                   "given; - for the standard input")
        ->required()
        ->type_name("")
        ->check(reject_empty);
    add_report_options(app, line);
    add_run_options(app, line);
    add_extraction_options(app, line);
    add_fleet_options(app, line);
    app.set_version_flag("--version", "kivra-replay " KIVRA_VERSION);
    app.footer(exit_statuses);

    try {
        // The library takes them from the back.
        std::ranges::reverse(arguments);
        app.parse(std::move(arguments));
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
