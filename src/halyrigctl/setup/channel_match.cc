// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/channel_match.h"

#include <algorithm>
#include <functional>

#include "base/wide_text.h"
#include "core/channel_catalogue.h"
#include "deckman/instrument_value.h"
#include "halyrigctl/output/say.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

constexpr std::size_t kMostCandidates = 3;

struct Synonym {
    std::u16string_view name;
    ChannelId channel;
};

// Names that mean one channel and no other. A course can be one over ground or through the water, a log that of the boat's speed or
// of the GPS, so such names are not here.
constexpr Synonym kSynonyms[] = {
    {u"VARIATION", kMagVar},
    {u"MAGVARIATION", kMagVar},
    {u"SEATEMPERATURE", kSeaTemp},
    {u"WATERTEMP", kSeaTemp},
    {u"AIRTEMPERATURE", kAirTemp},
    {u"BAROPRESS", kBaro},
    {u"PITCH", kTrim},
    {u"ROLL", kHeel},
    {u"POLPERCENT", kPolBspPct},
    {u"MKDIST", kMkRng},
    {u"MARKDIST", kMkRng},
    {u"MARKBRG", kMkBrg},
    {u"MKTIME", kMarkTm},
    {u"TIMETOGUN", kTmToGun},
};

struct UnitOfType {
    std::u16string_view unit;  // in Deckman's file
    std::vector<std::int16_t> types;
};

const std::vector<UnitOfType>& Units() {
    static const std::vector<UnitOfType> units = {
        {u"KN", {kTypeBoatSpeed, kTypeWindSpeed}},
        {u"KT", {kTypeBoatSpeed, kTypeWindSpeed}},
        {u"KTS", {kTypeBoatSpeed, kTypeWindSpeed}},
        {u"DEG", {kTypeBearing, kTypeAngle, kTypeWindAngle, kTypeLatitude, kTypeLongitude, kTypeNumber}},
        {u"DEGT", {kTypeBearing}},
        {u"DEGM", {kTypeBearing}},
        {u"DEG/S", {kTypeTurnRate}},
        {u"FT", {kTypeDepth}},
        {u"M", {kTypeDepth, kTypeMetres, kTypeLength}},
        {u"NM", {kTypeDistance, kTypeShortDistance}},
        {u"DEGC", {kTypeTemperature}},
        {u"HPA", {kTypeBarometer}},
        {u"MBAR", {kTypeBarometer}},
        {u"MB", {kTypeBarometer}},
        {u"%", {kTypePercent}},
        {u"DAY", {kTypeDuration}},
        {u"V", {kTypeVolts}},
        {u"A", {kTypeCurrent}},
        {u"T", {kTypeNumber, kTypeLength}},
        // Units that no channel is in.
        {u"S", {}},
        {u"SEC", {}},
        {u"MIN", {}},
        {u"DEGF", {}},
        {u"KM", {}},
        {u"M/S", {}},
        {u"KM/H", {}},
        {u"MPH", {}},
    };
    return units;
}

// The bridge makes only the bearings of the instruments magnetic.
bool StaysTrue(const DeckmanVariable& variable, ChannelId channel) {
    return EqualsIgnoringCase(variable.dfwColumn3, u"degT") && !IsInstrumentBearing(channel);
}

// What speaks against the channel; empty if nothing does.
std::string DoubtOf(const DeckmanVariable& variable, ChannelId channel) {
    if (!UnitFits(variable, channel))
        return "Deckman gives it in " + Harmless(variable.dfwColumn3) + ", which is not the channel's unit";
    return StaysTrue(variable, channel) ? "Deckman gives it in degrees true, and the box for those does not change it" : "";
}

using Test = std::function<bool(const ChannelInfo&)>;

// Time and the alternating channels can't be fed.
std::vector<ChannelId> ChannelsThat(const Test& test) {
    std::vector<ChannelId> found;
    for (const ChannelInfo& info : ChannelCatalogue()) {
        if (info.id != kTime && !IsAlternating(info.id) && test(info)) found.push_back(info.id);
    }
    return found;
}

std::vector<ChannelId> ByName(const std::u16string& name) {
    if (auto found = ChannelsThat([&](const ChannelInfo& info) { return PlainName(info.name) == name; }); !found.empty())
        return found;
    const auto known = std::ranges::find(kSynonyms, name, &Synonym::name);
    if (known != std::end(kSynonyms)) return {known->channel};
    return ChannelsThat([&](const ChannelInfo& info) { return PlainName(info.longName) == name; });
}

// Those whose name contains the variable's, or is contained in it, and whose unit fits.
std::vector<ChannelId> Similar(const DeckmanVariable& variable, const std::u16string& name) {
    const auto holds = [](const std::u16string& longer, const std::u16string& shorter) {
        return shorter.size() >= 3 && longer.find(shorter) != longer.npos;
    };
    std::vector<ChannelId> found = ChannelsThat([&](const ChannelInfo& info) {
        const std::u16string shortName = PlainName(info.name);
        return UnitFits(variable, info.id) && (holds(shortName, name) || holds(name, shortName));
    });
    if (found.size() > kMostCandidates) found.resize(kMostCandidates);
    return found;
}

}  // namespace

bool UnitFits(const DeckmanVariable& variable, ChannelId channel) {
    if (channel >= kUser0 && channel <= kUser31) return true;  // what it holds is the user's choice
    const std::u16string unit = UpperCase(variable.dfwColumn3);
    const auto row = std::ranges::find(Units(), unit, &UnitOfType::unit);
    return row == Units().end() || std::ranges::find(row->types, ChannelCatalogue()[channel].type) != row->types.end();
}

std::optional<bool> UnitMeansBox(const DeckmanVariable& variable, ChannelId channel) {
    const auto isIn = [&](std::u16string_view unit) { return EqualsIgnoringCase(variable.dfwColumn3, unit); };
    const bool yes = channel == kDepth ? isIn(u"ft") : IsInstrumentBearing(channel) && isIn(u"degT");
    const bool no = channel == kDepth ? isIn(u"m") : IsInstrumentBearing(channel) && isIn(u"degM");
    return yes || no ? std::optional(yes) : std::nullopt;
}

ChannelMatch MatchChannel(const DeckmanVariable& variable) {
    const std::u16string name = PlainName(variable.dfwName);
    ChannelMatch match;
    match.channels = ByName(name);
    for (const ChannelId channel : match.channels) match.doubt = DoubtOf(variable, channel);
    match.sure = match.channels.size() == 1 && match.doubt.empty();
    if (match.channels.empty()) match.channels = Similar(variable, name);
    return match;
}

// Few names get past the first line, and to compare one with all channels takes long.
bool SurelyMeans(const DeckmanVariable& variable, ChannelId channel) {
    const ChannelInfo& info = ChannelCatalogue()[channel];
    const std::u16string name = PlainName(variable.dfwName);
    const bool known = std::ranges::find(kSynonyms, name, &Synonym::name) != std::end(kSynonyms);
    if (!known && name != PlainName(info.name) && name != PlainName(info.longName)) return false;
    const ChannelMatch match = MatchChannel(variable);
    return match.sure && match.channels.front() == channel;
}

}  // namespace twr
