// SPDX-License-Identifier: MIT
#include "halyrigctl/map/map_command_line.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "base/no_value.h"

namespace twr {
namespace {

class PairsForm : public CLI::Formatter {
    std::string make_option_usage(const CLI::Option*) const override { return "VARIABLE CHANNEL [VARIABLE CHANNEL]..."; }
};

// The parser's own form would be "CHANNEL(1x)".
class ChannelBehindVariableForm : public CLI::Formatter {
    std::string make_option_usage(const CLI::Option*) const override { return "[VARIABLE] CHANNEL"; }
};

using Run = Status (*)(System&, const MapOptions&);

// Adds the commands below 'map', which fill in what is shared by all.
class MapCommands {
public:
    MapCommands(CLI::App& map, System& system, Status& status)
        : map_(map), system_(system), status_(status), options_(std::make_shared<MapOptions>()) {}

    CLI::App* Command(const char* name, const char* help, const char* example, Run run) {
        CLI::App* command = map_.add_subcommand(name, help);
        command->footer(std::string("Example: halyrigctl map ") + example);
        command->callback([run, options = options_, &system = system_, &status = status_] { status = run(system, *options); });
        return command;
    }

    // VARIABLE CHANNEL, once or more
    void Pairs(CLI::App* command) {
        command
            ->add_option("CHANNEL", options_->pairs,
                         "Deckman's variable, by its name, capitals included, or its number, and the channel, as 'get' takes it")
            ->required()
            ->expected(2, 1000)
            ->option_text("TEXT ... REQUIRED");
        command->formatter(std::make_shared<PairsForm>());
    }

    void Remote(CLI::App* command) {
        command->add_option("REMOTE", options_->remote, "Deckman's number of the remote, from 1")
            ->required()
            ->check(CLI::Range(1, kNoInt - 1));
    }

    void Channel(CLI::App* command) {
        command->add_option("CHANNEL", options_->channel, "The channel's number, short name, or the name that you gave it")
            ->required();
    }

    // [VARIABLE] CHANNEL
    void ChannelBehindVariable(CLI::App* command) {
        command
            ->add_option_function<std::vector<std::string>>(
                "CHANNEL",
                [options = options_](const std::vector<std::string>& typed) {
                    options->channel = typed.back();
                    if (typed.size() > 1) options->variable = typed.front();
                },
                "The channel, as 'get' takes it; with a variable before it only what that one feeds")
            ->required()
            ->expected(1, 2)
            ->option_text("TEXT ... REQUIRED");
        command->formatter(std::make_shared<ChannelBehindVariableForm>());
    }

    void Boat(CLI::App* command) {
        command->add_option("--boat", options_->boat, "Boat 0 to 99; 0 is the own boat")->check(CLI::Range(0u, kBoatCount - 1));
    }

    void Damped(CLI::App* command) {
        command->add_flag("--damped", options_->damped, "The damped value, if a program of the suite damps");
    }

    const std::shared_ptr<MapOptions>& Options() const { return options_; }

private:
    CLI::App& map_;
    System& system_;
    Status& status_;
    const std::shared_ptr<MapOptions> options_;
};

}  // namespace

void AddMap(CLI::App& app, System& system, Status& status) {
    CLI::App* map = app.add_subcommand("map", "Show the mapping with the values of now, or change it");
    MapCommands commands(*map, system, status);
    map->add_flag("--json", commands.Options()->json, "As JSON, with null for a missing text");
    map->require_subcommand(0, 1);
    map->footer("Example: halyrigctl map suggest");
    map->callback([map, &system, &status, options = commands.Options()] {
        if (map->get_subcommands().empty()) status = ListMap(system, options->json);
    });

    CLI::App* suggest =
        commands.Command("suggest", "Propose what maps the variables that are not mapped yet", "suggest --apply", SuggestMap);
    CLI::Option* apply = suggest->add_flag("--apply", commands.Options()->apply, "Add it to the mapping, after one question");
    suggest->add_flag("--yes", commands.Options()->yes, "Without the question")->needs(apply);

    CLI::App* add = commands.Command("add", "Let variables of Deckman's feed channels", "add HDG HDG BSP 1", AddToMap);
    commands.Pairs(add);
    commands.Boat(add);

    CLI::App* addRemote = commands.Command("add-remote", "Show a channel on a remote", "add-remote 1 BSP --damped", AddRemoteToMap);
    commands.Remote(addRemote);
    commands.Channel(addRemote);
    commands.Boat(addRemote);
    commands.Damped(addRemote);

    CLI::App* remove = commands.Command("remove", "Remove the line that feeds a channel", "remove HDG", RemoveFromMap);
    commands.ChannelBehindVariable(remove);
    commands.Boat(remove);

    commands.Remote(commands.Command("remove-remote", "Remove the line of a remote", "remove-remote 1", RemoveRemoteFromMap));
}

}  // namespace twr
