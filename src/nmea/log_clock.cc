// SPDX-License-Identifier: MIT
#include "nmea/log_clock.h"

#include <algorithm>

#include "nmea/readings.h"

namespace twr {
namespace {

constexpr double kSecondsPerDay = 86400.0;
constexpr double kLongestGap = 60.0;  // seconds
constexpr double kJitter = 5.0;       // seconds by which sentences of one epoch may differ
constexpr double kRound = 1.0;        // seconds of an epoch without a clock
constexpr int kSentencesToLoseClock = 300;
constexpr int kSentencesToLoseLeader = 64;

}  // namespace

void LogClock::Start(bool hasClock) {
    *this = LogClock();
    clockless_ = !hasClock;
}

LogClock::Key LogClock::KeyOf(const NmeaSentence& sentence) {
    Key key{};
    std::ranges::copy(sentence.talker, key.begin());
    std::ranges::copy(sentence.type, key.begin() + 2);
    if (sentence.type == "MWV" && !sentence.Field(2).empty()) key[5] = sentence.Field(2)[0];
    return key;
}

double LogClock::StepByClock(double timeOfDay) {
    double gap = lastTimeOfDay_ ? timeOfDay - *lastTimeOfDay_ : 0.0;
    if (gap < -kSecondsPerDay / 2) gap += kSecondsPerDay;
    if (gap > kSecondsPerDay / 2) gap -= kSecondsPerDay;
    if (gap < 0.0 && gap > -kJitter) return 0.0;
    const double step = std::clamp(gap - sinceLastTimeOfDay_, 0.0, kLongestGap);
    lastTimeOfDay_ = timeOfDay;
    sinceLastTimeOfDay_ = 0.0;
    return step;
}

double LogClock::StepByRound(const Key& key) {
    const bool first = !leader_;
    const bool around = leader_ == key;
    if (!first && !around && ++sinceLeader_ < kSentencesToLoseLeader) return 0.0;
    leader_ = key;
    sinceLeader_ = 0;
    if (first) return 0.0;
    sinceLastTimeOfDay_ += kRound;
    return kRound;
}

double LogClock::Step(const NmeaSentence& sentence) {
    if (const auto timeOfDay = TimeOfDayOf(sentence)) {
        clockless_ = false;
        sinceClock_ = 0;
        return StepByClock(*timeOfDay);
    }
    if (!clockless_ && ++sinceClock_ >= kSentencesToLoseClock) clockless_ = true;
    return clockless_ ? StepByRound(KeyOf(sentence)) : 0.0;
}

}  // namespace twr
