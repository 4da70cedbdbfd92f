// SPDX-License-Identifier: MIT
// What is in recordings: the time, its gaps, and the values of each channel.
#pragma once
#include <cstdint>
#include <optional>
#include <vector>

#include "core/core.h"
#include "streams/change.h"

namespace twr {

// The values of one channel of one boat, in its internal unit.
struct ChannelSurvey {
    std::uint64_t count = 0;  // of values; ends are none
    double least = 0.0, greatest = 0.0, last = 0.0;

    // Of directions the mean is that of their vectors; nullopt if they cancel each other out.
    std::optional<double> Mean(std::int16_t type) const;

private:
    friend class Survey;
    double sum_ = 0.0, east_ = 0.0, north_ = 0.0;
};

// Nothing was recorded from one moment to the other, in days of UTC. A clock that was set back leaves one that ends before it
// begins.
struct RecordedGap {
    double from, to;
};

// Whether there is a gap between two changes, by their moments: the recorder has missed something, or did not run for over two
// seconds, nothing was published for over a minute, or the clock was set back.
bool IsGap(double before, const Recorded& next);

class Survey {
public:
    explicit Survey(const CCore& core);

    void Take(const Recorded& recorded);

    // nullptr if it has no value.
    const ChannelSurvey* Of(ChannelId channel, BoatSlot boat) const;

    std::vector<BoatSlot> Boats() const;      // that have a value
    std::vector<ChannelId> Channels() const;  // that one of these boats has
    bool IsEmpty() const { return !first_; }  // nothing was recorded
    double From() const { return first_.value_or(0.0); }
    double To() const { return last_; }                             // the moment of the last change
    double RecordedSeconds() const { return seconds_; }             // without the gaps
    const std::vector<RecordedGap>& Gaps() const { return gaps_; }  // the first thousand
    std::size_t GapCount() const { return gapCount_; }

private:
    std::vector<std::uint8_t> turns_;     // by channel: directions and angles
    std::vector<ChannelSurvey> surveys_;  // by boat and channel, as far as boats were seen
    std::optional<double> first_;
    double last_ = 0.0, seconds_ = 0.0;
    std::vector<RecordedGap> gaps_;
    std::size_t gapCount_ = 0;
};

}  // namespace twr
