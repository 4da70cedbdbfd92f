// SPDX-License-Identifier: MIT
// The time that passes in a log, derived from its sentences as they come.
#pragma once
#include <array>
#include <optional>

#include "nmea/sentence.h"

namespace twr {

class LogClock {
public:
    // `hasClock`: the log contains the time of day. If not, a second passes each time that its leading sentence, the first
    // one, comes around.
    void Start(bool hasClock);

    // Seconds by which this sentence advances the log, never less than 0. Gaps are cut to a minute. Midnight, and a clock
    // that is set back, are no gaps.
    double Step(const NmeaSentence& sentence);

private:
    using Key = std::array<char, 6>;

    static Key KeyOf(const NmeaSentence& sentence);
    double StepByClock(double timeOfDay);
    double StepByRound(const Key& key);

    bool clockless_ = false;
    int sinceClock_ = 0;  // sentences
    std::optional<double> lastTimeOfDay_;
    double sinceLastTimeOfDay_ = 0.0;  // seconds that have passed without the clock
    std::optional<Key> leader_;
    int sinceLeader_ = 0;  // sentences
};

}  // namespace twr
