// SPDX-License-Identifier: MIT
#include "stand_in/yacht_polar.h"

#include <algorithm>
#include <cmath>

#include "base/angles.h"

namespace twr {
namespace {

constexpr std::size_t kSpeedCount = 10;
constexpr std::size_t kAngleCount = 14;
constexpr double kLeastSailingSpeed = 0.5;  // keeps a time finite

constexpr double kWindSpeeds[kSpeedCount] = {0, 4, 6, 8, 10, 12, 14, 16, 20, 25};
constexpr double kAngles[kAngleCount] = {0, 20, 30, 36, 42, 52, 60, 75, 90, 110, 120, 135, 150, 180};

// A table drawn up for this yacht: rows by angle, columns by wind speed, knots.
constexpr double kTable[kAngleCount][kSpeedCount] = {
    {0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0},       {0, 1.2, 1.8, 2.4, 2.8, 3.1, 3.3, 3.4, 3.5, 3.6},
    {0, 2.9, 4.2, 5.3, 6.0, 6.5, 6.8, 6.9, 7.0, 7.1},       {0, 3.8, 5.4, 6.6, 7.3, 7.7, 8.0, 8.1, 8.2, 8.3},
    {0, 4.5, 6.3, 7.5, 8.2, 8.6, 8.8, 8.9, 9.1, 9.2},       {0, 5.1, 7.0, 8.3, 8.9, 9.2, 9.5, 9.7, 10.0, 10.2},
    {0, 5.5, 7.4, 8.7, 9.3, 9.6, 9.9, 10.2, 10.6, 11.0},    {0, 5.9, 7.8, 9.1, 9.8, 10.3, 10.7, 11.0, 11.6, 12.3},
    {0, 5.9, 7.9, 9.3, 10.1, 10.7, 11.2, 11.7, 12.6, 13.8}, {0, 5.6, 7.8, 9.3, 10.3, 11.2, 12.0, 12.8, 14.4, 16.4},
    {0, 5.2, 7.3, 9.0, 10.2, 11.2, 12.3, 13.2, 15.4, 17.8}, {0, 4.3, 6.2, 8.0, 9.5, 10.8, 11.8, 13.0, 15.8, 19.0},
    {0, 3.7, 5.4, 7.1, 8.5, 9.7, 10.7, 11.8, 14.4, 17.8},   {0, 2.4, 3.6, 4.8, 5.8, 6.6, 7.3, 8.1, 9.9, 12.2},
};

// The cell of a rising axis that holds `x`, and how far into it.
struct Cell {
    std::size_t index;
    double share;
};

template <std::size_t kCount>
Cell CellOf(const double (&axis)[kCount], double x) {
    std::size_t i = 0;
    while (i + 2 < kCount && axis[i + 1] <= x) ++i;
    return {i, std::clamp((x - axis[i]) / (axis[i + 1] - axis[i]), 0.0, 1.0)};
}

// The slope at a row: of the line through its neighbours.
double Slope(const double (&column)[kAngleCount], std::size_t i) {
    const std::size_t before = i == 0 ? 0 : i - 1;
    const std::size_t after = std::min(i + 1, kAngleCount - 1);
    return (column[after] - column[before]) / (kAngles[after] - kAngles[before]);
}

}  // namespace

YachtPolar::YachtPolar() {
    for (std::size_t tws = 0; tws < best_.size(); ++tws) {
        const double wind = std::max(1.0, static_cast<double>(tws));
        best_[tws] = {42.0, 150.0};
        const auto vmg = [&](double angle) { return std::abs(Speed(wind, angle) * CosDegrees(angle)); };
        for (double angle = 36.0; angle <= 55.0; angle += 0.1) {
            if (vmg(angle) > vmg(best_[tws].upwind)) best_[tws].upwind = angle;
        }
        for (double angle = 135.0; angle <= 175.0; angle += 0.1) {
            if (vmg(angle) > vmg(best_[tws].downwind)) best_[tws].downwind = angle;
        }
    }
}

// Straight along the wind speeds, but a smooth curve along the angles, so that the best angles don't stick to rows of the table.
double YachtPolar::Speed(double tws, double twa) const {
    const double angle = std::min(std::abs(WrappedAngle(twa)), 180.0);
    const Cell row = CellOf(kAngles, angle);
    const Cell wind = CellOf(kWindSpeeds, std::clamp(tws, 0.0, kWindSpeeds[kSpeedCount - 1]));
    double column[kAngleCount] = {};
    const std::size_t first = row.index == 0 ? 0 : row.index - 1;
    const std::size_t last = std::min(row.index + 2, kAngleCount - 1);
    for (std::size_t i = first; i <= last; ++i) {
        column[i] = std::lerp(kTable[i][wind.index], kTable[i][wind.index + 1], wind.share);
    }
    const std::size_t i = row.index;
    const double width = kAngles[i + 1] - kAngles[i];
    const double t = row.share;
    const double t2 = t * t;
    const double t3 = t2 * t;
    const double speed = (2 * t3 - 3 * t2 + 1) * column[i] + (t3 - 2 * t2 + t) * width * Slope(column, i) +
                         (3 * t2 - 2 * t3) * column[i + 1] + (t3 - t2) * width * Slope(column, i + 1);
    return std::max(0.0, speed);
}

BestAngles YachtPolar::Best(double tws) const {
    const double wind = std::clamp(tws, 0.0, static_cast<double>(best_.size() - 1));
    const auto low = std::min(static_cast<std::size_t>(wind), best_.size() - 2);
    const double share = wind - static_cast<double>(low);
    return {std::lerp(best_[low].upwind, best_[low + 1].upwind, share),
            std::lerp(best_[low].downwind, best_[low + 1].downwind, share)};
}

double YachtPolar::SailingTime(double tws, double twa, double distance) const {
    const auto [upwind, downwind] = Best(tws);
    const double straight = std::abs(WrappedAngle(twa));
    const double angle = std::clamp(straight, upwind, downwind);
    // Both boards together gain as much along the wind as the straight line does.
    const double length = angle == straight ? distance : distance * CosDegrees(straight) / CosDegrees(angle);
    return length / std::max(Speed(tws, angle), kLeastSailingSpeed) * 3600.0;
}

}  // namespace twr
