#include <cstdio>
#include <string>

#include "core/days.h"
#include "halyrigctl/channel_names.h"
#include "halyrigctl/channel_reading.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/guest.h"
#include "platform/wide_text.h"

namespace twr {

int GetChannelValue(System& system, const std::string& wanted, BoatSlot boat) {
    Guest guest(system);
    if (!guest) return 1;
    Console& console = system.GetConsole();
    const auto channel = FindChannel(guest.Core(), wanted);
    if (!channel) {
        console.WriteError("halyrigctl: there is no channel " + wanted + "; 'halyrigctl channels' lists them\n");
        return 2;
    }
    const ChannelReading reading = ReadChannel(guest.Core(), *channel, boat, UtcNowDays(system.Core().clock));
    guest.TellIfClosing();
    const std::string name = ToUtf8(NameForPeople(guest.Core(), *channel));
    if (!reading.missing.empty()) {
        console.WriteError("halyrigctl: " + name + " has no value: " + reading.missing + "\n");
        return 1;
    }
    char lines[512];
    std::snprintf(lines, sizeof lines,
                  "channel  %u %s\nboat     %u\nvalue    %.10g\ntext     %s\nunit     %s\nage      %.1f s\nlimit    %s\n",
                  static_cast<unsigned>(*channel), name.c_str(), static_cast<unsigned>(boat), reading.value,
                  ToUtf8(reading.text).substr(0, 128).c_str(), reading.unit.empty() ? "-" : ToUtf8(reading.unit).c_str(),
                  reading.age.value_or(0.0), reading.limit > 0 ? (std::to_string(reading.limit) + " s").c_str() : "none");
    return console.Write(lines) ? 0 : 1;
}

}  // namespace twr
