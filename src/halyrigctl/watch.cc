#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "core/days.h"
#include "core/shared_field.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/guest.h"
#include "platform/wide_text.h"

namespace twr {
namespace {

constexpr const char* kClear = "\x1b[H\x1b[J";

template <class... Arguments>
std::string Print(const char* format, Arguments... arguments) {
    char line[160];
    std::snprintf(line, sizeof line, format, arguments...);
    return line;
}

// One line for each channel that has ever been published for the own boat.
std::vector<std::string> Lines(const CoreRecord& record, double now) {
    std::vector<std::string> lines;
    for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
        const double time = Load(record.fullBlocks[0].time[channel]);
        if (time == 0.0) continue;
        const double value = Load(record.fullBlocks[0].value[channel]);
        const std::string shown = value == kNoValue ? "-" : Print("%.4f", value);
        lines.push_back(Print("%4u  %-12s %14s %8.1f s\n", channel, ToUtf8(ChannelCatalogue()[channel].name).c_str(), shown.c_str(),
                              (now - time) * kSecondsPerDay));
    }
    return lines;
}

std::string Table(const CoreRecord& record, double now, std::optional<ConsoleSize> size) {
    std::string table = size ? kClear : "";
    table += Print("%4s  %-12s %14s %10s\n", "id", "name", "value", "age");
    const std::vector<std::string> lines = Lines(record, now);
    const std::size_t room = size ? static_cast<std::size_t>(std::max(1, size->rows - 3)) : lines.size();
    for (std::size_t i = 0; i < std::min(room, lines.size()); ++i) table += lines[i];
    if (lines.size() > room)
        table += Print("... and %d more; enlarge the window to see them\n", static_cast<int>(lines.size() - room));
    if (lines.empty()) table += "Nothing has been published yet.\n";
    return size ? table : table + "\n";
}

}  // namespace

int Watch(System& system, const WatchOptions& options) {
    Guest guest(system);
    if (!guest) return 1;
    Console& console = system.GetConsole();
    for (int shown = 1; console.Write(Table(guest.Record(), UtcNowDays(system.Core().clock), console.Size())); ++shown) {
        if (options.snapshots == shown || !console.Wait(options.intervalMs)) return 0;
        if (guest.Core().QuitRequested()) return 0;
    }
    return 1;
}

}  // namespace twr
