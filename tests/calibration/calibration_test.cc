// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>

#include "calibration/objects.h"

namespace twr {
namespace {

using Points = std::vector<CalibrationPoint>;

// At a place: the value on the spline or the blend, and on straight lines.
using Probe = std::tuple<double, double, double>;
using Row = std::tuple<const char*, Points, std::vector<Probe>>;

// Along the first of the object's inputs, or along the second.
void Check(const char* what, CalibrationObject object, const std::vector<Probe>& probes, bool alongFirst) {
    for (const auto& [place, curved, straight] : probes) {
        for (const bool linear : {false, true}) {
            object.linear = linear;
            double out = 1.0;
            const bool found = object.Evaluate(out, alongFirst ? place : kNoValue, alongFirst ? kNoValue : place);
            EXPECT_EQ(out != kNoValue, found);
            EXPECT_DOUBLE_EQ(linear ? straight : curved, out) << what << " at " << place;
        }
    }
}

TEST(CalibrationCurve, RunsThroughItsPointsRisingOrFalling) {
    const Row rows[] = {
        {"no point", {}, {{1, kNoValue, kNoValue}}},
        {"one point", {{5, 2}}, {{-100, 2, 2}, {kNoValue, 2, 2}}},
        {"two points", {{0, 0}, {10, 5}}, {{15, 7.5, 7.5}, {-10, -5, -5}}},
        {"one place", {{3, 2}, {3, 2}}, {{7, 2, 2}}},
        {"peak", {{0, 0}, {1, 1}, {2, 0}}, {{2, 0, 0}, {0.5, 0.6875, 0.5}, {3, -1, -1}, {kNoValue, kNoValue, kNoValue}}},
        {"uneven", {{0, 0}, {2, 6}, {6, 2}, {8, 4}}, {{1, 3.65625, 3}, {3.5, 5.5546875, 4.5}, {7, 2.53125, 3}}},
        {"holes",
         {{0, 4}, {1, kNoValue}, {2, 8}, {3, 9}, {4, kNoValue}, {5, kNoValue}},
         {{0.5, 4, kNoValue}, {1, kNoValue, kNoValue}, {1.5, 8, kNoValue}, {2.5, 8.5, 8.5}, {4.5, kNoValue, kNoValue}}}};
    for (const auto& [what, points, probes] : rows) {
        Points falling = points;
        std::ranges::reverse(falling);
        for (const Points& order : {points, falling}) Check(what, {{{0, true, order}}}, probes, true);
    }
}

// Each point is a curve: its key, and the value at its one point.
TEST(CalibrationObject, BlendsAcrossItsCurvesAndStopsAtTheOuterOnes) {
    const Row rows[] = {
        {"no curve", {}, {{1, kNoValue, kNoValue}}},
        {"squares", {{0, 0}, {1, 1}, {2, 4}, {3, 9}}, {{-7, 0, 0}, {1.5, 2.25, 2.5}, {2, 4, 4}, {1e9, 9, 9}, {kNoValue, 0, 0}}},
        {"level", {{0, 5}, {1, 5}}, {{0.5, 5, 5}}},
        {"outer gaps", {{0, 0}, {1, 1}, {2, 4}, {3, 9}}, {{0.5, 0.3125, 0.5}, {2.5, 6.6875, 6.5}}},
        {"outer holes", {{0, kNoValue}, {1, 1}, {2, 4}, {3, kNoValue}}, {{1.5, 2.5, 2.5}, {2.5, kNoValue, kNoValue}}},
        {"keys the wrong way round", {{9, 1}, {2, 8}}, {{99, 1, 1}}}};
    for (const auto& [what, points, probes] : rows) {
        CalibrationObject object;
        for (const CalibrationPoint& curve : points) object.curves.push_back({curve.x, true, {{0.0, curve.y}}});
        Check(what, object, probes, false);
    }
}

}  // namespace
}  // namespace twr
