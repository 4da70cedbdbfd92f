// SPDX-License-Identifier: MIT
// The calibration objects: which there are, and a correction by one.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
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

inline constexpr std::size_t kCalibrationCount = 20;

struct CalibrationInfo {
    std::uint16_t corrected, inputX, inputY;  // ChannelIds; 32767 for none
    std::uint8_t pointsX, pointsY;            // points on the first and second axis
    float value;                              // in `unit`
    float startX, startY, stepX, stepY;       // in the units of the inputs
    std::uint8_t flags[2];
    std::uint8_t always;  // in force whether or not it is switched on
    std::uint8_t flag3;
    std::u16string_view unit;
    std::u16string_view name;
    std::int32_t next;  // the row after it, 0 after the last
};

// Indexed like the calibrations themselves.
std::span<const CalibrationInfo, kCalibrationCount> CalibrationCatalogue();

}  // namespace twr
