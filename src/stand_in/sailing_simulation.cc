// SPDX-License-Identifier: MIT
#include "stand_in/sailing_simulation.h"

#include <algorithm>
#include <cmath>

#include "platform/clock.h"

namespace twr {
namespace {

using enum Quantity;

constexpr std::int64_t kTicksPerStep = 1000000;
constexpr double kStep = 0.1;  // seconds

constexpr double kOriginLatitude = 50.5;  // Celtic Sea
constexpr double kOriginLongitude = -7.0;
constexpr double kVariationThere = -3.0;
constexpr double kMinutesPerDegree = 60.0;
constexpr double kSecondsPerDay = 86400.0;

constexpr double kTidePeriod = 12.42 * 3600.0;  // seconds
constexpr double kTideBearing = 60.0;           // of the stronger stream
constexpr double kStrongStream = 0.9;           // knots
constexpr double kWeakStream = 0.3;

constexpr double kFeetPerMetre = 3.2808;
constexpr double kLeastPolarForPercent = 3.0;  // knots; below it, head to wind, a percentage means nothing

double Wave(double elapsed, double seconds) { return SinDegrees(std::fmod(elapsed, seconds) * 360.0 / seconds); }

}  // namespace

SailingSimulation::SailingSimulation(std::uint64_t seed, std::int32_t startLead)
    : random_(seed),
      wind_(random_, kStep),
      tidePhase_(random_.Uniform(0.0, 360.0)),
      race_(polar_, std::max(startLead, 1), wind_.TrendDirection(), kStep),
      yacht_(polar_, race_.WaitingPlace(), wind_.TrendDirection() + 90.0, 6.0) {
    yacht_.Step(0.0, {}, wind_.Now(), Current());
    Describe();
}

// A rotating tidal stream: its end runs around an ellipse.
Vector SailingSimulation::Current() const {
    const double phase = 360.0 * (static_cast<double>(steps_) * kStep / kTidePeriod) + tidePhase_;
    return Towards(kTideBearing, kStrongStream * CosDegrees(phase)) + Towards(kTideBearing + 90.0, kWeakStream * SinDegrees(phase));
}

void SailingSimulation::Step() {
    ++steps_;
    wind_.Step(random_);
    const HelmOrder order = race_.Step(yacht_.State(), Current(), wind_.TrendDirection(), random_);
    yacht_.Step(kStep, order, wind_.Now(), Current());
}

void SailingSimulation::Advance(double seconds) {
    if (!(seconds > 0.0)) return;
    ticks_ += std::llround(seconds * kTicksPerSecond);
    if (steps_ == ticks_ / kTicksPerStep) return;
    while (steps_ < ticks_ / kTicksPerStep) Step();
    Describe();
}

void SailingSimulation::Describe() {
    DescribeSailing();
    DescribeTargets();
    DescribeSurroundings();
}

void SailingSimulation::DescribeSailing() {
    const YachtState& yacht = yacht_.State();
    const Vector current = Current();
    const Wind groundWind = wind_.Now();
    moment_.Set(kBsp, yacht.speed);
    moment_.Set(kAwa, yacht.awa);
    moment_.Set(kAws, yacht.aws);
    moment_.Set(kTwa, yacht.twa);
    moment_.Set(kTws, yacht.trueWind.speed);
    moment_.Set(kTwd, yacht.trueWind.from);
    moment_.Set(kHdg, yacht.heading);
    moment_.Set(kCourse, yacht.course);
    moment_.Set(kLeeway, -yacht.leeway);
    moment_.Set(kHeel, -yacht.heel);
    moment_.Set(kTrim, -0.6 + 0.1 * yacht.speed + 0.8 * Wave(static_cast<double>(steps_) * kStep, 4.7));
    moment_.Set(kRudder, yacht.rudder);
    moment_.Set(kRateOfTurn, yacht.turnRate);
    moment_.Set(kCog, BearingOf(yacht.ground));
    moment_.Set(kSog, Length(yacht.ground));
    moment_.Set(kSet, BearingOf(current));
    moment_.Set(kDrift, Length(current));
    moment_.Set(kGroundWindDirection, groundWind.from);
    moment_.Set(kGroundWindSpeed, groundWind.speed);
    moment_.Set(kLog, yacht.log);
    const double pull = yacht.aws * yacht.aws * std::max(0.0, CosDegrees(yacht.awa));
    moment_.Set(kForestay, 2.5 + 0.008 * pull);
    moment_.Set(kBackstay, 1.2 + 0.004 * pull);
    moment_.Set(kMastAngle, 12.0 * SinDegrees(yacht.awa));
}

void SailingSimulation::DescribeTargets() {
    const YachtState& yacht = yacht_.State();
    const double tws = yacht.trueWind.speed;
    const double polarSpeed = polar_.Speed(tws, yacht.twa);
    const BestAngles best = polar_.Best(tws);
    const double targetAngle = std::abs(yacht.twa) < 90.0 ? best.upwind : best.downwind;
    const double targetSpeed = polar_.Speed(tws, targetAngle);
    moment_.Set(kVmg, yacht.speed * CosDegrees(yacht.twa));
    moment_.Set(kTargetTwa, yacht.twa < 0.0 ? -targetAngle : targetAngle);
    moment_.Set(kTargetBsp, targetSpeed);
    moment_.Set(kTargetVmg, targetSpeed * CosDegrees(targetAngle));
    moment_.Set(kPolarBsp, polarSpeed);
    moment_.Set(kPolarPercent, polarSpeed < kLeastPolarForPercent ? kAbsent : 100.0 * yacht.speed / polarSpeed);
    const Vector way = race_.Mark() - yacht.position;
    moment_.Set(kMarkDistance, Length(way));
    moment_.Set(kMarkBearing, BearingOf(way));
    moment_.Set(kMarkTime, polar_.SailingTime(tws, yacht.trueWind.from - BearingOf(way), Length(way)));
    moment_.Set(kTimer, race_.Timer());
    moment_.Set(kTimeToGun, race_.Timer() > 0 ? race_.Timer() / kSecondsPerDay : kAbsent);
}

void SailingSimulation::DescribeSurroundings() {
    const double elapsed = static_cast<double>(steps_) * kStep;
    const Vector at = yacht_.State().position;
    const double metres = 85.0 + 7.0 * std::sin(at.east * 2.1) + 5.0 * std::cos(at.north * 1.7 + at.east * 0.6);
    moment_.Set(kDepth, metres * kFeetPerMetre);
    moment_.Set(kLat, kOriginLatitude + at.north / kMinutesPerDegree);
    moment_.Set(kLon, kOriginLongitude + at.east / (kMinutesPerDegree * CosDegrees(kOriginLatitude)));
    moment_.Set(kVariation, kVariationThere);
    moment_.Set(kSeaTemp, 14.5 + 0.3 * Wave(elapsed, 86400.0));
    moment_.Set(kAirTemp, 16.0 + 2.5 * Wave(elapsed, 86400.0));
    moment_.Set(kBaro, 1014.0 + 5.0 * Wave(elapsed, 130000.0));
    moment_.Set(kVolts, 25.4 + 0.6 * Wave(elapsed, 5400.0));
}

}  // namespace twr
