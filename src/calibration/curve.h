// SPDX-License-Identifier: MIT
// One curve of a calibration: corrections over the first axis, joined by a natural cubic spline or straight lines.
//
// Any number is accepted: NaN, infinities and points that share an x give some result, never a fault. An x of kNoValue, a missing
// input, gives a value only on a curve of one point, which needs no x.
#pragma once
#include <cstddef>
#include <vector>

#include "base/no_value.h"

namespace twr {

struct CalibrationPoint {
    double x = 0.0;
    double y = kNoValue;   // the correction; kNoValue is a hole in the curve
    double y2 = kNoValue;  // second derivative of the spline, written by UpdateSpline; kNoValue if there is none
};

struct CalibrationCurve {
    double key = 0.0;                      // place on the second axis
    bool dirty = true;                     // to be set when points change: the spline is computed before its next use
    std::vector<CalibrationPoint> points;  // ordered by x, rising or falling

    // The points on either side of x, `low` the one with the smaller x; an x beyond the ends gets the end segment. One point is
    // both. False for an empty curve.
    bool Bracket(std::size_t& low, std::size_t& high, double x) const;

    // On straight lines, which go on beyond the ends. False, with kNoValue, for an empty curve and beside a hole.
    bool StraightLineValue(double& out, double x) const;

    // On the spline; beside a hole the value of the other point. False, with kNoValue, for an empty curve, at a hole and
    // between two holes.
    bool SplineValue(double& out, double x);

    // Computes every y2. False with fewer than two points or without memory for it.
    bool UpdateSpline();
};

}  // namespace twr
