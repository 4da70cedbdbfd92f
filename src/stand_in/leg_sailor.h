// SPDX-License-Identifier: MIT
// Finds the course to steer towards a point: straight, or in boards against and before the wind.
#pragma once
#include "stand_in/racing_yacht.h"
#include "stand_in/yacht_polar.h"

namespace twr {

class LegSailor {
public:
    explicit LegSailor(const YachtPolar& polar) : polar_(polar) {}

    // Course through the water towards `point`, after another `seconds` of sailing.
    double CourseTo(Vector point, const YachtState& yacht, Vector current, double seconds);

private:
    bool ShouldTurn(double straight, double limit, double distance) const;

    const YachtPolar& polar_;
    double side_ = 1.0;
    double sinceTurn_ = 0.0;
    double meanDirection_ = 0.0;  // of the true wind over the last minutes
    bool hasMean_ = false;
    double shift_ = 0.0;  // from that mean, positive to the right
};

}  // namespace twr
