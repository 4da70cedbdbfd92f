#include "mapping/legacy_import.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "base/channel_ids.h"
#include "base/text_lines.h"

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
bool ForEachLine(Files& files, std::u16string_view path, Take take) {
    const auto source = files.Open(path);
    if (!source) return false;
    TextLines lines(*source);
    std::string line;
    Fields fields{};
    while (lines.Next(line)) take(fields, ScanFields(line, fields));
    return true;
}

bool InRange(std::int32_t value, std::int32_t least, std::uint32_t count) {
    return value >= least && value < static_cast<std::int32_t>(count);
}

}  // namespace

std::optional<std::vector<MappingVar>> ImportLegacyVars(Files& files, std::u16string_view path,
                                                        const std::vector<MappingVar>& catalogue) {
    std::vector<MappingVar> rows;
    ForEachLine(files, path, [&](const Fields& fields, std::size_t filled) {
        const auto [id, channel, third, unused] = fields;
        const std::int32_t boat = filled >= 3 ? third : 0;
        if (filled < 2 || !InRange(channel, 1, kChannelCount) || !InRange(boat, 0, kBoatCount)) return;
        const auto variable = std::ranges::find(catalogue, id, &MappingVar::dfwId);
        if (variable == catalogue.end()) return;
        MappingVar& row = rows.emplace_back();
        row.channel = channel;
        row.boat = boat;
        BindVariable(row, *variable);
    });
    return rows.empty() ? std::nullopt : std::optional(std::move(rows));
}

std::vector<MappingRemote> ImportLegacyRemotes(Files& files, std::u16string_view path) {
    std::vector<MappingRemote> rows;
    ForEachLine(files, path, [&](const Fields& fields, std::size_t filled) {
        const auto [remote, channel, boat, damp] = fields;
        if (filled < 4 || !InRange(channel, 0, kChannelCount) || !InRange(boat, 0, kBoatCount)) return;
        MappingRemote& row = rows.emplace_back();
        row.channel = channel;
        row.boat = boat;
        row.remote = static_cast<std::int32_t>(static_cast<std::uint32_t>(remote) + 1);
        row.damp = damp != 0 ? 1 : 0;
    });
    return rows;
}

}  // namespace twr
