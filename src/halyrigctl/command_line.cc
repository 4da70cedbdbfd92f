// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <sstream>

#include "base/numbers.h"
#include "base/version.h"
#include "base/wide_text.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/map/map_command_line.h"
#include "halyrigctl/setup/names.h"
#include "platform/files.h"
#include "streams/stream_format.h"

namespace twr {
namespace {

// The command line as it is understood: options are filled in while it is parsed, and the command is run at its end.
struct Commands {
    explicit Commands(System& ofUser) : system(ofUser) {}

    System& system;
    CLI::App app{
        "Checks the set-up of the bridge, shows and explains the data that the programs of the suite share, streams and records "
        "it.",
        "halyrigctl"};
    TableForm form = TableForm::kText;
    bool live = false;
    GetOptions get;
    ExplainOptions explain;
    CheckOptions check;
    BoatsOptions boats;
    std::string chosen;  // folder
    WatchOptions watch;
    StreamOptions stream;
    ServeOptions serve;
    RecordOptions record;
    ReplayOptions replay;
    InfoOptions info;
    ExportOptions exported;
    ReportOptions report;
    QuitOptions quit;
    Status status = kDone;
};

// The line that ends the help of a command.
void SetExample(CLI::App* command, const std::string& typed) { command->footer("Example: halyrigctl " + typed); }

void AddChannels(Commands& all) {
    CLI::App* command = all.app.add_subcommand("channels", "List the channels that the suite knows");
    const auto formFlag = [&](const char* name, const char* help, TableForm form) {
        return command->add_flag_callback(
            name, [&all, form] { all.form = form; }, help);
    };
    formFlag("--tsv", "As tab-separated values", TableForm::kTsv)
        ->excludes(formFlag("--json", "As JSON, with null for a missing value", TableForm::kJson));
    command->add_flag(
        "--live", all.live,
        "What is in force now: names of your own, type, decimals, damping, log mark, whether published, blocked or held");
    command->callback([&all] {
        all.status = all.live ? ListLiveChannels(all.system, all.form) : ListChannels(all.system.GetConsole(), all.form);
    });
    SetExample(command, "channels --live");
}

void AddGet(Commands& all) {
    CLI::App* command = all.app.add_subcommand("get", "Show channels, or why they have no value");
    command->add_option("ID", all.get.channels, "The channel's number, short name, or the name that you gave it")->required();
    command->add_option("--boat", all.get.boat, "Boat 0 to 99; 0 is the own boat")->check(CLI::Range(0u, kBoatCount - 1));
    command->add_flag("--json", all.get.json,
                      "As JSON, a line for each channel, with the reason why there is no value as \"missing\"");
    command->callback([&all] { all.status = GetChannelValues(all.system, all.get); });
    SetExample(command, "get BSP HDG --json");
}

void AddExplain(Commands& all) {
    CLI::App* command = all.app.add_subcommand("explain", "Explain link by link where values come from, or why there are none");
    command->add_option("CHANNEL", all.explain.channels,
                        "The channel's number, short name, or the name that you gave it; without one, all that the mapping names");
    command->add_option("--boat", all.explain.boat, "Boat 0 to 99; 0 is the own boat")->check(CLI::Range(0u, kBoatCount - 1));
    command->add_flag("--links", all.explain.links, "Each link of every channel, even if none is named");
    command->add_flag("--json", all.explain.json, "As JSON, a line for each channel, with each link");
    command->callback([&all] { all.status = Explain(all.system, all.explain); });
    SetExample(command, "explain HDG");
}

void AddCheck(Commands& all) {
    CLI::App* command = all.app.add_subcommand("check", "Check all files and settings that the bridge reads, without a change");
    command->add_option("FOLDER", all.check.folder, "Deckman's folder, in place of the one in force or saved");
    CLI::Option* json = command->add_flag("--json", all.check.json, "As one JSON object, with null for a missing value");
    command->add_flag("--summary", all.check.summary, "In a few lines, for a journal")->excludes(json);
    command->callback([&all] { all.status = Check(all.system, all.check); });
    SetExample(command, "check");
}

void AddChoose(Commands& all) {
    CLI::App* command = all.app.add_subcommand("choose", "Choose Deckman's folder for the next start of the bridge");
    command->add_option("FOLDER", all.chosen, "The folder with Deckman's library")->required();
    command->callback([&all] { all.status = ChooseFolder(all.system, all.chosen); });
    SetExample(command, kPathSeparator == u'/' ? "choose /usr/lib/halyrig" : "choose C:\\Deckman");
}

void AddBoats(Commands& all) {
    CLI::App* command = all.app.add_subcommand("boats", "List the boats that are in use, named or known by an MMSI");
    command->add_flag("--all", all.boats.all, "All 100 boats");
    command->add_flag("--json", all.boats.json, "As JSON, with null for a missing value");
    command->callback([&all] { all.status = ListBoats(all.system, all.boats); });
    SetExample(command, "boats --all");
}

void AddWatch(Commands& all) {
    CLI::App* command = all.app.add_subcommand(
        "watch", "Show channels live, or why they have no value, until q, Esc or Ctrl-C; plain text if not on a terminal");
    command->add_option("CHANNEL", all.watch.channels,
                        "Only these, by number or name, even if never published; without any, all that are published");
    command->add_option("--boat", all.watch.boat, "Boat 0 to 99; 0 is the own boat")->check(CLI::Range(0u, kBoatCount - 1));
    command->add_option("--only", "'mapped': only channels that the mapping feeds, even if never published")
        ->check(CLI::IsMember({"mapped"}))
        ->each([&all](const std::string&) { all.watch.onlyMapped = true; });
    command->add_option("--sort", "By 'id', 'name' or 'age', the oldest first; the key s changes it")
        ->check(CLI::IsMember({"id", "name", "age"}))
        ->each([&all](const std::string& order) {
            all.watch.order = order == "id" ? RowOrder::kId : order == "name" ? RowOrder::kName : RowOrder::kAge;
        });
    command->add_option("--interval", all.watch.intervalMs, "Milliseconds between two readings")->check(CLI::Range(50, 3600000));
    command->add_option("--snapshots", all.watch.snapshots, "Plain text, and end after this number of readings")
        ->check(CLI::Range(1, 1000000));
    command->callback([&all] { all.status = Watch(all.system, all.watch); });
    SetExample(command, "watch --only mapped --sort name");
}

void AddChannelList(CLI::App* command, std::vector<std::string>& channels) {
    command->add_option("--channels", channels, "Only these, with commas or blanks between them, as 'halyrigctl get' takes them")
        ->type_name("CHANNEL");
}

bool LooksLikeAFile(const std::string& text) {
    const std::size_t field = text.find('%');
    return text.find_first_of("./\\") != text.npos ||
           (field + 1 < text.size() && field != text.npos && std::isalpha(text[field + 1]));
}

// The parser takes files that stand behind a list of channels for some of these. If one is needed, the last of them is it.
std::vector<std::string> FilesBehind(std::vector<std::string>& channels, bool needed) {
    std::vector<std::string> files;
    while (!channels.empty() && (LooksLikeAFile(channels.back()) || (needed && files.empty()))) {
        files.insert(files.begin(), channels.back());
        channels.pop_back();
    }
    if (needed && files.empty()) throw CLI::RequiredError("FILE");
    return files;
}

// What the help says of the formats of a stream.
struct FormatsHelp {
    FormatsHelp() {
        const std::span<const StreamFormatRow> rows = StreamFormats();
        for (const StreamFormatRow& row : rows) {
            if (!known.empty()) names += &row == &rows.back() ? " or " : ", ";
            names += Printed("%s (%s)", row.name, row.help);
            if (row.rate != rows.front().rate) rates += Printed(", %g for %s", row.rate, row.name);
            known.emplace_back(row.name);
        }
        rates.insert(0, Printed("Looks a second: %g unless given", rows.front().rate));
    }
    std::vector<std::string> known;
    std::string names, rates;
};

void AddStream(Commands& all) {
    CLI::App* command = all.app.add_subcommand("stream", "Write what is published, as it is published, until Ctrl-C");
    StreamOptions& options = all.stream;
    const FormatsHelp formats;
    command->add_option("--format", options.format, formats.names)->check(CLI::IsMember(formats.known))->type_name("FORMAT");
    AddChannelList(command, options.channels);
    command->add_option("--boat", options.boat, "Boat 0 to 99 alone; 0 is the own boat")->check(CLI::Range(0u, kBoatCount - 1));
    command->add_option("--rate", options.rate, formats.rates)->check(CLI::Range(0.1, 10.0));
    command->add_flag("--all", options.all, "Unchanged values once a second too");
    command
        ->add_option("--talker", options.talkers,
                     "Of sentences: who they say they come from, II unless given; 'gps=GP' for those of the GPS alone")
        ->check(CLI::Validator(
            [](const std::string& typed) {
                Talkers talkers;
                return TakeTalker(talkers, typed) ? std::string()
                                                  : "'" + typed + "' is no talker; give two capitals, such as II, or gps=GP";
            },
            ""))
        ->allow_extra_args(false)
        ->type_name("XX");
    command->add_option("--seconds", options.seconds, "End after this time")->check(CLI::Range(1, 1000000));
    command->add_option("--listen", options.listen, "Serve clients that connect by TCP, in place of standard output")
        ->type_name("[HOST:]PORT");
    command->add_option("--udp", options.udp, "Send datagrams there, in place of standard output")->type_name("[HOST:]PORT");
    command->add_flag("--allow-remote", options.allowRemote, "Beyond this machine, where anyone can read the data");
    command->callback([&all] { all.status = Stream(all.system, all.stream); });
    SetExample(command, "stream --format nmea --seconds 60");
}

void AddServe(Commands& all) {
    CLI::App* command = all.app.add_subcommand("serve", "Show the instruments on every phone and tablet aboard, until Ctrl-C");
    ServeOptions& options = all.serve;
    command->add_option("--listen", options.listen, "Where browsers connect, 127.0.0.1:8377 unless given")
        ->type_name("[HOST:]PORT");
    command->add_flag("--allow-remote", options.allowRemote, "Beyond this machine, where anyone can read the data");
    command->add_option("--name", options.name, "In place of the boat's name")->type_name("NAME");
    command
        ->add_option("--allow-origin", options.allowOrigin,
                     "Let pages from elsewhere read the data, such as https://example.org; * for all")
        ->type_name("ORIGIN");
    command->callback([&all] { all.status = Serve(all.system, all.serve); });
    SetExample(command, "serve --listen 0.0.0.0:8377 --allow-remote");
}

void AddRecord(Commands& all) {
    CLI::App* command = all.app.add_subcommand("record", "Record what is published to a file, until Ctrl-C");
    RecordOptions& options = all.record;
    command->add_option(
        "FILE", options.file,
        "Where to; never over a file that exists. With %Y %m %d %H %M %S for date and time, a new one whenever they give "
        "another name. Without FILE, one a day in the folder 'recordings' of the data folder, packed");
    AddChannelList(command, options.channels);
    command->add_option("--boat", options.boat, "Boat 0 to 99 alone; 0 is the own boat")->check(CLI::Range(0u, kBoatCount - 1));
    command->add_flag("--gzip", options.gzip, "Packed, to about a tenth");
    command->add_option("--max-size", options.maxSize, "A new file once one has this size, such as 500M or 2G")
        ->transform(CLI::AsSizeValue(false))
        ->type_name("SIZE");
    command
        ->add_option("--keep", options.keep,
                     "Without FILE: remove the oldest beyond so many days, such as 30, or so much, such as 4G")
        ->type_name("DAYS|SIZE");
    command->callback([&all] {
        const auto files = all.record.file.empty() ? FilesBehind(all.record.channels, false) : std::vector<std::string>();
        if (!files.empty()) all.record.file = files.back();
        all.status = Record(all.system, all.record);
    });
    SetExample(command, "record race-%Y%m%d.jsonl.gz --gzip");
}

void AddReplay(Commands& all) {
    CLI::App* command = all.app.add_subcommand(
        "replay", "Publish a recording, or a log of NMEA 0183, as if it were measured now: for rehearsing ashore");
    ReplayOptions& options = all.replay;
    command->add_option("FILE", options.file, "The recording; packed by gzip or not")->option_text("TEXT REQUIRED");
    command->add_option("--speed", options.speed, "So many times as fast, 0.1 to 1000")
        ->check(CLI::Range(0.1, 1000.0))
        ->type_name("N");
    command
        ->add_option("--from", options.from,
                     "Start at this time on board: 2026-11-25T12:30, or 12:30 if it is the first; with Z if it is in UTC; +2h from "
                     "the start")
        ->type_name("TIME");
    command->add_flag("--loop", options.loop, "Start again at the end");
    AddChannelList(command, options.channels);
    command->add_flag("--into", options.into, "Even beside a running bridge, whose values are then mixed with those recorded");
    command->callback([&all] {
        if (all.replay.file.empty()) all.replay.file = FilesBehind(all.replay.channels, true).back();
        all.status = ReplayRecording(all.system, all.replay);
    });
    SetExample(command, "replay race-20261125.jsonl.gz --from 12:30 --speed 10");
}

void AddInfo(Commands& all) {
    CLI::App* command =
        all.app.add_subcommand("info", "Show what is in recordings or logs of NMEA 0183, and what is wrong with them");
    command->add_option("FILE", all.info.files, "A recording or a log; packed by gzip or not")->required();
    command->add_flag("--json", all.info.json, "As one JSON object, with null for a missing value");
    command->callback([&all] { all.status = ShowRecording(all.system, all.info); });
    SetExample(command, "info race-20261125.jsonl.gz");
}

void AddSpan(CLI::App* command, std::string& from, std::string& to) {
    command->add_option("--from", from, "From this time on board: 2026-11-25T12:30, 12:30, with Z if it is in UTC, or +2h")
        ->type_name("TIME");
    command->add_option("--to", to, "To this time, likewise")->type_name("TIME");
}

void AddExport(Commands& all) {
    CLI::App* command =
        all.app.add_subcommand("export", "Write recordings or logs of NMEA 0183 as a table or a track for other programs");
    ExportOptions& options = all.exported;
    command->add_option("FILE", options.files, "A recording or a log; packed by gzip or not")->option_text("TEXT ... REQUIRED");
    command->add_option("--format", options.format, "csv, gpx (the track and the marks) or jsonl (an object for each row)")
        ->check(CLI::IsMember({"csv", "gpx", "jsonl"}))
        ->type_name("FORMAT");
    command->add_option("--every", options.every, "A row for each step of time, such as 100ms or 5min; 1s unless given")
        ->type_name("STEP");
    AddChannelList(command, options.channels);
    command->add_option("--boat", options.boat, "Boat 0 to 99 alone; 0 is the own boat")->check(CLI::Range(0u, kBoatCount - 1));
    AddSpan(command, options.from, options.to);
    command->add_option("--units", options.units, "Those of the user, internal or si; the user's unless given")
        ->check(CLI::IsMember({"user", "internal", "si"}))
        ->type_name("UNITS");
    command->add_option("--header", options.header, "'units': names with their units, such as BSP (kn)")
        ->check(CLI::IsMember({"names", "units"}))
        ->type_name("FORM");
    command->add_option("--zone", options.zone, "The times' zone, utc or board; utc unless given")
        ->check(CLI::IsMember({"utc", "board"}))
        ->type_name("ZONE");
    command->add_option("--decimal", options.decimal, "'comma' in place of the point, and semicolons between cells")
        ->check(CLI::IsMember({"point", "comma"}))
        ->type_name("SIGN");
    command->add_option("-o,--output", options.output, "To this file, which must not be there yet")->type_name("FILE");
    command->callback([&all] {
        if (all.exported.files.empty()) all.exported.files = FilesBehind(all.exported.channels, true);
        all.status = ExportRecording(all.system, all.exported);
    });
    SetExample(command, "export race-20261125.jsonl.gz --channels TWS,TWD,BSP -o race.csv");
}

void AddReport(Commands& all) {
    CLI::App* command = all.app.add_subcommand(
        "report", "Write what was sailed as a page that opens anywhere: track, charts, tacks and gybes, start, legs, speeds");
    ReportOptions& options = all.report;
    command->add_option("FILE", options.files, "A recording or a log; packed by gzip or not")->required();
    command->add_option("-o,--output", options.output, "To this file, which must not be there yet")->type_name("FILE")->required();
    command->add_option("--boat", options.boat, "Boat 0 to 99; 0, the own boat, unless given")
        ->check(CLI::Range(0u, kBoatCount - 1));
    AddSpan(command, options.from, options.to);
    command->callback([&all] { all.status = ReportRace(all.system, all.report); });
    SetExample(command, "report race-20261125.jsonl.gz --from 12:30 -o race.html");
}

void AddQuit(Commands& all) {
    CLI::App* command = all.app.add_subcommand("quit", "Ask every program of the suite to close, and wait until all have");
    command->add_flag_callback(
        "--no-wait", [&all] { all.quit.wait = false; }, "Do not wait");
    command->callback([&all] { all.status = Quit(all.system, all.quit); });
    SetExample(command, "quit --no-wait");
}

// The general help shows the example of each command.
void CollectExamples(CLI::App& app) {
    std::string examples = "Examples:";
    for (const CLI::App* command : app.get_subcommands({})) {
        const std::string line = command->get_footer();
        examples += "\n  " + line.substr(line.find("halyrigctl"));
    }
    app.footer(examples + "\n\n'halyrigctl COMMAND --help' explains a command.");
}

// The parser reports the missing command first, and only then the unknown word in its place.
std::string Complaint(const CLI::App& app, const CLI::Error& error) {
    std::string command;
    const CLI::App* innermost = &app;
    for (auto given = app.get_subcommands(); !given.empty(); given = innermost->get_subcommands()) {
        innermost = given.front();
        command += innermost->get_name() + " ";
    }
    const std::string help = "; see 'halyrigctl " + command + "--help'";
    if (innermost != &app) return error.what() + help;
    const auto unknown = app.remaining();
    if (unknown.empty()) return "a command is missing" + help;
    std::vector<std::u16string> names;
    for (const CLI::App* each : app.get_subcommands({})) names.push_back(FromUtf8(each->get_name()));
    const auto nearest = Nearest(FromUtf8(unknown.front()), names);
    return "there is no command or option " + unknown.front() + (nearest ? "; did you mean " + ToUtf8(*nearest) + "?" : help);
}

}  // namespace

Status RunCommandLine(System& system, std::vector<std::string> arguments) {
    Commands all(system);
    all.app.set_version_flag("--version", "halyrigctl " HALYRIG_VERSION);
    all.app.require_subcommand(1);
    AddChannels(all);
    AddGet(all);
    AddExplain(all);
    AddCheck(all);
    AddChoose(all);
    AddBoats(all);
    AddMap(all.app, system, all.status);
    AddWatch(all);
    AddStream(all);
    AddServe(all);
    AddRecord(all);
    AddReplay(all);
    AddInfo(all);
    AddExport(all);
    AddReport(all);
    AddQuit(all);
    CollectExamples(all.app);
    try {
        std::ranges::reverse(arguments);  // the parser takes them from the back
        all.app.parse(std::move(arguments));
        return all.status;
    } catch (const CLI::Success& asked) {
        std::ostringstream text;
        all.app.exit(asked, text);
        return Print(system.GetConsole(), text.str());
    } catch (const CLI::ParseError& error) {
        Complain(system.GetConsole(), Harmless(FromUtf8(Complaint(all.app, error))));
        return kMisunderstood;
    }
}

}  // namespace twr
