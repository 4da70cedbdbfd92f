// SPDX-License-Identifier: MIT
#include "stand_in/racing_yacht.h"

#include <algorithm>
#include <cmath>

namespace twr {
namespace {

constexpr double kMostRudder = 22.0;        // degrees
constexpr double kRudderRate = 15.0;        // degrees per second
constexpr double kTurnPerRudder = 0.055;    // degrees per second for a degree of rudder and a knot
constexpr double kSteerageSpeed = 2.0;      // knots; the backed jib turns her when she is slower
constexpr double kTurnLag = 0.8;            // seconds
constexpr double kMostTurn = 8.0;           // degrees per second that a crew can follow
constexpr double kTurnPerError = 0.5;       // degrees per second for a degree off the course
constexpr double kWeatherHelm = 0.15;       // degrees of rudder for a degree of heel
constexpr double kSpeedLag = 15.0;          // seconds
constexpr double kTurnDrag = 0.004;         // share of the speed lost for a degree turned
constexpr double kMostHeel = 27.0;          // degrees, where the crew eases the sails
constexpr double kHeelPerPressure = 0.006;  // for a square knot of wind across the yacht
constexpr double kHeelLag = 2.0;            // seconds
// The keel's side force grows with leeway and the square of the speed, the sails' side force with heel, and the two are equal.
// Hence the usual leeway = K * heel / speed^2, with K taken so that she makes about 3 degrees on a beat.
constexpr double kLeewayOfHeel = 10.0;
constexpr double kLeastLeewaySpeed = 4.0;  // knots; below it the keel stalls and the rule no longer holds
constexpr double kMostLeeway = 8.0;        // degrees
constexpr double kSecondsPerHour = 3600.0;

double Lagged(double value, double target, double seconds, double lag) {
    return value + (target - value) * std::min(1.0, seconds / lag);
}

}  // namespace

RacingYacht::RacingYacht(const YachtPolar& polar, Vector position, double heading, double speed) : polar_(polar) {
    state_.position = position;
    state_.heading = state_.course = WrappedBearing(heading);
    state_.speed = speed;
}

void RacingYacht::Steer(double seconds, double course) {
    const double error = WrappedAngle(course - state_.course);
    const double rate = std::clamp(error * kTurnPerError, -kMostTurn, kMostTurn);
    const double gain = kTurnPerRudder * std::max(state_.speed, kSteerageSpeed);
    // Heeled to starboard she would turn to port by herself.
    const double balance = kWeatherHelm * state_.heel;
    const double wanted = std::clamp(rate / gain + balance, -kMostRudder, kMostRudder);
    state_.rudder += std::clamp(wanted - state_.rudder, -kRudderRate * seconds, kRudderRate * seconds);
    state_.turnRate = Lagged(state_.turnRate, gain * (state_.rudder - balance), seconds, kTurnLag);
    state_.heading = WrappedBearing(state_.heading + state_.turnRate * seconds);
}

void RacingYacht::MakeSpeed(double seconds, double power) {
    const double reachable = polar_.Speed(state_.trueWind.speed, state_.twa) * power;
    state_.speed = Lagged(state_.speed, reachable, seconds, kSpeedLag);
    state_.speed *= 1.0 - kTurnDrag * std::abs(state_.turnRate) * seconds;
}

void RacingYacht::Heel(double seconds) {
    const double pressure = state_.aws * state_.aws * SinDegrees(state_.awa);
    const double target = -kMostHeel * std::tanh(kHeelPerPressure * pressure);
    state_.heel = Lagged(state_.heel, target, seconds, kHeelLag);
    const double speed = std::max(state_.speed, kLeastLeewaySpeed);
    state_.leeway = std::clamp(kLeewayOfHeel * state_.heel / (speed * speed), -kMostLeeway, kMostLeeway);
}

// Everything that follows from heading, leeway, speed, wind and current, so that one moment agrees with itself.
void RacingYacht::Settle(Wind groundWind, Vector current) {
    state_.course = WrappedBearing(state_.heading + state_.leeway);
    state_.velocity = Towards(state_.course, state_.speed);
    state_.ground = state_.velocity + current;
    const Vector overWater = VelocityOf(groundWind) - current;
    state_.trueWind = WindOf(overWater);
    state_.twa = WrappedAngle(state_.trueWind.from - state_.course);
    const Wind apparent = WindOf(overWater - state_.velocity);
    state_.awa = WrappedAngle(apparent.from - state_.heading);
    state_.aws = apparent.speed;
}

void RacingYacht::Step(double seconds, const HelmOrder& order, Wind groundWind, Vector current) {
    Settle(groundWind, current);
    Steer(seconds, order.course);
    MakeSpeed(seconds, order.power);
    Heel(seconds);
    Settle(groundWind, current);
    state_.position = state_.position + state_.ground * (seconds / kSecondsPerHour);
    state_.log += state_.speed * seconds / kSecondsPerHour;
}

}  // namespace twr
