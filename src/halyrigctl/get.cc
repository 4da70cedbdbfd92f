#include <cstdio>
#include <string>

#include "core/days.h"
#include "halyrigctl/channel_reading.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/guest.h"
#include "platform/wide_text.h"

namespace twr {

int GetChannelValue(System& system, const std::string& wanted, BoatSlot boat) {
    Guest guest(system);
    if (!guest) return 1;
    const auto channel = FindChannel(guest.Core(), wanted);
    if (!channel) {
        std::fprintf(stderr, "halyrigctl: there is no channel %s; 'halyrigctl channels' lists them\n", wanted.c_str());
        return 2;
    }
    const ChannelReading reading = ReadChannel(guest.Core(), *channel, boat, UtcNowDays(system.Core().clock));
    const std::string name = ToUtf8(guest.Core().ChannelName(*channel));
    if (!reading.missing.empty()) {
        std::fprintf(stderr, "halyrigctl: %s has no value: %s\n", name.empty() ? "Time" : name.c_str(), reading.missing.c_str());
        return 1;
    }
    char lines[512];
    std::snprintf(lines, sizeof lines,
                  "channel  %u %s\nboat     %u\nvalue    %.10g\ntext     %s\nunit     %s\nage      %.1f s\nlimit    %s\n",
                  static_cast<unsigned>(*channel), name.c_str(), static_cast<unsigned>(boat), reading.value,
                  ToUtf8(reading.text).substr(0, 128).c_str(), reading.unit.empty() ? "-" : ToUtf8(reading.unit).c_str(),
                  reading.age.value_or(0.0), reading.limit > 0 ? (std::to_string(reading.limit) + " s").c_str() : "none");
    return system.GetConsole().Write(lines) ? 0 : 1;
}

}  // namespace twr
