#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "calibration/calibration_catalogue.h"
#include "calibration/object.h"

namespace twr {
namespace {

using Points = std::vector<CalibrationPoint>;

CalibrationCurve CurveOf(Points points, bool falling = false) {
    if (falling) std::ranges::reverse(points);
    return {0.0, true, std::move(points)};
}

// Curves of one point each.
CalibrationObject Steps(std::initializer_list<std::pair<double, double>> keysAndValues) {
    CalibrationObject object;
    for (const auto& [key, y] : keysAndValues) object.curves.push_back({key, true, {{0.0, y}}});
    return object;
}

double Value(CalibrationObject object, bool linear, double x, double y = kNoValue) {
    object.linear = linear;
    double out = 1.0;
    const bool found = object.Evaluate(out, x, y);
    EXPECT_EQ(out != kNoValue, found);
    return out;
}

const Points kPeak = {{0, 0}, {1, 1}, {2, 0}};

TEST(CalibrationCurve, ValuesOnTheSplineAndOnStraightLines) {
    const Points two = {{0, 0}, {10, 5}};
    const Points holed = {{0, 4}, {1, kNoValue}, {2, 8}, {3, 9}, {4, kNoValue}, {5, kNoValue}};
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
        {"between two points", two, 2, 1, 1},
        {"beyond two points", two, 15, 7.5, 7.5},
        {"before two points", two, -10, -5, -5},
        {"at a point", kPeak, 1, 1, 1},
        {"at the last point", kPeak, 2, 0, 0},
        {"left of the peak", kPeak, 0.5, 0.6875, 0.5},
        {"right of the peak", kPeak, 1.5, 0.6875, 0.5},
        {"beyond the peak's end", kPeak, 3, -1, -1},
        {"right of a point, a hole before it", holed, 2.5, 8.5, 8.5},
        {"left of a hole", holed, 0.5, 4, kNoValue},
        {"right of a hole", holed, 1.5, 8, kNoValue},
        {"in a hole", holed, 1, kNoValue, kNoValue},
        {"between two holes", holed, 4.5, kNoValue, kNoValue},
    };
    for (const auto& row : rows) {
        for (const bool falling : {false, true}) {
            SCOPED_TRACE(testing::Message() << row.what << ", x " << row.x << ", falling " << falling);
            EXPECT_DOUBLE_EQ(row.spline, Value({{CurveOf(row.points, falling)}}, false, row.x));
            EXPECT_DOUBLE_EQ(row.line, Value({{CurveOf(row.points, falling)}}, true, row.x));
        }
    }
    for (const bool linear : {false, true}) EXPECT_EQ(2.0, Value({{CurveOf({{3, 1}, {3, 2}})}}, linear, 7)) << "both at one place";
}

TEST(CalibrationCurve, BracketGivesTheSmallerXAsLow) {
    const struct {
        double x;
        std::size_t low, high;
    } rows[] = {{-5, 0, 1}, {0, 0, 1}, {9.9, 0, 1}, {10, 1, 2}, {25, 2, 3}, {30, 2, 3}, {99, 2, 3}};
    for (const auto& row : rows) {
        for (const bool falling : {false, true}) {
            std::size_t low = 9, high = 9;
            EXPECT_TRUE(CurveOf({{0, 0}, {10, 0}, {20, 0}, {30, 0}}, falling).Bracket(low, high, row.x));
            EXPECT_EQ(row.low, falling ? 3 - low : low) << row.x << ", falling " << falling;
            EXPECT_EQ(row.high, falling ? 3 - high : high) << row.x << ", falling " << falling;
        }
    }
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
    for (int round = 0; round < 400; ++round) {
        Points points(3 + random() % 12);
        double x = -50.0;
        for (CalibrationPoint& point : points) point = {x += 0.5 + random() % 100 * 0.1, random() % 2000 * 0.01 - 10.0};
        CalibrationCurve curve = CurveOf(points, round % 2 == 0);
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

TEST(CalibrationObject, BlendsAcrossItsCurves) {
    const CalibrationObject squares = Steps({{0, 0}, {1, 1}, {2, 4}, {3, 9}});
    const CalibrationObject outerHoles = Steps({{0, kNoValue}, {1, 1}, {2, 4}, {3, kNoValue}});
    const struct {
        const char* what;
        CalibrationObject object;
        double y, blended, straight;
    } rows[] = {
        {"no curve", {}, 1, kNoValue, kNoValue},
        {"one curve", Steps({{5, 3}}), 99, 3, 3},
        {"in the middle", squares, 1.5, 2.25, 2.5},
        {"in the first gap", squares, 0.5, 0.3125, 0.5},
        {"in the last gap", squares, 2.5, 6.6875, 6.5},
        {"at a key", squares, 2, 4, 4},
        {"at the last key", squares, 3, 9, 9},
        {"below the first key", squares, -7, 0, 0},
        {"above the last key", squares, 1e9, 9, 9},
        {"no y", squares, kNoValue, 0, 0},
        {"equal neighbours", Steps({{0, 0}, {1, 5}, {2, 5}, {3, 0}}), 1.5, 5, 5},
        {"holes outside", outerHoles, 1.5, 2.5, 2.5},
        {"a hole before", outerHoles, 0.5, kNoValue, kNoValue},
        {"a hole behind", outerHoles, 2.5, kNoValue, kNoValue},
        {"equal keys", Steps({{2, 1}, {2, 8}}), 2.5, 1, 1},
        {"keys the wrong way round", Steps({{9, 1}, {2, 8}}), 99, 1, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.what << ", y " << row.y);
        for (const double x : {0.0, kNoValue}) EXPECT_DOUBLE_EQ(row.blended, Value(row.object, false, x, row.y)) << "x " << x;
        EXPECT_DOUBLE_EQ(row.straight, Value(row.object, true, 0.0, row.y));
    }
}

TEST(CalibrationObject, TheFirstAxisExtrapolatesAndTheSecondStops) {
    const CalibrationObject object{{{0, true, {{0, 0}, {10, 5}}}, {10, true, {{0, 100}, {10, 90}}}}};
    for (const bool linear : {false, true}) {
        EXPECT_EQ(7.5, Value(object, linear, 15, 0));
        EXPECT_EQ(85.0, Value(object, linear, 15, 20));
        EXPECT_EQ(kNoValue, Value(object, linear, kNoValue, 20));
        EXPECT_DOUBLE_EQ(48.75, Value(object, linear, 5, 5));
    }
}

TEST(CalibrationObject, WildNumbersDoNoHarm) {
    using Limits = std::numeric_limits<double>;
    const double wild[] = {
        0, 1, -1, 2, 2, 1e308, -1e308, 5e-324, Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), kNoValue};
    std::mt19937 random(11);
    const auto any = [&] { return wild[random() % std::size(wild)]; };
    for (int round = 0; round < 5000; ++round) {
        CalibrationObject object;
        object.curves.resize(random() % 6);
        for (CalibrationCurve& curve : object.curves) {
            curve.key = any();
            curve.points.resize(random() % 7);
            for (CalibrationPoint& point : curve.points) point = {any(), any()};
            std::size_t low = 0, high = 0;
            ASSERT_EQ(!curve.points.empty(), curve.Bracket(low, high, any()));
            ASSERT_LE(std::max(low, high), curve.points.size() - (curve.points.empty() ? 0 : 1));
        }
        Value(object, random() % 2 == 0, any(), any());
    }
}

TEST(CalibrationCatalogue, RowsFollowOneAnother) {
    const auto rows = CalibrationCatalogue();
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ((i + 1) % rows.size(), static_cast<std::size_t>(rows[i].next)) << i;
}

}  // namespace
}  // namespace twr
