// SPDX-License-Identifier: MIT
#include "stand_in/race.h"

#include <algorithm>
#include <cmath>

namespace twr {
namespace {

constexpr double kWindwardMark = 1.8;  // nautical miles above the start line
constexpr double kLeewardMark = 0.2;
constexpr double kWaitingBelow = -0.2;
constexpr double kWaitingAside = 0.15;
constexpr double kRounding = 0.03;        // nautical miles
constexpr int kLegs = 4;                  // two laps; the last leg ends on the start line
constexpr double kTurningTime = 15.0;     // seconds lost until she is under way to the line
constexpr double kApproachMargin = 1.15;  // of the time to the line, so that there is speed to spare
constexpr double kLeastPower = 0.2;
constexpr double kRestSeconds = 60.0;  // from the finish to the next count
constexpr double kRestPower = 0.6;

}  // namespace

Race::Race(const YachtPolar& polar, std::int32_t startLead, double windDirection, double step)
    : polar_(polar),
      sailor_(polar),
      helmsman_(1.0, 8.0, step),
      startLead_(startLead),
      step_(step),
      stepsPerSecond_(std::llround(1.0 / step)) {
    Lay(windDirection);
}

void Race::Lay(double windDirection) {
    axis_ = windDirection;
    phase_ = Phase::kManoeuvring;
    stepsToStart_ = startLead_ * stepsPerSecond_;
    leg_ = 0;
}

std::int32_t Race::Timer() const { return static_cast<std::int32_t>((stepsToStart_ + stepsPerSecond_ - 1) / stepsPerSecond_); }

Vector Race::Place(double upwind, double right) const { return Towards(axis_, upwind) + Towards(axis_ + 90.0, right); }

Vector Race::Mark() const {
    if (phase_ != Phase::kRacing || leg_ == kLegs - 1) return Place(0.0, 0.0);
    return leg_ % 2 == 0 ? Place(kWindwardMark, 0.0) : Place(kLeewardMark, 0.0);
}

bool Race::Reached(Vector point, const YachtState& yacht) const { return Length(point - yacht.position) < kRounding; }

double Race::TimeTo(Vector point, const YachtState& yacht) const {
    const Vector way = point - yacht.position;
    return polar_.SailingTime(yacht.trueWind.speed, yacht.trueWind.from - BearingOf(way), Length(way));
}

HelmOrder Race::BeforeStart(const YachtState& yacht, Vector current) {
    --stepsToStart_;
    const Vector line = Place(0.0, 0.0);
    const double timeToLine = TimeTo(line, yacht) * kApproachMargin;
    const double timeToStart = static_cast<double>(stepsToStart_) * step_;
    if (phase_ == Phase::kManoeuvring && timeToLine + kTurningTime >= timeToStart) phase_ = Phase::kApproaching;
    if (stepsToStart_ == 0) phase_ = Phase::kRacing;
    if (phase_ != Phase::kManoeuvring) {
        const double power = std::clamp(timeToLine / std::max(timeToStart, 1.0), kLeastPower, 1.0);
        return {sailor_.CourseTo(line, yacht, current, step_), power};
    }
    const Vector place = Place(kWaitingBelow, waiting_ == 0 ? kWaitingAside : -kWaitingAside);
    if (Reached(place, yacht)) waiting_ = 1 - waiting_;
    return {sailor_.CourseTo(place, yacht, current, step_), 1.0};
}

HelmOrder Race::AfterStart(const YachtState& yacht, Vector current, double trendDirection) {
    if (phase_ == Phase::kRacing && Reached(Mark(), yacht) && ++leg_ == kLegs) {
        phase_ = Phase::kFinished;
        stepsToNext_ = std::llround(kRestSeconds / step_);
    }
    if (phase_ == Phase::kRacing) return {sailor_.CourseTo(Mark(), yacht, current, step_), 1.0};
    if (--stepsToNext_ == 0) Lay(trendDirection);
    return {sailor_.CourseTo(WaitingPlace(), yacht, current, step_), kRestPower};
}

HelmOrder Race::Step(const YachtState& yacht, Vector current, double trendDirection, Random& random) {
    helmsman_.Step(random);
    HelmOrder order = stepsToStart_ > 0 ? BeforeStart(yacht, current) : AfterStart(yacht, current, trendDirection);
    order.course = WrappedBearing(order.course + helmsman_.Value());
    return order;
}

}  // namespace twr
