// SPDX-License-Identifier: MIT
// Publishes what was recorded.
#pragma once
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "core/core.h"
#include "streams/change.h"

namespace twr {

// Where to start: at a moment, in days, or at a time of day (UTC), in days too; at the beginning if neither is given.
struct ReplayStart {
    std::optional<double> moment, ofDay;
};

// "2026-11-25T12:30:00Z", "12:30" or "12:30:05"; nullopt for anything else.
std::optional<ReplayStart> ParseReplayStart(std::string_view text);

class Replayer {
public:
    enum class Result {
        kWaits,  // what is next is not due yet
        kBusy,   // more is due than is published at once
        kEnded,  // by the end, or by a fault of the source
    };

    // Publishes these channels alone, if there are any. The record must be attached, and all must outlive this.
    Replayer(CCore& core, RecordedSource& source, const std::set<ChannelId>& channels, const ReplayStart& start)
        : core_(core), source_(source), channels_(channels), start_(start) {}

    // Publishes what is due, stamped with the time of now. At the start it publishes what each channel had then.
    Result PlayTo(double seconds);

    // When what is next is due: seconds from the start. 0.0 before that is known.
    double Due() const { return next_ ? next_->seconds - startedAt_ : 0.0; }

    bool Started() const { return started_; }  // something of the source was to be played

private:
    bool Reaches(const Recorded& recorded);
    void Start();
    void Publish(const Change& change);

    CCore& core_;
    RecordedSource& source_;
    const std::set<ChannelId> channels_;
    ReplayStart start_;
    std::optional<Recorded> next_;
    bool started_ = false;
    double startedAt_ = 0.0;                                       // seconds since the start of the recording
    std::map<std::pair<BoatSlot, ChannelId>, Change> beforehand_;  // the latest of each, before the start
};

}  // namespace twr
