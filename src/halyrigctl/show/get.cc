// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>
#include <vector>

#include "base/numbers.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/cells.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/output/json.h"
#include "halyrigctl/setup/channel_reading.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

constexpr std::size_t kLongestText = 128;  // decimals are another program's choice, up to 65535

// A figure beside its own unit.
std::string WithUnit(const std::string& figure, std::u16string_view unit) {
    return unit.empty() ? figure : figure + " " + ToUtf8(unit);
}

// A channel that the user has asked for.
struct Found {
    ChannelId channel;
    std::u16string name;
    BoatSlot boat;
    ChannelReading reading;

    bool HasValue() const { return !reading.missing; }
};

std::string AsText(const Found& found) {
    const ChannelReading& reading = found.reading;
    std::string text = "channel  " + std::to_string(found.channel) + " " + Harmless(found.name);
    const auto line = [&](const char* label, const std::string& what) { text += std::string("\n") + label + what; };
    line("boat     ", std::to_string(found.boat));
    line("value    ", WithUnit(Printed("%.10g", reading.value.value_or(kNoValue)), reading.valueUnit));
    line("text     ", WithUnit(Cut(Harmless(reading.text), kLongestText), reading.textUnit));
    line("age      ", Printed("%.1f s", reading.age.value_or(0.0)));
    line("limit    ", reading.limit > 0 ? std::to_string(reading.limit) + " s" : "none");
    return text + "\n";
}

std::string AsJson(const Found& found) {
    const ChannelReading& reading = found.reading;
    const bool there = found.HasValue();
    return JsonLine({{"id", found.channel},
                     {"name", TextOrNull(found.name)},
                     {"boat", found.boat},
                     {"value", Told(there, reading.value.value_or(kNoValue))},
                     {"valueUnit", TextOrNull(reading.valueUnit)},
                     {"text", there ? TextOrNull(reading.text) : Json()},
                     {"textUnit", TextOrNull(reading.textUnit)},
                     {"age", Told(reading.age.has_value(), ToMilliseconds(reading.age.value_or(0.0)))},
                     {"limit", Told(reading.limit > 0, reading.limit)},
                     {"state", StateWord(reading.state)},
                     {"reason", Told(!there, WordFor(reading.missing.reason))},
                     {"missing", Told(!there, reading.missing.Line())}}) +
           "\n";
}

Status SayAsJson(Console& console, const std::vector<Found>& all) {
    std::string lines;
    for (const Found& found : all) lines += AsJson(found);
    const Status printed = Print(console, lines);
    return std::ranges::all_of(all, &Found::HasValue) ? printed : kFailed;
}

// The values first, with an empty line between two channels; then what has none.
Status SayAsText(Console& console, const std::vector<Found>& all) {
    std::string text;
    for (const Found& found : all) {
        if (found.HasValue()) text += (text.empty() ? "" : "\n") + AsText(found);
    }
    Status status = text.empty() ? kDone : Print(console, text);
    for (const Found& found : all) {
        if (found.HasValue()) continue;
        Complain(console, Harmless(found.name) + " has no value: " + found.reading.missing.Line());
        status = kFailed;
    }
    return status;
}

}  // namespace

Status GetChannelValues(System& system, const GetOptions& options) {
    Guest guest(system);
    if (!guest) return kFailed;
    Console& console = system.GetConsole();
    const NamedChannels named = FindChannels(guest.Core(), options.channels);
    if (named.unknown) {
        guest.Leave();
        return ComplainOfChannel(console, named);
    }
    Circumstances circumstances(system, guest.Core());
    std::vector<Found> all;
    for (const ChannelId channel : named.found) {
        all.push_back({channel, NameForPeople(guest.Core(), channel), options.boat,
                       ReadChannel(guest.Core(), channel, options.boat, circumstances)});
    }
    guest.Leave();
    return options.json ? SayAsJson(console, all) : SayAsText(console, all);
}

}  // namespace twr
