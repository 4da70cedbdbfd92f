#include "calibration/curve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace twr {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

using Points = std::vector<CalibrationPoint>;

CalibrationCurve CurveOf(Points points) {
    CalibrationCurve curve;
    curve.points = std::move(points);
    return curve;
}

CalibrationCurve Falling(CalibrationCurve curve) {
    std::ranges::reverse(curve.points);
    return curve;
}

double Spline(CalibrationCurve curve, double x) {
    double out = 1.0;
    const bool found = curve.SplineValue(out, x);
    EXPECT_EQ(out != kNoValue, found);
    return out;
}

double Line(const CalibrationCurve& curve, double x) {
    double out = 1.0;
    const bool found = curve.StraightLineValue(out, x);
    EXPECT_EQ(out != kNoValue, found);
    return out;
}

const Points kPeak = {{0, 0}, {1, 1}, {2, 0}};
const Points kHoled = {{0, 4}, {1, kNoValue}, {2, 8}, {3, 9}, {4, kNoValue}, {5, kNoValue}};

TEST(CalibrationCurve, ValuesOnTheSplineAndOnStraightLines) {
    const struct {
        const char* what;
        Points points;
        double x, spline, line;
    } rows[] = {
        {"no point", {}, 1, kNoValue, kNoValue},
        {"one point", {{5, 2}}, -100, 2, 2},
        {"one point, itself a hole", {{5, kNoValue}}, 5, kNoValue, kNoValue},
        {"one point needs no x", {{5, 2}}, kNoValue, 2, 2},
        {"no x", kPeak, kNoValue, kNoValue, kNoValue},
        {"two points", {{0, 0}, {10, 5}}, 2, 1, 1},
        {"beyond two points", {{0, 0}, {10, 5}}, 15, 7.5, 7.5},
        {"before two points", {{0, 0}, {10, 5}}, -10, -5, -5},
        {"two points at one place", {{3, 1}, {3, 2}}, 7, 2, 2},
        {"at a point", kPeak, 1, 1, 1},
        {"at the last point", kPeak, 2, 0, 0},
        {"left of the peak", kPeak, 0.5, 0.6875, 0.5},
        {"right of the peak", kPeak, 1.5, 0.6875, 0.5},
        {"beyond the peak's end", kPeak, 3, -1, -1},
        {"right of a point, a hole before it", kHoled, 2.5, 8.5, 8.5},
        {"left of a hole", kHoled, 0.5, 4, kNoValue},
        {"right of a hole", kHoled, 1.5, 8, kNoValue},
        {"in a hole", kHoled, 1, kNoValue, kNoValue},
        {"between two holes", kHoled, 4.5, kNoValue, kNoValue},
        {"beyond two holes", kHoled, 9, kNoValue, kNoValue},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.what << ", x " << row.x);
        EXPECT_DOUBLE_EQ(row.spline, Spline(CurveOf(row.points), row.x));
        EXPECT_DOUBLE_EQ(row.line, Line(CurveOf(row.points), row.x));
        if (row.points.size() == 2 && row.points[0].x == row.points[1].x) continue;
        EXPECT_DOUBLE_EQ(row.spline, Spline(Falling(CurveOf(row.points)), row.x)) << "falling";
        EXPECT_DOUBLE_EQ(row.line, Line(Falling(CurveOf(row.points)), row.x)) << "falling";
    }
}

TEST(CalibrationCurve, BracketGivesTheSmallerXAsLow) {
    const Points points = {{0, 0}, {10, 0}, {20, 0}, {30, 0}};
    const struct {
        double x;
        std::size_t low, high;
    } rows[] = {{-5, 0, 1}, {0, 0, 1}, {9.9, 0, 1}, {10, 1, 2}, {25, 2, 3}, {30, 2, 3}, {99, 2, 3}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.x);
        std::size_t low = 9, high = 9;
        EXPECT_TRUE(CurveOf(points).Bracket(low, high, row.x));
        EXPECT_EQ(std::pair(row.low, row.high), std::pair(low, high));
        EXPECT_TRUE(Falling(CurveOf(points)).Bracket(low, high, row.x));
        EXPECT_EQ(std::pair(3 - row.low, 3 - row.high), std::pair(low, high)) << "falling";
    }
}

TEST(CalibrationCurve, SecondDerivativesOfAPeak) {
    CalibrationCurve curve = CurveOf(kPeak);
    ASSERT_TRUE(curve.UpdateSpline());
    EXPECT_EQ(0.0, curve.points[0].y2);
    EXPECT_EQ(-3.0, curve.points[1].y2);
    EXPECT_EQ(0.0, curve.points[2].y2);
}

TEST(CalibrationCurve, IsComputedAnewOnlyWhenDirty) {
    CalibrationCurve curve = CurveOf(kPeak);
    double before = 0.0, unmarked = 0.0, after = 0.0;
    curve.SplineValue(before, 0.5);
    curve.points[2].y = 2.0;
    curve.SplineValue(unmarked, 0.5);
    EXPECT_EQ(before, unmarked);
    curve.dirty = true;
    curve.SplineValue(after, 0.5);
    EXPECT_EQ(0.5, after);
}

// A spline joins its segments without a kink, whatever its points.
TEST(CalibrationCurve, SegmentsMeetWithOneSlope) {
    std::mt19937 random(20261119);
    for (int round = 0; round < 200; ++round) {
        Points points(3 + random() % 12);
        double x = -50.0;
        for (CalibrationPoint& point : points) {
            x += 0.5 + random() % 100 * 0.1;
            point = {x, random() % 2000 * 0.01 - 10.0};
        }
        for (CalibrationCurve curve : {CurveOf(points), Falling(CurveOf(points))}) {
            ASSERT_TRUE(curve.UpdateSpline());
            const Points& p = curve.points;
            EXPECT_EQ(0.0, p.front().y2);
            EXPECT_EQ(0.0, p.back().y2);
            for (std::size_t i = 1; i + 1 < p.size(); ++i) {
                const double before = p[i].x - p[i - 1].x, behind = p[i + 1].x - p[i].x;
                const double arriving = (p[i].y - p[i - 1].y) / before + before / 6 * (p[i - 1].y2 + 2 * p[i].y2);
                const double leaving = (p[i + 1].y - p[i].y) / behind - behind / 6 * (2 * p[i].y2 + p[i + 1].y2);
                EXPECT_NEAR(arriving, leaving, 1e-9) << "round " << round << ", point " << i;
            }
        }
    }
}

TEST(CalibrationCurve, WildNumbersDoNoHarm) {
    const double wild[] = {0, 1, -1, 2, 2, 1e308, -1e308, 5e-324, kInf, -kInf, kNan, kNoValue};
    std::mt19937 random(7);
    const auto any = [&] { return wild[random() % std::size(wild)]; };
    for (int round = 0; round < 5000; ++round) {
        Points points(random() % 7);
        for (CalibrationPoint& point : points) point = {any(), any()};
        const double x = any();
        std::size_t low = 9, high = 9;
        ASSERT_EQ(!points.empty(), CurveOf(points).Bracket(low, high, x));
        if (!points.empty()) {
            ASSERT_LT(std::max(low, high), points.size());
        }
        Spline(CurveOf(points), x);
        Line(CurveOf(points), x);
    }
}

}  // namespace
}  // namespace twr
