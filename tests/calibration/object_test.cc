#include "calibration/object.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "calibration/calibration_catalogue.h"

namespace twr {
namespace {

// Curves of one point each.
CalibrationObject Steps(std::initializer_list<std::pair<double, double>> keysAndValues) {
    CalibrationObject object;
    for (const auto& [key, y] : keysAndValues) object.curves.push_back({key, true, {{0.0, y}}});
    return object;
}

double Value(CalibrationObject object, bool linear, double x, double y) {
    object.linear = linear;
    double out = 1.0;
    const bool found = object.Evaluate(out, x, y);
    EXPECT_EQ(out != kNoValue, found);
    return out;
}

TEST(CalibrationObject, BlendsAcrossItsCurves) {
    const CalibrationObject squares = Steps({{0, 0}, {1, 1}, {2, 4}, {3, 9}});
    const CalibrationObject outerHoles = Steps({{0, kNoValue}, {1, 1}, {2, 4}, {3, kNoValue}});
    const struct {
        const char* what;
        const CalibrationObject& object;
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
        EXPECT_DOUBLE_EQ(row.blended, Value(row.object, false, 0.0, row.y));
        EXPECT_DOUBLE_EQ(row.straight, Value(row.object, true, 0.0, row.y));
        EXPECT_DOUBLE_EQ(row.blended, Value(row.object, false, kNoValue, row.y)) << "without the x that no curve needs";
    }
}

TEST(CalibrationObject, TheFirstAxisExtrapolatesAndTheSecondStops) {
    CalibrationObject object;
    object.curves = {{0, true, {{0, 0}, {10, 5}}}, {10, true, {{0, 100}, {10, 90}}}};
    for (const bool linear : {false, true}) {
        EXPECT_EQ(7.5, Value(object, linear, 15, 0));
        EXPECT_EQ(85.0, Value(object, linear, 15, 20));
        EXPECT_EQ(kNoValue, Value(object, linear, kNoValue, 20));
        EXPECT_DOUBLE_EQ(48.75, Value(object, linear, 5, 5));
    }
}

TEST(CalibrationObject, ACurveThatIsNotThereHasNoValue) {
    CalibrationObject object = Steps({{0, 3}});
    double out = 1.0;
    EXPECT_TRUE(object.EvaluateCurve(0, out, 0.0));
    EXPECT_FALSE(object.EvaluateCurve(1, out, 0.0));
    EXPECT_EQ(kNoValue, out);
}

TEST(CalibrationObject, WildNumbersDoNoHarm) {
    using Limits = std::numeric_limits<double>;
    const double wild[] = {0, 1, -1, 2, 1e308, -1e308, Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), kNoValue};
    std::mt19937 random(11);
    const auto any = [&] { return wild[random() % std::size(wild)]; };
    for (int round = 0; round < 5000; ++round) {
        CalibrationObject object;
        object.curves.resize(random() % 6);
        for (CalibrationCurve& curve : object.curves) {
            curve.key = any();
            curve.points.resize(random() % 4);
            for (CalibrationPoint& point : curve.points) point = {any(), any()};
        }
        Value(object, random() % 2 == 0, any(), any());
    }
}

TEST(CalibrationCatalogue, RowsFollowOneAnother) {
    const auto rows = CalibrationCatalogue();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(i + 1 < rows.size() ? static_cast<int>(i) + 1 : 0, rows[i].next);
        EXPECT_FALSE(rows[i].name.empty());
        EXPECT_EQ(i == 0 || i == 1 || i == 10 || i == 16, rows[i].always != 0);
    }
}

}  // namespace
}  // namespace twr
