// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/replayer.h"

#include "core/record_access.h"

namespace twr {
namespace {

constexpr int kAtOnce = 1000;  // changes, so that a request to end is soon seen

}  // namespace

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

bool Replayer::Reaches(const Recorded& recorded) {
    if (!start_) return recorded.seconds >= startedAt_;
    if (!startsAt_) startsAt_ = start_(recorded.time);
    return recorded.time >= *startsAt_;
}

void Replayer::Start() {
    started_ = true;
    const bool isBack = !start_ && startedAt_ > 0.0;  // what had ended by then may have come again since
    if (!isBack) startedAt_ = next_->seconds;
    for (const auto& [key, change] : beforehand_) {
        if (change.value != kNoValue || isBack) Publish(change);
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
