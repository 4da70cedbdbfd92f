// SPDX-License-Identifier: MIT
#include "calibration/objects.h"

#include <algorithm>
#include <array>

#include "base/channel_ids.h"

namespace twr {
namespace {

// Passes through p1 at t = 0 and p2 at t = 1, with slopes taken from the neighbours.
double CatmullRom(double p0, double p1, double p2, double p3, double t) {
    return p1 + 0.5 * t * ((p2 - p0) + t * ((2.0 * p0 - 5.0 * p1 + 4.0 * p2 - p3) + t * (3.0 * (p1 - p2) + p3 - p0)));
}

constexpr std::uint16_t kNone = kNoChannel;

// clang-format off
constexpr std::array<CalibrationInfo, kCalibrationCount> kRows = {{
    {kNone, kBsp, kNone, 7, 1, 15, 0, 0, 5, 0, {1, 1}, 1, 0, u"\u00B0/s", u"Rate of turn", 1},
    {kNone, kTws, kTwa, 7, 1, 10, 0, 0, 5, 45, {1, 1}, 1, 0, u"kt/min", u"Acceleration", 2},
    {kBsp, kBsp, kHeel, 7, 1, 0, 0, 0, 5, 0, {1, 0}, 0, 0, u"kt", u"Bsp", 3},
    {kAws, kAwa, kAws, 5, 7, 0, 0, 0, 45, 5, {1, 0}, 0, 0, u"kt", u"Aws", 4},
    {kAwa, kAwa, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"AwaOffset", 5},
    {kAwa, kAwa, kAws, 5, 7, 0, 0, 0, 45, 5, {1, 0}, 0, 0, u"\u00B0", u"Awa", 6},
    {kTws, kTwa, kTws, 10, 7, 0, 0, 0, 45, 5, {0, 0}, 0, 0, u"kt", u"Tws", 7},
    {kTwa, kTwa, kTws, 10, 7, 0, 0, 0, 45, 5, {0, 0}, 0, 0, u"\u00B0", u"Twa", 8},
    {kHdg, kHdg, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"Hdg", 9},
    {kTwd, kTwd, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"Twd", 10},
    {kLeeway, kTwa, kTws, 1, 1, 13, 0, 0, 45, 5, {1, 1}, 1, 0, u"", u"Leeway", 11},
    {kHeel, kHeel, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"Heel", 12},
    {kTrim, kTrim, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"Trim", 13},
    {kMastAng, kMastAng, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"MastAngle", 14},
    {kRudder, kRudder, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"RudderAngle", 15},
    {kNone, kNone, kNone, 1, 1, 1, 0, 0, 0, 0, {1, 0}, 0, 0, u"", u"Wind weight", 16},
    {kNone, kNone, kNone, 1, 1, 10, 0, 0, 0, 0, {1, 1}, 1, 0, u"", u"Mast height", 17},
    {kSeaTemp, kSeaTemp, kNone, 1, 1, 0, 0, 0, 0, 0, {1, 0}, 0, 0, u"\u00B0", u"SeaTemp", 18},
    {kNone, kRot, kNone, 5, 1, 100, 0, 0, 30, 0, {1, 0}, 0, 0, u"s to stop", u"Brake", 19},
    {kBaro, kBaro, kNone, 6, 1, 0, 900, 0, 50, 0, {1, 0}, 0, 0, u"mb", u"Baro", 0},
}};
// clang-format on

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

std::span<const CalibrationInfo, kCalibrationCount> CalibrationCatalogue() { return kRows; }

}  // namespace twr
