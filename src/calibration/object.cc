#include "calibration/object.h"

#include <algorithm>

namespace twr {
namespace {

// Passes through p1 at t = 0 and p2 at t = 1, with slopes taken from the neighbours.
double CatmullRom(double p0, double p1, double p2, double p3, double t) {
    return p1 + 0.5 * t * ((p2 - p0) + t * ((2.0 * p0 - 5.0 * p1 + 4.0 * p2 - p3) + t * (3.0 * (p1 - p2) + p3 - p0)));
}

}  // namespace

bool CalibrationObject::EvaluateCurve(std::size_t index, double& out, double x) {
    out = kNoValue;
    if (index >= curves.size()) return false;
    return linear ? curves[index].StraightLineValue(out, x) : curves[index].SplineValue(out, x);
}

bool CalibrationObject::Evaluate(double& out, double x, double y) {
    out = kNoValue;
    if (curves.empty()) return false;
    if (y == kNoValue || curves.size() == 1) return EvaluateCurve(0, out, x);

    const auto [least, most] = std::minmax(curves.front().key, curves.back().key);
    y = std::min(std::max(y, least), most);
    std::size_t low = 0, high = curves.size() - 1;
    while (high - low > 1) {
        const std::size_t mid = (low + high) / 2;
        (curves[mid].key > y ? high : low) = mid;
    }
    const double lowKey = curves[low].key, highKey = curves[high].key;
    if (y == lowKey || lowKey == highKey) return EvaluateCurve(low, out, x);
    if (y == highKey) return EvaluateCurve(high, out, x);

    double p1 = kNoValue, p2 = kNoValue;
    if (!EvaluateCurve(low, p1, x) || !EvaluateCurve(high, p2, x)) return false;
    const double t = (y - lowKey) / (highKey - lowKey);
    if (p1 == p2) {
        out = p1;
    } else if (linear) {
        out = p1 + (p2 - p1) * t;
    } else {
        // A hole in an outer curve, or no outer curve, leaves the nearer one in its place.
        double p0 = kNoValue, p3 = kNoValue;
        if (low == 0 || !EvaluateCurve(low - 1, p0, x)) p0 = p1;
        if (!EvaluateCurve(high + 1, p3, x)) p3 = p2;
        out = CatmullRom(p0, p1, p2, p3, t);
    }
    return out != kNoValue;
}

}  // namespace twr
