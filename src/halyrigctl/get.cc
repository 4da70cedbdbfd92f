#include <cstdio>
#include <string>

#include "core/days.h"
#include "halyrigctl/channel_names.h"
#include "halyrigctl/channel_reading.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/guest.h"
#include "platform/wide_text.h"

namespace twr {

Status GetChannelValue(System& system, const GetOptions& options) {
    Guest guest(system);
    if (!guest) return kFailed;
    Console& console = system.GetConsole();
    const auto channel = FindChannel(guest.Core(), options.channel);
    if (!channel) {
        guest.Leave();
        Complain(console, "there is no channel " + Harmless(FromUtf8(options.channel)) +
                              "; 'halyrigctl channels' lists them, 'halyrigctl get --help' tells how to name one");
        return kMisunderstood;
    }
    const ChannelReading reading = ReadChannel(guest.Core(), *channel, options.boat, UtcNowDays(system.Core().clock));
    const std::string name = Harmless(NameForPeople(guest.Core(), *channel));
    guest.Leave();
    if (!reading.missing.empty()) {
        Complain(console, name + " has no value: " + reading.missing);
        return kFailed;
    }
    char lines[512];
    std::snprintf(lines, sizeof lines,
                  "channel  %u %s\nboat     %u\nvalue    %.10g\ntext     %s\nunit     %s\nage      %.1f s\nlimit    %s\n",
                  static_cast<unsigned>(*channel), name.c_str(), static_cast<unsigned>(options.boat), reading.value,
                  Harmless(reading.text).substr(0, 128).c_str(), reading.unit.empty() ? "-" : ToUtf8(reading.unit).c_str(),
                  reading.age.value_or(0.0), reading.limit > 0 ? (std::to_string(reading.limit) + " s").c_str() : "none");
    return Print(console, lines);
}

}  // namespace twr
