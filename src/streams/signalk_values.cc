// SPDX-License-Identifier: MIT
#include "streams/signalk_values.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "base/angles.h"
#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/record_access.h"
#include "streams/iso_time.h"

namespace twr {
namespace {

constexpr std::uint32_t kHighestMmsi = 999999999;

std::string Quoted(std::u16string_view text) { return nlohmann::json(ToUtf8(text)).dump(-1, ' ', true); }

// nullopt if there is none.
std::optional<double> InPathUnit(const SignalKPart& part, const SiUnit& unit, BoatSlot boat, const Follower& follower) {
    double value = follower.Tells(part.channel) ? follower.Value(part.channel, boat) : kNoValue;
    if (value == kNoValue) return std::nullopt;
    if (part.trueBearing) {
        const double variation = follower.Variation(boat);
        if (variation == kNoValue) return std::nullopt;
        value = TurnedBearing(value + variation);
    }
    if (&unit == &kSignalKMoment && !HasIsoTime(value)) return std::nullopt;
    value = value * unit.factor + unit.offset;
    return std::isfinite(value) ? std::optional(value) : std::nullopt;  // JSON has no infinities
}

void AppendValue(std::string& out, const SignalKPart& part, const SiUnit& unit, double value, const CCore& core) {
    if (&unit == &kSignalKMoment) {
        out += '"';
        AppendIsoTime(out, value);
        out += '"';
    } else if (&unit == &kSignalKText) {
        out += Quoted(core.ChannelText(part.channel, value));
    } else {
        char digits[32];
        out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    }
}

}  // namespace

std::string SignalKMmsi(const CoreRecord& record, BoatSlot boat) {
    const std::uint32_t mmsi = Load(record.boats[boat].mmsi);
    return mmsi != 0 && mmsi <= kHighestMmsi ? Printed("urn:mrn:imo:mmsi:%09u", mmsi) : std::string();
}

std::string SignalKContext(const CoreRecord& record, BoatSlot boat) {
    const std::string name = boat == 0 ? "self" : SignalKMmsi(record, boat);
    return name.empty() ? name : "vessels." + name;
}

void SetSignalKValue(std::string& value, const SignalKPath& path, BoatSlot boat, const Follower& follower) {
    value.clear();
    for (const SignalKPart& part : path.parts) {
        const SiUnit& unit = UnitOf(part, follower.Core());
        const std::optional<double> number = InPathUnit(part, unit, boat, follower);
        if (!number && path.whole) return value.clear();
        if (!number) continue;
        if (IsObject(path)) (((value += value.empty() ? "{\"" : ",\"") += part.member) += "\":");
        AppendValue(value, part, unit, *number, follower.Core());
    }
    if (IsObject(path) && !value.empty()) value += '}';
}

// The description is required beside the unit. Paths of our own say more, since nobody knows them.
std::string SignalKMeta(const SignalKPath& path, const CCore& core) {
    const SignalKPart& part = path.parts.front();
    const SiUnit& unit = UnitOf(part, core);
    if (IsObject(path) || (*unit.name == 0 && !IsOurs(path))) return {};
    const ChannelInfo& info = ChannelCatalogue()[part.channel];
    const bool magnetic = IsOurs(path) && core.ChannelTypeOf(part.channel) == kTypeBearing;
    std::u16string description(info.longName.empty() ? info.name : info.longName);
    description += part.trueBearing ? u", true" : magnetic ? u", magnetic" : u"";
    std::string meta = "{";
    if (*unit.name != 0) ((meta += R"("units":")") += unit.name) += "\",";
    (meta += R"("description":)") += Quoted(description);
    if (IsOurs(path)) (meta += R"(,"displayName":)") += Quoted(core.ChannelName(part.channel));
    return meta += '}';
}

SignalKChanges::SignalKChanges(std::span<const Change> ofBoat) {
    for (const Change& change : ofBoat) {
        changed_.set(change.channel);
        times_[change.channel] = change.time;
    }
}

std::optional<double> SignalKChanges::TimeOf(const SignalKPath& path) const {
    std::optional<double> latest;
    const auto count = [&](ChannelId channel) {
        if (changed_[channel]) latest = std::max(latest.value_or(0.0), times_[channel]);
    };
    for (const SignalKPart& part : path.parts) {
        count(part.channel);
        if (part.trueBearing) count(kMagVar);
    }
    return latest;
}

std::span<const Change> TakeBoat(std::span<const Change>& changes) {
    const BoatSlot boat = changes.front().boat;
    const auto next = std::ranges::find_if(changes, [&](const Change& change) { return change.boat != boat; });
    const auto ofBoat = changes.first(static_cast<std::size_t>(next - changes.begin()));
    changes = changes.subspan(ofBoat.size());
    return ofBoat;
}

}  // namespace twr
