#include <cmath>
#include <cstdio>
#include <string>

#include "config/bridge_settings.h"
#include "core/days.h"
#include "halyrigctl/channel_names.h"
#include "halyrigctl/channel_reading.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/guest.h"
#include "halyrigctl/json.h"
#include "halyrigctl/screen.h"

namespace twr {
namespace {

constexpr std::size_t kLongestText = 128;  // decimals are another program's choice, up to 65535

// A figure beside its own unit.
std::string WithUnit(const std::string& figure, std::u16string_view unit) {
    return unit.empty() ? figure : figure + " " + ToUtf8(unit);
}

// As precise as is useful for a time stamp.
double ToMilliseconds(double seconds) { return std::round(seconds * 1000) / 1000; }

std::string Formatted(const char* format, double number) {
    char text[64];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

std::string AsText(ChannelId channel, std::u16string_view name, BoatSlot boat, const ChannelReading& reading) {
    std::string text = "channel  " + std::to_string(channel) + " " + Harmless(name);
    const auto line = [&](const char* label, const std::string& what) { text += std::string("\n") + label + what; };
    line("boat     ", std::to_string(boat));
    line("value    ", WithUnit(Formatted("%.10g", reading.value.value_or(kNoValue)), reading.valueUnit));
    line("text     ", WithUnit(Cut(Harmless(reading.text), kLongestText), reading.textUnit));
    line("age      ", Formatted("%.1f s", reading.age.value_or(0.0)));
    line("limit    ", reading.limit > 0 ? std::to_string(reading.limit) + " s" : "none");
    return text + "\n";
}

std::string AsJson(ChannelId channel, std::u16string_view name, BoatSlot boat, const ChannelReading& reading) {
    const bool there = reading.missing.empty();
    return JsonLine({{"id", channel},
                     {"name", TextOrNull(name)},
                     {"boat", boat},
                     {"value", Told(there, reading.value.value_or(kNoValue))},
                     {"valueUnit", TextOrNull(reading.valueUnit)},
                     {"text", there ? TextOrNull(reading.text) : Json()},
                     {"textUnit", TextOrNull(reading.textUnit)},
                     {"age", Told(reading.age.has_value(), ToMilliseconds(reading.age.value_or(0.0)))},
                     {"limit", Told(reading.limit > 0, reading.limit)},
                     {"missing", Told(!there, reading.missing)}}) +
           "\n";
}

}  // namespace

Status GetChannelValue(System& system, const GetOptions& options) {
    Guest guest(system);
    if (!guest) return kFailed;
    Console& console = system.GetConsole();
    const auto channel = FindChannel(guest.Core(), options.channel);
    if (!channel) {
        guest.Leave();
        Complain(console, "there is no channel " + Harmless(FromUtf8(options.channel)) +
                              "; 'halyrigctl channels' lists them, 'halyrigctl get --help' explains how to name one");
        return kMisunderstood;
    }
    const CoreServices services = system.Core();
    const Circumstances circumstances{UtcNowDays(services.clock), ReadSettings(services.registry).degreesTrue};
    const ChannelReading reading = ReadChannel(guest.Core(), *channel, options.boat, circumstances);
    const std::u16string name = NameForPeople(guest.Core(), *channel);
    guest.Leave();
    const bool there = reading.missing.empty();
    if (options.json) {
        const Status printed = Print(console, AsJson(*channel, name, options.boat, reading));
        return there ? printed : kFailed;
    }
    if (there) return Print(console, AsText(*channel, name, options.boat, reading));
    Complain(console, Harmless(name) + " has no value: " + reading.missing);
    return kFailed;
}

}  // namespace twr
