// SPDX-License-Identifier: MIT
// How the simulated yacht moves: steering, speed, heel, leeway and track, step by step.
#pragma once
#include "stand_in/wind_model.h"
#include "stand_in/yacht_polar.h"

namespace twr {

// What the crew wants of her.
struct HelmOrder {
    double course = 0.0;  // through the water, degrees true
    double power = 1.0;   // share of the polar speed that the sails are trimmed for
};

struct YachtState {
    Vector position;        // nautical miles from the origin of the course
    double heading = 0.0;   // degrees true
    double turnRate = 0.0;  // degrees per second, positive to starboard
    double rudder = 0.0;    // degrees, positive turns her to starboard
    double speed = 0.0;     // knots through the water, along the course
    double heel = 0.0;      // degrees, positive to starboard
    double leeway = 0.0;    // degrees, positive to starboard
    double course = 0.0;    // heading plus leeway
    double log = 0.0;       // nautical miles through the water
    Vector velocity;        // through the water, knots
    Vector ground;          // over the ground, knots
    Wind trueWind;          // over the water
    double twa = 0.0;       // of the true wind from the course, positive on the starboard side
    double awa = 0.0;       // of the apparent wind from the bow
    double aws = 0.0;       // knots
};

class RacingYacht {
public:
    RacingYacht(const YachtPolar& polar, Vector position, double heading, double speed);

    void Step(double seconds, const HelmOrder& order, Wind groundWind, Vector current);

    const YachtState& State() const { return state_; }

private:
    void Steer(double seconds, double course);
    void MakeSpeed(double seconds, double power);
    void Heel(double seconds);
    void Settle(Wind groundWind, Vector current);

    const YachtPolar& polar_;
    YachtState state_;
};

}  // namespace twr
