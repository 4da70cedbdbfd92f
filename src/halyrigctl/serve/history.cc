// SPDX-License-Identifier: MIT
#include "halyrigctl/serve/history.h"

#include <algorithm>
#include <cmath>

#include "core/days.h"
#include "core/record_access.h"

namespace twr {
namespace {

constexpr double kBetween = 0.95 / kSecondsPerDay;  // a second, for a look that comes a little early

}  // namespace

void History::Add(const Follower& follower, double now) {
    const double last = times_[(next_ + kLength - 1) % kLength];
    if (count_ > 0 && now < last) {  // the clock was set back
        count_ = 0;
        values_.clear();
    }
    if (count_ > 0 && now - last < kBetween) return;
    times_[next_] = now;
    for (auto& [place, ring] : values_) ring[next_] = follower.Value(place.first, place.second);
    const BoatSlot boats = std::min(Load(follower.Core().View()->boatCount), kBoatCount);
    for (BoatSlot boat = 0; boat < boats; ++boat) {
        for (ChannelId channel = kTime + 1; channel < kChannelCount; ++channel) {
            const double value = follower.Value(channel, boat);
            if (value == kNoValue) continue;
            const auto [kept, added] = values_.try_emplace({channel, boat});
            if (added) kept->second.fill(kNoValue);
            kept->second[next_] = value;
        }
    }
    next_ = (next_ + 1) % kLength;
    count_ = std::min(count_ + 1, kLength);
}

std::vector<History::Point> History::Of(ChannelPlace place) const {
    std::vector<Point> points;
    const auto found = values_.find(place);
    if (found == values_.end()) return points;
    for (std::size_t i = kLength - count_; i < kLength; ++i) {
        const std::size_t at = (next_ + i) % kLength;
        const double value = found->second[at];
        if (value != kNoValue || !points.empty()) points.push_back({times_[at], value});
    }
    return points;
}

std::optional<History::Extremes> History::ExtremesOf(ChannelPlace place, double now, bool turning) const {
    std::optional<Extremes> extremes;
    double last = 0.0;
    std::vector<Point> points = Of(place);
    points.push_back({0.0, now});
    for (const Point& point : points) {
        if (point.value == kNoValue) continue;
        last = extremes && turning ? last + std::remainder(point.value - last, 360.0) : point.value;
        if (!extremes) extremes = {last, last};
        extremes = {std::min(extremes->lowest, last), std::max(extremes->highest, last)};
    }
    return extremes;
}

}  // namespace twr
