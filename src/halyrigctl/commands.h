// The commands of halyrigctl. Each gives the exit status: 0 done, 1 not (the reason is on standard error), 2 asked for the
// impossible.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "core/core.h"
#include "platform/system.h"

namespace twr {

// Runs the command that the arguments name. What can't be understood is told on standard error, with a status above 2.
int RunCommandLine(System& system, std::vector<std::string> arguments);

enum class TableForm { kText, kTsv, kJson };

// Prints the channel catalogue.
int ListChannels(Console& console, TableForm form);

// Prints one channel of one boat: value and age, or why there is none. The channel is named as FindChannel takes it.
int GetChannelValue(System& system, const std::string& wanted, BoatSlot boat);

struct WatchOptions {
    int intervalMs = 500;
    std::optional<int> snapshots;  // end after so many
};

// Shows the published channels of the own boat until the user or the suite asks to stop: a live table on a terminal, else one plain
// table after another.
int Watch(System& system, const WatchOptions& options);

// Asks every program of the suite to close.
int Quit(System& system);

}  // namespace twr
