// SPDX-License-Identifier: MIT
#include "stand_in/wind_model.h"

#include <algorithm>

namespace twr {
namespace {

constexpr double kLeastSpeed = 5.0;  // a race would not be started in less
constexpr double kMostSpeed = 24.0;

}  // namespace

WindModel::WindModel(Random& random, double step)
    : step_(step), gustDirection_(2.0, 20.0, step), gustSpeed_(1.0, 15.0, step), lullSpeed_(0.9, 300.0, step) {
    const auto phase = [&] { return random.Uniform(0.0, 360.0); };
    baseDirection_ = random.Uniform(200.0, 260.0);
    baseSpeed_ = random.Uniform(11.0, 14.0);
    trend_ = {14.0, 9.0 * 3600.0, phase()};
    speedTrend_ = {3.0, 7.0 * 3600.0, phase()};
    shifts_ = {{{6.0, 540.0, phase()}, {3.5, 1130.0, phase()}}};
}

double WindModel::At(const Swing& swing) const {
    return swing.amplitude * SinDegrees(360.0 * elapsed_ / swing.period + swing.phase);
}

void WindModel::Step(Random& random) {
    elapsed_ += step_;
    gustDirection_.Step(random);
    gustSpeed_.Step(random);
    lullSpeed_.Step(random);
}

double WindModel::TrendDirection() const { return WrappedBearing(baseDirection_ + At(trend_)); }

Wind WindModel::Now() const {
    const double from = TrendDirection() + At(shifts_[0]) + At(shifts_[1]) + gustDirection_.Value();
    const double speed = baseSpeed_ + At(speedTrend_) + gustSpeed_.Value() + lullSpeed_.Value();
    return {WrappedBearing(from), std::clamp(speed, kLeastSpeed, kMostSpeed)};
}

}  // namespace twr
