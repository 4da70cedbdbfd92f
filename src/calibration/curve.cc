// SPDX-License-Identifier: MIT
#include "calibration/curve.h"

#include <memory>
#include <new>
#include <utility>

namespace twr {
namespace {

bool IsHole(const CalibrationPoint& point) { return point.y == kNoValue; }

// The value where no segment is needed: at a point, and on a curve whose two points coincide.
const CalibrationPoint* PointAt(const CalibrationPoint& low, const CalibrationPoint& high, double x) {
    if (low.x == x) return &low;
    if (high.x == x) return &high;
    return low.x == high.x ? &low : nullptr;
}

double LineValue(const CalibrationPoint& low, const CalibrationPoint& high, double x) {
    if (const CalibrationPoint* point = PointAt(low, high, x)) return point->y;
    if (IsHole(low) || IsHole(high)) return kNoValue;
    return low.y + (high.y - low.y) * (x - low.x) / (high.x - low.x);
}

double CubicValue(const CalibrationPoint& low, const CalibrationPoint& high, double x) {
    if (const CalibrationPoint* point = PointAt(low, high, x)) return point->y;
    if (low.y2 == kNoValue || high.y2 == kNoValue) return LineValue(low, high, x);
    if (IsHole(low)) return high.y;
    if (IsHole(high)) return low.y;
    const double h = high.x - low.x;
    const double a = (high.x - x) / h;
    const double b = (x - low.x) / h;
    return a * low.y + b * high.y + ((a * a * a - a) * low.y2 + (b * b * b - b) * high.y2) * (h * h) / 6.0;
}

}  // namespace

bool CalibrationCurve::Bracket(std::size_t& low, std::size_t& high, double x) const {
    if (points.empty()) return false;
    low = 0;
    high = points.size() - 1;
    const bool rising = points[high].x > points[low].x;
    if (!rising) std::swap(low, high);
    while ((low < high ? high - low : low - high) > 1) {
        const std::size_t mid = (low + high) / 2;
        (points[mid].x > x ? high : low) = mid;
    }
    return true;
}

bool CalibrationCurve::StraightLineValue(double& out, double x) const {
    out = kNoValue;
    std::size_t low = 0, high = 0;
    if (!Bracket(low, high, x) || (x == kNoValue && low != high)) return false;
    out = LineValue(points[low], points[high], x);
    return out != kNoValue;
}

bool CalibrationCurve::SplineValue(double& out, double x) {
    out = kNoValue;
    if (dirty) UpdateSpline();
    std::size_t low = 0, high = 0;
    if (!Bracket(low, high, x) || (x == kNoValue && low != high)) return false;
    out = CubicValue(points[low], points[high], x);
    return out != kNoValue;
}

// The tridiagonal sweep for a natural spline, whose second derivative is 0 at both ends.
bool CalibrationCurve::UpdateSpline() {
    dirty = false;
    const std::size_t count = points.size();
    if (count < 2) return false;
    const std::unique_ptr<double[]> u(new (std::nothrow) double[count]());
    if (!u) return false;

    std::vector<CalibrationPoint>& p = points;
    p.front().y2 = 0.0;
    for (std::size_t i = 1; i + 1 < count; ++i) {
        p[i].y2 = 0.0;
        if (IsHole(p[i - 1]) || IsHole(p[i]) || IsHole(p[i + 1])) continue;
        const double sig = (p[i].x - p[i - 1].x) / (p[i + 1].x - p[i - 1].x);
        const double pivot = sig * p[i - 1].y2 + 2.0;
        const double bend = (p[i + 1].y - p[i].y) / (p[i + 1].x - p[i].x) - (p[i].y - p[i - 1].y) / (p[i].x - p[i - 1].x);
        p[i].y2 = (sig - 1.0) / pivot;
        u[i] = (6.0 * bend / (p[i + 1].x - p[i - 1].x) - sig * u[i - 1]) / pivot;
    }
    p.back().y2 = 0.0;
    for (std::size_t k = count - 1; k > 0; --k) {
        const bool segment = !IsHole(p[k - 1]) && !IsHole(p[k]);
        p[k - 1].y2 = segment ? p[k].y2 * p[k - 1].y2 + u[k - 1] : 0.0;
    }
    return true;
}

}  // namespace twr
