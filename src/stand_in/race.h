// SPDX-License-Identifier: MIT
// The races of a day: the five minutes before the start, laps between a windward and a leeward mark, the finish, and the next
// start.
#pragma once
#include <cstdint>

#include "stand_in/leg_sailor.h"
#include "stand_in/racing_yacht.h"
#include "stand_in/random.h"

namespace twr {

class Race {
public:
    // `startLead` is the length in seconds of the count before each start, `step` that of every later step. The first course is
    // laid by this wind.
    Race(const YachtPolar& polar, std::int32_t startLead, double windDirection, double step);

    // What to do next. `trendDirection` is the wind by which the next race's course is laid.
    HelmOrder Step(const YachtState& yacht, Vector current, double trendDirection, Random& random);

    // Whole seconds to the start, 0 after it.
    std::int32_t Timer() const;

    // The next point to sail to: a mark, or the middle of the start line before the start.
    Vector Mark() const;

    // Where the yacht waits for the first start.
    Vector WaitingPlace() const { return Place(-0.25, 0.0); }

private:
    enum class Phase { kManoeuvring, kApproaching, kRacing, kFinished };

    // Lays the course of the next race, square to this wind, and starts its count.
    void Lay(double windDirection);

    Vector Place(double upwind, double right) const;
    bool Reached(Vector point, const YachtState& yacht) const;
    double TimeTo(Vector point, const YachtState& yacht) const;
    HelmOrder BeforeStart(const YachtState& yacht, Vector current);
    HelmOrder AfterStart(const YachtState& yacht, Vector current, double trendDirection);

    const YachtPolar& polar_;
    LegSailor sailor_;
    Wander helmsman_;
    std::int32_t startLead_;
    double step_;
    std::int64_t stepsPerSecond_;

    Phase phase_ = Phase::kManoeuvring;
    std::int64_t stepsToStart_ = 0;
    std::int64_t stepsToNext_ = 0;
    double axis_ = 0.0;  // bearing of the windward mark from the start line
    int waiting_ = 0;    // which of the two places below the line she sails to
    int leg_ = 0;        // from 0; the even ones lead to windward
};

}  // namespace twr
