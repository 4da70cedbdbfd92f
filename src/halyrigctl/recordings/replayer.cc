// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/replayer.h"

#include <cmath>
#include <string>

#include "core/record_access.h"
#include "streams/iso_time.h"

namespace twr {
namespace {

constexpr int kAtOnce = 1000;  // changes, so that a request to end is soon seen

}  // namespace

std::optional<ReplayStart> ParseReplayStart(std::string_view text) {
    if (const auto moment = ParseIsoTime(text)) return ReplayStart{.moment = moment, .ofDay = {}};
    const std::string seconds = text.size() == 5 ? ":00" : "";
    const auto ofDay = ParseIsoTime("1899-12-30T" + std::string(text) + seconds + "Z");
    return ofDay ? std::optional(ReplayStart{.moment = {}, .ofDay = ofDay}) : std::nullopt;
}

Replayer::Result Replayer::PlayTo(double seconds) {
    for (int count = 0; count < kAtOnce; ++count) {
        if (!next_) next_ = source_.Next();
        if (!next_) return Result::kEnded;
        if (!started_ && !Reaches(*next_)) {
            beforehand_[{next_->change.boat, next_->change.channel}] = next_->change;
            next_.reset();
            continue;
        }
        if (!started_) Start();
        if (Due() > seconds) return Result::kWaits;
        Publish(next_->change);
        next_.reset();
    }
    return Result::kBusy;
}

// A time of day is the first one in the recording.
bool Replayer::Reaches(const Recorded& recorded) {
    if (start_.ofDay && !start_.moment) {
        const double moment = std::floor(recorded.time) + *start_.ofDay;
        start_.moment = moment < recorded.time ? moment + 1 : moment;
    }
    return !start_.moment || recorded.time >= *start_.moment;
}

void Replayer::Start() {
    started_ = true;
    startedAt_ = next_->seconds;
    for (const auto& [key, change] : beforehand_) {
        if (change.value != kNoValue) Publish(change);
    }
    beforehand_.clear();
}

void Replayer::Publish(const Change& change) {
    if (IsAlternating(change.channel) || (!channels_.empty() && !channels_.contains(change.channel))) return;
    double value = change.value;
    // Publication takes the mast's angle off, which was done when the value was recorded.
    if (change.channel == kAwa && value != kNoValue && Load(core_.View()->sysFlag[kFlagMastAngle]) != 0) {
        const double mastAngle = Load(core_.View()->fullBlocks[0].value[kMastAng]);
        if (mastAngle != kNoValue && Load(core_.View()->boatCount) > 0) value += mastAngle;
    }
    core_.SetChannel(change.channel, change.boat, value, 0.0);
}

}  // namespace twr
