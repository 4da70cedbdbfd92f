// One calibration: a table of curves over one or two input channels, or a single constant. It yields a correction in the units of
// the channel, never the corrected value itself.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "calibration/curve.h"

namespace twr {

// With neither input the calibration is a constant: the y of the first point of the first curve. Inputs and `self` are ChannelIds.
struct CalibrationObject {
    static constexpr std::uint32_t kNoInput = 32767;

    std::vector<CalibrationCurve> curves;  // ordered by rising key
    std::uint32_t inputX = kNoInput;       // the place along a curve
    std::uint32_t inputY = kNoInput;       // the place across the curves
    std::uint32_t self = kNoInput;         // the channel being corrected
    bool active = false;                   // switched on
    bool linear = false;                   // straight lines in both directions, in place of splines and a blend of four curves

    // The correction at (x, y). y is limited to the outer curves, x is not; a y of kNoValue uses the first curve alone. False, with
    // kNoValue, if there is none.
    bool Evaluate(double& out, double x, double y);

    // The same on one curve; false for an index without a curve.
    bool EvaluateCurve(std::size_t index, double& out, double x);
};

}  // namespace twr
