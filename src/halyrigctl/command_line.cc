#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "halyrigctl/commands.h"

namespace twr {
namespace {

// The parser misses the command first, and only then minds the word that stands in its place.
std::string Complaint(const CLI::App* app, const CLI::Error& error) {
    const auto unknown = app->remaining();
    if (unknown.empty() || !app->get_subcommands().empty()) return CLI::FailureMessage::simple(app, error);
    return "halyrigctl: there is no command or option " + unknown.front() + "; 'halyrigctl --help' lists them\n";
}

}  // namespace

int RunCommandLine(System& system, std::vector<std::string> arguments) {
    CLI::App app("Looks at the data that the programs of the suite share, and asks them to close.", "halyrigctl");
    app.set_version_flag("--version", "halyrigctl " HALYRIG_VERSION);
    app.require_subcommand(1);
    app.failure_message(Complaint);
    int status = 0;

    auto form = TableForm::kText;
    CLI::App* channels = app.add_subcommand("channels", "List the channels that the suite knows");
    const auto formFlag = [&](const char* name, const char* help, TableForm value) {
        return channels->add_flag_callback(
            name, [&form, value] { form = value; }, help);
    };
    formFlag("--tsv", "As tab-separated values", TableForm::kTsv)->excludes(formFlag("--json", "As JSON", TableForm::kJson));
    channels->callback([&] { status = ListChannels(system.GetConsole(), form); });

    std::string wanted;
    unsigned boat = 0;
    CLI::App* get = app.add_subcommand("get", "Show one channel, or why it has no value");
    get->add_option("ID", wanted, "The channel's number, short name, or name of your own")->required();
    get->add_option("--boat", boat, "Boat 0 to 99; 0 is the own boat")->check(CLI::Range(0u, kBoatCount - 1));
    get->callback([&] { status = GetChannelValue(system, wanted, boat); });

    WatchOptions watch;
    CLI::App* watchCommand = app.add_subcommand("watch", "Show what is published, live, until Ctrl-C");
    watchCommand->add_option("--interval", watch.intervalMs, "Milliseconds between two looks")->check(CLI::Range(50, 3600000));
    watchCommand->add_option("--snapshots", watch.snapshots, "End after so many looks")->check(CLI::Range(1, 1000000));
    watchCommand->callback([&] { status = Watch(system, watch); });

    app.add_subcommand("quit", "Ask every program of the suite to close")->callback([&] { status = Quit(system); });

    try {
        std::ranges::reverse(arguments);  // the parser takes them from the back
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        std::ostringstream out, complaint;
        status = app.exit(error, out, complaint);
        system.GetConsole().Write(out.str());
        system.GetConsole().WriteError(complaint.str());
    }
    return status;
}

}  // namespace twr
