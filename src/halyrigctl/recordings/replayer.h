// SPDX-License-Identifier: MIT
// Publishes what was recorded.
#pragma once
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "core/core.h"
#include "core/days.h"
#include "streams/change.h"

namespace twr {

// The moment at which to start, of a recording whose first change came at `first`; both in days. Empty for the beginning.
using ReplayStart = std::function<double(double first)>;

class Replayer {
public:
    enum class Result {
        kWaits,  // what is next is not due yet
        kBusy,   // more is due than is published at once
        kEnded,  // by the end, or by a fault of the source
    };

    // Publishes these channels alone, if there are any. The record must be attached, and all must outlive this. If nothing says at
    // which moment to start, it does so many seconds from the beginning of the source.
    Replayer(CCore& core, RecordedSource& source, const std::set<ChannelId>& channels, ReplayStart start, double seconds = 0.0)
        : core_(core), source_(source), channels_(channels), start_(std::move(start)), startedAt_(seconds) {}

    // Publishes what is due, stamped with the time of now. At the start it publishes what each channel had then.
    Result PlayTo(double seconds);

    // When what is next is due: seconds from the start. 0.0 before that is known.
    double Due() const { return next_ ? next_->seconds - startedAt_ : 0.0; }

    // What was recorded so many seconds from the start: its moment, days. 0.0 before that is known.
    double MomentAt(double seconds) const { return next_ ? next_->time - (Due() - seconds) / kSecondsPerDay : 0.0; }

    // The same in seconds from the beginning of the source.
    double SecondsAt(double seconds) const { return startedAt_ + seconds; }

    bool Started() const { return started_; }  // something of the source was to be played

private:
    bool Reaches(const Recorded& recorded);
    void Start();
    void Publish(const Change& change);

    CCore& core_;
    RecordedSource& source_;
    const std::set<ChannelId> channels_;
    const ReplayStart start_;
    std::optional<double> startsAt_;  // days
    std::optional<Recorded> next_;
    bool started_ = false;
    double startedAt_;                                             // seconds since the start of the recording
    std::map<std::pair<BoatSlot, ChannelId>, Change> beforehand_;  // the latest of each, before the start
};

}  // namespace twr
