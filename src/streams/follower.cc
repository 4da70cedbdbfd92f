// SPDX-License-Identifier: MIT
#include "streams/follower.h"

#include <algorithm>
#include <cmath>

#include "core/days.h"
#include "core/record_access.h"
#include "streams/iso_time.h"

namespace twr {
namespace {

constexpr double kRepeatAfter = 0.95 / kSecondsPerDay;  // a second, for a look that comes a little early

BoatSlot BoatsInUse(const CoreRecord& record) { return std::min(Load(record.boatCount), kBoatCount); }

// Written by other programs: a stamp that is no moment counts as none.
double StampOf(const Entry& entry) {
    const double time = Load(*entry.time);
    return HasIsoTime(time) ? time : 0.0;
}

}  // namespace

Follower::Follower(CCore& core, const Clock& clock, const FollowOptions& options)
    : core_(core), clock_(clock), options_(options), tells_(kChannelCount), seen_(std::size_t{kBoatCount} * kChannelCount) {
    for (const ChannelId channel : options.channels) tells_[channel] = 1;
    for (ChannelId channel = kTime + 1; channel < kChannelCount; ++channel) {
        if (options.channels.empty() && !IsAlternating(channel)) tells_[channel] = 1;
        if (IsAlternating(channel) && !Tells(channel)) continue;
        full_.push_back(channel);
        if (IsAlternating(channel) || ChannelCatalogue()[channel].shortIndex < kShortChannelCount) short_.push_back(channel);
    }
    changes_.reserve(full_.size() * kFullBoatCount + short_.size() * (kBoatCount - kFullBoatCount));
}

std::span<const Change> Follower::Look() {
    const double now = UtcNowDays(clock_);
    changes_.clear();
    repeats_ = options_.all && !(std::fabs(now - repeated_) < kRepeatAfter);
    if (repeats_) repeated_ = now;
    const BoatSlot boats = BoatsInUse(*core_.View());
    for (BoatSlot boat = 0; boat < boats; ++boat) {
        for (const ChannelId channel : boat < kFullBoatCount ? full_ : short_) LookAt(channel, boat, now);
    }
    return changes_;
}

// The whole of what is looked at is remembered, so that a value that is not told can still be asked for.
void Follower::LookAt(ChannelId channel, BoatSlot boat, double now) {
    Seen& seen = seen_[boat * kChannelCount + channel];
    const Seen found = Read(channel, boat, now);
    const bool missing = found.value == kNoValue;
    const bool changed = found.value != seen.value || found.time != seen.time;
    seen = found;
    if (!changed && (missing || !repeats_)) return;
    if (Tells(channel) && TellsOf(boat)) changes_.push_back({missing ? now : found.time, channel, boat, found.value});
}

Follower::Seen Follower::Read(ChannelId channel, BoatSlot boat, double now) const {
    if (IsAlternating(channel)) [[unlikely]] {
        channel = core_.SourceOf(channel);
        if (IsAlternating(channel)) return {};
    }
    const Entry entry = EntryOf(*core_.View(), channel, boat);
    if (!entry) return {};
    // The stamp first: should a publication fall between the two, its value is told at once, and its stamp at the next look.
    const double time = StampOf(entry);
    const double value = Load(*entry.value);
    if (value == kNoValue || !std::isfinite(value) || IsLostDepth(channel, value)) return {};
    return IsStale(time, now, core_.StaleSeconds(channel, boat)) ? Seen{} : Seen{time, value};
}

std::span<const Change> Follower::Present() {
    changes_.clear();
    for (std::size_t i = 0; i < seen_.size(); ++i) {
        const ChannelId channel = i % kChannelCount;
        const auto boat = static_cast<BoatSlot>(i / kChannelCount);
        if (seen_[i].value == kNoValue || !Tells(channel) || !TellsOf(boat)) continue;
        changes_.push_back({seen_[i].time, channel, boat, seen_[i].value});
    }
    return changes_;
}

std::span<const Change> Follower::Gone() {
    const double now = UtcNowDays(clock_);
    Present();
    for (Change& change : changes_) change = {now, change.channel, change.boat, kNoValue};
    std::ranges::fill(seen_, Seen{});
    return changes_;
}

double Follower::Value(ChannelId channel, BoatSlot boat) const { return seen_[boat * kChannelCount + channel].value; }

double Follower::Variation(BoatSlot boat) const {
    const double own = Value(kMagVar, boat);
    return own == kNoValue ? Value(kMagVar, 0) : own;
}

double Follower::Time(ChannelId channel, BoatSlot boat) const { return seen_[boat * kChannelCount + channel].time; }

}  // namespace twr
