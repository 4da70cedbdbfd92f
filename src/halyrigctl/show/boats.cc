// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "base/numbers.h"
#include "core/record_access.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/output/json.h"

namespace twr {
namespace {

struct BoatReading {
    BoatSlot slot;
    std::u16string name;  // empty if it has none
    std::uint32_t mmsi;   // 0 for none
    std::uint32_t colour;
    std::optional<std::int32_t> ageLimit;  // seconds; nullopt where the limits of the channels are in force alone
    bool inUse;
    std::optional<double> age;  // seconds since its last value; nullopt if it has none
};

// The Time channel of every boat in use follows the clock, so it tells nothing of the boat.
std::optional<double> AgeOfLastValue(CoreRecord& record, BoatSlot slot, double now) {
    std::optional<double> age;
    for (ChannelId channel = kTime + 1; channel < kChannelCount; ++channel) {
        const Entry entry = EntryOf(record, channel, slot);
        const double time = entry ? Load(*entry.time) : 0.0;
        if (time == 0.0 || Load(*entry.value) == kNoValue) continue;
        const double seconds = std::fabs(now - time) * kSecondsPerDay;
        if (!age || seconds < *age) age = seconds;
    }
    return age;
}

BoatReading ReadBoat(CoreRecord& record, BoatSlot slot, double now) {
    const BoatRow& row = record.boats[slot];
    BoatReading boat{.slot = slot,
                     .name = FieldText(row.name),
                     .mmsi = Load(row.mmsi),
                     .colour = Load(row.colour),
                     .ageLimit = {},
                     .inUse = slot < Load(record.boatCount),
                     .age = AgeOfLastValue(record, slot, now)};
    if (slot != 0 && boat.mmsi != 0) boat.ageLimit = Load(row.ageLimit);
    return boat;
}

// Every boat but the own one begins as "Boat" and its number, which tells nothing.
bool IsNamed(const BoatReading& boat) { return !boat.name.empty() && ToUtf8(boat.name) != "Boat " + std::to_string(boat.slot); }

bool HasSomethingToTell(const BoatReading& boat) { return boat.inUse || boat.mmsi != 0 || IsNamed(boat); }

// As on a web page; the record has red in the low byte.
std::string ColourText(std::uint32_t colour) {
    return Printed("#%02X%02X%02X", colour & 0xFF, colour >> 8 & 0xFF, colour >> 16 & 0xFF);
}

constexpr const char* kBoatRow = "%4s  %9s  %-7s %9s  %-6s %10s  %s\n";

std::string TextRow(const BoatReading& boat) {
    return Printed(kBoatRow, std::to_string(boat.slot).c_str(), boat.mmsi != 0 ? Printed("%09u", boat.mmsi).c_str() : "-",
                   ColourText(boat.colour).c_str(), boat.ageLimit ? Printed("%d s", *boat.ageLimit).c_str() : "-",
                   boat.inUse ? "yes" : "-", boat.age ? Printed("%.1f s", *boat.age).c_str() : "-",
                   boat.name.empty() ? "-" : Harmless(boat.name).c_str());
}

std::string TextTable(const std::vector<BoatReading>& boats) {
    if (boats.empty()) return "No boat is in use, named or known by an MMSI; 'halyrigctl boats --all' lists all 100.\n";
    std::string table = Printed(kBoatRow, "boat", "MMSI", "colour", "limit", "in use", "last value", "name");
    for (const BoatReading& boat : boats) table += TextRow(boat);
    return table;
}

Json JsonBoat(const BoatReading& boat) {
    return {{"boat", boat.slot},
            {"name", TextOrNull(boat.name)},
            {"mmsi", Told(boat.mmsi != 0, boat.mmsi)},
            {"colour", ColourText(boat.colour)},
            {"ageLimit", Told(boat.ageLimit.has_value(), boat.ageLimit.value_or(0))},
            {"inUse", boat.inUse},
            {"age", Told(boat.age.has_value(), ToMilliseconds(boat.age.value_or(0.0)))}};
}

std::vector<BoatReading> ReadBoats(CoreRecord& record, double now, bool all) {
    std::vector<BoatReading> boats;
    for (BoatSlot slot = 0; slot < kBoatCount; ++slot) {
        BoatReading boat = ReadBoat(record, slot, now);
        if (all || HasSomethingToTell(boat)) boats.push_back(std::move(boat));
    }
    return boats;
}

std::string AsJson(const std::vector<BoatReading>& boats) {
    std::vector<Json> rows;
    std::ranges::transform(boats, std::back_inserter(rows), JsonBoat);
    return JsonTable(rows);
}

}  // namespace

std::string BoatsAsJson(CoreRecord& record, double now) { return AsJson(ReadBoats(record, now, false)); }

Status ListBoats(System& system, const BoatsOptions& options) {
    Guest guest(system);
    if (!guest) return kFailed;
    const auto boats = ReadBoats(guest.Record(), UtcNowDays(system.Core().clock), options.all);
    guest.Leave();
    return Print(system.GetConsole(), options.json ? AsJson(boats) : TextTable(boats));
}

}  // namespace twr
