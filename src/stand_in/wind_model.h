// SPDX-License-Identifier: MIT
// The wind over the ground: a slow trend through the day, oscillating shifts of some minutes, and gusts.
#pragma once
#include <array>

#include "base/angles.h"
#include "stand_in/random.h"

namespace twr {

// A wind: where it comes from and how fast.
struct Wind {
    double from = 0.0;   // bearing, degrees true
    double speed = 0.0;  // knots
};

inline Vector VelocityOf(Wind wind) { return Towards(wind.from + 180.0, wind.speed); }
inline Wind WindOf(Vector velocity) { return {BearingOf(velocity * -1.0), Length(velocity)}; }

class WindModel {
public:
    // `step` is the length in seconds of every later step.
    WindModel(Random& random, double step);

    void Step(Random& random);

    Wind Now() const;

    // Direction without shifts and gusts, by which a course is laid.
    double TrendDirection() const;

private:
    struct Swing {
        double amplitude, period, phase;  // seconds and degrees
    };
    double At(const Swing& swing) const;

    double step_;
    double elapsed_ = 0.0;
    double baseDirection_, baseSpeed_;
    Swing trend_, speedTrend_;
    std::array<Swing, 2> shifts_;
    Wander gustDirection_, gustSpeed_, lullSpeed_;
};

}  // namespace twr
