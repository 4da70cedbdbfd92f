// SPDX-License-Identifier: MIT
#include "stand_in/leg_sailor.h"

#include <algorithm>
#include <cmath>

namespace twr {
namespace {

constexpr double kMeanSeconds = 400.0;
constexpr double kLeastBoard = 50.0;     // seconds between two turns
constexpr double kShiftToTurn = 6.0;     // degrees
constexpr double kCloseDistance = 0.25;  // nautical miles, from where only the layline counts
constexpr double kCornerShare = 0.75;    // of the angle to the layline, where a corner of the course begins
constexpr double kLeastCrabSpeed = 3.0;  // knots

// The course through the water on which the yacht moves along `bearing` over the ground.
double CrabbedCourse(double bearing, double speed, Vector current) {
    const double across = Length(current) * SinDegrees(BearingOf(current) - bearing);
    return bearing - Degrees(std::asin(std::clamp(across / std::max(speed, kLeastCrabSpeed), -0.9, 0.9)));
}

}  // namespace

// A beat turns when the wind heads her, a run when it lifts her, and both before they get into a corner of the course.
bool LegSailor::ShouldTurn(double straight, double limit, double distance) const {
    if (sinceTurn_ < kLeastBoard || distance < kCloseDistance) return false;
    const bool beating = std::abs(straight) < 90.0;
    const double bad = beating ? -side_ * shift_ : side_ * shift_;
    const double off = beating ? std::abs(straight) : 180.0 - std::abs(straight);
    const double limitOff = beating ? limit : 180.0 - limit;
    const bool corner = straight * side_ < 0.0 && off > kCornerShare * limitOff;
    return bad > kShiftToTurn || corner;
}

double LegSailor::CourseTo(Vector point, const YachtState& yacht, Vector current, double seconds) {
    sinceTurn_ += seconds;
    const double twd = yacht.trueWind.from;
    if (!hasMean_) meanDirection_ = twd;
    hasMean_ = true;
    shift_ = WrappedAngle(twd - meanDirection_);
    meanDirection_ += shift_ * seconds / kMeanSeconds;

    const Vector way = point - yacht.position;
    const double course = CrabbedCourse(BearingOf(way), yacht.speed, current);
    const double straight = WrappedAngle(twd - course);
    const auto [upwind, downwind] = polar_.Best(yacht.trueWind.speed);
    const double angle = std::clamp(std::abs(straight), upwind, downwind);
    const double before = side_;
    if (angle == std::abs(straight)) {
        side_ = straight < 0.0 ? -1.0 : 1.0;
    } else if (ShouldTurn(straight, angle, Length(way))) {
        side_ = -side_;
    }
    if (side_ != before) sinceTurn_ = 0.0;
    return WrappedBearing(twd - side_ * angle);
}

}  // namespace twr
