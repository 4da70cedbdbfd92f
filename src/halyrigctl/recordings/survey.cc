// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/survey.h"

#include <algorithm>
#include <cmath>

#include "base/angles.h"

namespace twr {
namespace {

constexpr double kQuiet = 60.0 / kSecondsPerDay;    // nobody published anything
constexpr double kRestart = 2.0 / kSecondsPerDay;   // a recorder that goes on in the next file leaves less
constexpr double kSetBack = -1.0 / kSecondsPerDay;  // a clock is corrected by less every now and then
constexpr std::size_t kMostGaps = 1000;

bool IsDirection(std::int16_t type) { return type == kTypeBearing || type == kTypeAngle || type == kTypeWindAngle; }

}  // namespace

std::optional<double> ChannelSurvey::Mean(std::int16_t type) const {
    if (count == 0) return std::nullopt;
    if (!IsDirection(type)) return sum_ / static_cast<double>(count);
    const Vector sum{east_, north_};
    if (Length(sum) < 1e-6 * static_cast<double>(count)) return std::nullopt;
    const double mean = BearingOf(sum);
    return type == kTypeBearing ? mean : WrappedAngle(mean);
}

bool IsGap(double before, const Recorded& next) {
    const double passed = next.time - before;
    if (passed > kQuiet || passed < kSetBack) return true;
    return next.seam == Seam::kGap || (next.seam == Seam::kStart && passed > kRestart);
}

Survey::Survey(const CCore& core) : turns_(kChannelCount) {
    for (ChannelId channel = 0; channel < kChannelCount; ++channel) turns_[channel] = IsDirection(core.ChannelTypeOf(channel));
}

void Survey::Take(const Recorded& recorded) {
    const Change& change = recorded.change;
    if (!first_) first_ = last_ = recorded.time;
    if (recorded.time != last_ || recorded.seam != Seam::kNone) {
        if (IsGap(last_, recorded)) {
            if (++gapCount_ <= kMostGaps) gaps_.push_back({last_, recorded.time});
        } else {
            seconds_ += (recorded.time - last_) * kSecondsPerDay;
        }
        last_ = recorded.time;
    }
    if (change.value == kNoValue) return;
    const std::size_t index = std::size_t{change.boat} * kChannelCount + change.channel;
    if (index >= surveys_.size()) surveys_.resize((std::size_t{change.boat} + 1) * kChannelCount);
    ChannelSurvey& survey = surveys_[index];
    survey.least = survey.count == 0 ? change.value : std::min(survey.least, change.value);
    survey.greatest = survey.count == 0 ? change.value : std::max(survey.greatest, change.value);
    survey.last = change.value;
    ++survey.count;
    if (turns_[change.channel] != 0) {
        const Vector towards = Towards(change.value, 1.0);
        survey.east_ += towards.east, survey.north_ += towards.north;
    } else {
        survey.sum_ += change.value;
    }
}

const ChannelSurvey* Survey::Of(ChannelId channel, BoatSlot boat) const {
    const std::size_t index = std::size_t{boat} * kChannelCount + channel;
    return index < surveys_.size() && surveys_[index].count > 0 ? &surveys_[index] : nullptr;
}

std::vector<BoatSlot> Survey::Boats() const {
    std::vector<BoatSlot> boats;
    for (std::size_t i = 0; i < surveys_.size(); ++i) {
        const auto boat = static_cast<BoatSlot>(i / kChannelCount);
        if (surveys_[i].count > 0 && (boats.empty() || boats.back() != boat)) boats.push_back(boat);
    }
    return boats;
}

std::vector<ChannelId> Survey::Channels() const {
    const std::vector<BoatSlot> boats = Boats();
    std::vector<ChannelId> channels;
    for (ChannelId channel = 0; channel < kChannelCount; ++channel) {
        if (std::ranges::any_of(boats, [&](BoatSlot boat) { return Of(channel, boat) != nullptr; })) channels.push_back(channel);
    }
    return channels;
}

}  // namespace twr
