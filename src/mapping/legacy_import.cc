// SPDX-License-Identifier: MIT
#include "mapping/legacy_import.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "base/bounded_lines.h"
#include "base/channel_ids.h"
#include "base/wide_text.h"

namespace twr {
namespace {

using Fields = std::array<std::int32_t, 4>;

// The numbers at the start of a line, separated by commas. From the first field that is not a number on, all are 0.
std::size_t ScanFields(const std::string& line, Fields& fields) {
    std::array<long long, 4> numbers{};  // those that overflow wrap into their field
    const int filled = std::sscanf(line.c_str(), "%lld,%lld,%lld,%lld", &numbers[0], &numbers[1], &numbers[2], &numbers[3]);
    std::ranges::transform(numbers, fields.begin(), [](long long number) { return static_cast<std::int32_t>(number); });
    return static_cast<std::size_t>(std::max(0, filled));
}

template <class Take>
bool ForEachLine(Files& files, std::u16string_view path, Findings* findings, Take take) {
    const auto source = files.Open(path);
    if (!source) return false;
    BoundedLines lines(*source, kTextMode);
    Fields fields{};
    Place place{findings, path};
    while (lines.Next()) {
        const std::string& line = lines.Line();
        ++place.line;
        const std::u16string spelled = findings ? FromBytes(line) : std::u16string();
        if (!line.empty()) take(fields, ScanFields(line, fields), place.Of(spelled));
        if (lines.Cut()) place.Report(Flaw::kLineCut);
    }
    lines.ReportEnd(place);
    return true;
}

bool InRange(std::int32_t value, std::int32_t least, std::uint32_t count, const Place& place, Flaw flaw) {
    if (value >= least && value < static_cast<std::int32_t>(count)) return true;
    return place.Report(flaw, FromBytes(std::to_string(value)));
}

bool HasFields(std::size_t filled, std::size_t needed, std::u16string_view form, const Place& place) {
    return filled >= needed ||
           place.Report(place.of.starts_with(u"\u00EF\u00BB\u00BF") ? Flaw::kByteOrderMark : Flaw::kLineNotRead, form);
}

}  // namespace

std::optional<std::vector<MappingVar>> ImportLegacyVars(Files& files, std::u16string_view path,
                                                        const std::vector<DeckmanVariable>& catalogue, Findings* findings) {
    std::vector<MappingVar> rows;
    ForEachLine(files, path, findings, [&](const Fields& fields, std::size_t filled, const Place& place) {
        const auto [id, channel, third, unused] = fields;
        const std::int32_t boat = filled >= 3 ? third : 0;
        if (!HasFields(filled, 2, u"variable,channel,boat", place) ||
            !InRange(channel, 1, kChannelCount, place, Flaw::kNoSuchChannel) ||
            !InRange(boat, 0, kBoatCount, place, Flaw::kNoSuchBoat)) {
            return;
        }
        const auto variable = std::ranges::find(catalogue, id, &DeckmanVariable::dfwId);
        if (variable == catalogue.end()) {
            place.Report(Flaw::kNoSuchVariable, FromBytes(std::to_string(id)));
            return;
        }
        MappingVar& row = rows.emplace_back();
        row.channel = channel;
        row.boat = boat;
        static_cast<DeckmanVariable&>(row) = *variable;
    });
    return rows.empty() ? std::nullopt : std::optional(std::move(rows));
}

std::vector<MappingRemote> ImportLegacyRemotes(Files& files, std::u16string_view path, Findings* findings) {
    std::vector<MappingRemote> rows;
    ForEachLine(files, path, findings, [&](const Fields& fields, std::size_t filled, const Place& place) {
        const auto [remote, channel, boat, damp] = fields;
        if (!HasFields(filled, 4, u"remote,channel,boat,damp", place) ||
            !InRange(channel, 0, kChannelCount, place, Flaw::kNoSuchChannel) ||
            !InRange(boat, 0, kBoatCount, place, Flaw::kNoSuchBoat)) {
            return;
        }
        MappingRemote& row = rows.emplace_back();
        row.channel = channel;
        row.boat = boat;
        row.remote = static_cast<std::int32_t>(static_cast<std::uint32_t>(remote) + 1);
        row.damp = damp != 0 ? 1 : 0;
    });
    return rows;
}

}  // namespace twr
