// halyrigctl: a look at the suite's record from the command line.
#include <CLI/CLI.hpp>
#include <cstdio>

#include "halyrigctl/commands.h"

int main(int argc, char** argv) {
    CLI::App app("Looks at the data that the programs of the suite share, and asks them to close.", "halyrigctl");
    app.set_version_flag("--version", "halyrigctl " HALYRIG_VERSION);
    app.require_subcommand(1);

    const auto system = twr::MakeSystem(twr::UserRoots());
    int status = 0;

    auto form = twr::TableForm::kText;
    CLI::App* channels = app.add_subcommand("channels", "List the channels that the suite knows");
    const auto formFlag = [&](const char* name, const char* help, twr::TableForm value) {
        return channels->add_flag_callback(
            name, [&form, value] { form = value; }, help);
    };
    formFlag("--tsv", "As tab-separated values", twr::TableForm::kTsv)
        ->excludes(formFlag("--json", "As JSON", twr::TableForm::kJson));
    channels->callback([&] { status = twr::ListChannels(system->GetConsole(), form); });

    std::string wanted;
    unsigned boat = 0;
    CLI::App* get = app.add_subcommand("get", "Show one channel, or why it has no value");
    get->add_option("ID", wanted, "The channel's number, short name, or name of your own")->required();
    get->add_option("--boat", boat, "Boat 0 to 99; 0 is the own boat")->check(CLI::Range(0u, twr::kBoatCount - 1));
    get->callback([&] { status = twr::GetChannelValue(*system, wanted, boat); });

    twr::WatchOptions watch;
    CLI::App* watchCommand = app.add_subcommand("watch", "Show what is published, live, until Ctrl-C");
    watchCommand->add_option("--interval", watch.intervalMs, "Milliseconds between two looks")->check(CLI::Range(50, 3600000));
    watchCommand->add_option("--snapshots", watch.snapshots, "End after so many looks")->check(CLI::PositiveNumber);
    watchCommand->callback([&] { status = twr::Watch(*system, watch); });

    app.add_subcommand("quit", "Ask every program of the suite to close")->callback([&] { status = twr::Quit(*system); });

    CLI11_PARSE(app, argc, argv);
    return status;
}
