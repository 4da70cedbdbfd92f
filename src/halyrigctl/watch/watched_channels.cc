// SPDX-License-Identifier: MIT
#include "halyrigctl/watch/watched_channels.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

#include "base/wide_text.h"
#include "core/days.h"
#include "core/record_access.h"
#include "halyrigctl/output/say.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

bool IsCircular(std::int16_t type) { return type == kTypeBearing || type == kTypeAngle || type == kTypeWindAngle; }

// Values that come once a second or more often count as equally old, since their rows would never rest.
double AgeForOrder(const WatchedRow& row) {
    constexpr double kLive = 2.0;
    return !row.age ? std::numeric_limits<double>::max() : *row.age < kLive ? 0.0 : *row.age;
}

}  // namespace

void Sort(std::vector<WatchedRow>& rows, RowOrder order) {
    const auto name = [](const WatchedRow& row) { return UpperCase(FromUtf8(row.name)); };
    if (order == RowOrder::kName) std::ranges::stable_sort(rows, {}, name);
    if (order == RowOrder::kAge) std::ranges::stable_sort(rows, std::greater(), AgeForOrder);
}

WatchedChannels::WatchedChannels(CCore& core, const WatchOptions& options, std::vector<ChannelId> named)
    : core_(core), boat_(options.boat), onlyMapped_(options.onlyMapped), named_(std::move(named)) {}

std::vector<WatchedRow> WatchedChannels::Look(Circumstances& circumstances) {
    std::vector<WatchedRow> rows;
    for (ChannelId channel = 0; channel < kChannelCount; ++channel) {
        if (IsWanted(channel, circumstances)) rows.push_back(Read(channel, circumstances));
    }
    return rows;
}

bool WatchedChannels::IsWanted(ChannelId channel, Circumstances& circumstances) const {
    if (!named_.empty() && std::ranges::find(named_, channel) == named_.end()) return false;
    if (onlyMapped_) return circumstances.TheMapping().Means(channel, boat_);
    if (!named_.empty()) return true;
    const Entry entry = EntryOf(*core_.View(), channel, boat_);
    return entry && channel != kTime && Load(*entry.time) != 0.0;
}

WatchedRow WatchedChannels::Read(ChannelId channel, Circumstances& circumstances) {
    const ChannelReading reading = ReadChannel(core_, channel, boat_, circumstances);
    Sparkline& course = courses_[channel];
    course.Add(circumstances.now * kSecondsPerDay, reading.shown);
    const bool circular = IsCircular(core_.ChannelTypeOf(channel));
    return {channel,
            Harmless(NameForPeople(core_, channel)),
            Harmless(reading.text),
            ToUtf8(reading.textUnit),
            reading.age,
            reading.state,
            reading.missing.Line(),
            course.Text(circular),
            course.Scale(circular)};
}

}  // namespace twr
