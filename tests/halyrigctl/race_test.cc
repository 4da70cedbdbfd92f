// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/race.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "base/angles.h"
#include "core/units.h"

namespace twr::testing {
namespace {

// Rows of a boat, made up second by second.
std::vector<RaceRow> Rows(int seconds, const std::function<void(int second, RaceRow& row)>& make) {
    std::vector<RaceRow> rows;
    for (int second = 0; second < seconds; ++second) {
        RaceRow row{.time = 1.0 * second, .bsp = 6.0, .tws = 12.0, .twa = 42.0, .awa = 28.0, .twd = 0.0};
        make(second, row);
        row.heading = std::isnan(row.heading) ? WrappedBearing(row.twd - row.twa) : row.heading;
        if (row.time >= 0.0) rows.push_back(row);
    }
    return rows;
}

// From one side to the other between these angles, in ten seconds from the hundredth on.
double Turning(int second, double from, double to) { return std::lerp(from, to, std::clamp((second - 100) / 10.0, 0.0, 1.0)); }

TEST(RaceTest, TellsATurnFromWhatIsNone) {
    // tacks, gybes
    const std::tuple<const char*, std::size_t, std::size_t, std::function<void(int, RaceRow&)>> rows[] = {
        {"a tack", 1, 0, [](int s, RaceRow& row) { row.twa = Turning(s, 42, -42); }},
        {"a gybe", 0, 1, [](int s, RaceRow& row) { row.twa = WrappedAngle(Turning(s, -150, -210)); }},
        {"a small gybe", 0, 1, [](int s, RaceRow& row) { row.twa = WrappedAngle(Turning(s, 168, 192)); }},
        {"all the way round", 1, 1, [](int s, RaceRow& row) { row.twa = WrappedAngle(42 - std::clamp(s - 100, 0, 72) * 5.0); }},
        {"a tack without a heading", 1, 0,
         [](int s, RaceRow& row) {
             row.twa = Turning(s, 42, -42), row.cog = WrappedBearing(3 - row.twa), row.heading = kUnmeasured;
         }},
        {"a gap in the tack", 0, 0, [](int s, RaceRow& row) { row.twa = Turning(s, 42, -42), row.time = s == 105 ? -1.0 : s; }},
        {"a clock set back in the tack", 0, 0, [](int s, RaceRow& row) { row.twa = Turning(s, 42, -42), row.seam = s == 105; }},
        {"no angle for three seconds of the tack", 1, 0,
         [](int s, RaceRow& row) { row.twa = s > 103 && s < 107 ? kUnmeasured : Turning(s, 42, -42); }},
        {"shot up into the wind, and back", 0, 0, [](int s, RaceRow& row) { row.twa = s < 110 ? Turning(s, 42, -4) : 42; }},
        {"held head to wind", 0, 0, [](int s, RaceRow& row) { row.twa = s < 60 ? 42 : 18 * std::sin(s / 3.0), row.bsp = 2; }},
        {"the wind shifts across the bow", 0, 0, [](int s, RaceRow& row) { row.twa = Turning(s, 42, -42), row.heading = 7; }},
        {"by the lee and back", 0, 0, [](int s, RaceRow& row) { row.twa = WrappedAngle(176 + 8 * std::sin(s / 2.0)); }},
        {"engine, no wind", 0, 0,
         [](int s, RaceRow& row) { row.tws = 1, row.twa = Turning(s, 120, -120), row.awa = row.twa / 12; }},
        {"adrift", 0, 0, [](int s, RaceRow& row) { row.bsp = 0.3, row.twa = Turning(s, 42, -42); }},
        {"no angle at all", 0, 0, [](int, RaceRow& row) { row.twa = kUnmeasured; }},
    };
    for (const auto& [what, tacks, gybes, make] : rows) {
        const std::vector<Turn> turns = FindTurns(Rows(300, make));
        const auto found = static_cast<std::size_t>(std::ranges::count_if(turns, &Turn::tack));
        EXPECT_EQ(tacks, found) << what;
        EXPECT_EQ(gybes, turns.size() - found) << what;
    }
}

// A tack in which the speed is 2 knots less for half a minute, so that the loss can be told by hand.
TEST(RaceTest, CountsWhatATurnCosts) {
    const auto tack = [](int s, RaceRow& row) {
        row.twa = s < 105 ? 60.0 : -60.0;
        if (s >= 105 && s < 135) row.bsp = 4.0;
    };
    // legTo: where the leg ends
    const std::tuple<const char*, std::function<void(int, RaceRow&)>, std::size_t, bool> rows[] = {
        {"all is there", [](int, RaceRow&) {}, 300, true},
        {"the leg ends", [](int, RaceRow&) {}, 150, false},
        {"no speed at one second", [](int s, RaceRow& row) { row.bsp = s == 120 ? kUnmeasured : row.bsp; }, 300, false},
        {"a gap", [](int s, RaceRow& row) { row.time = s == 120 ? -1.0 : row.time; }, 299, false},
        {"another tack", [](int s, RaceRow& row) { row.twa = s >= 145 ? 60.0 : row.twa; }, 300, false}};
    for (const auto& [what, more, legTo, costs] : rows) {
        const auto sailed = Rows(300, [&, &also = more](int s, RaceRow& row) { tack(s, row), also(s, row); });
        auto turns = FindTurns(sailed);
        ASSERT_FALSE(turns.empty()) << what;
        FindCosts(sailed, {{.from = 0, .to = legTo}}, turns);
        ASSERT_EQ(costs, turns[0].cost.has_value()) << what;
        if (!costs) continue;
        EXPECT_NEAR(2.0 * 0.5 * 30 / 3600 * kMetresPerNauticalMile, turns[0].cost->metres, 0.01);
        EXPECT_NEAR(10.0, turns[0].cost->seconds, 0.01);
        EXPECT_NEAR(6.0, turns[0].speedBefore, 1e-6);
        EXPECT_EQ(4.0, turns[0].speedLeast);
    }
}

TEST(RaceTest, TellsLegsByThePointOfSailWhereNoMarkIsKnown) {
    const auto rows = Rows(2000, [](int s, RaceRow& row) {
        row.twa = s < 600 ? (s % 300 < 150 ? 42 : -42) : s < 1000 ? 100 : s < 1060 ? 40 : s < 1400 ? 95 : -150;
        if (s >= 1700 && s < 1710) row.time = -1.0;
    });
    const Legs legs = FindLegs(rows, {}, FindTurns(rows));
    const std::tuple<PointOfSail, int, int> expected[] = {
        {PointOfSail::kBeat, 600, 3}, {PointOfSail::kReach, 800, 0}, {PointOfSail::kRun, 300, 0}, {PointOfSail::kRun, 290, 0}};
    EXPECT_FALSE(legs.byMarks);
    ASSERT_EQ(std::size(expected), legs.all.size());
    for (std::size_t i = 0; i < legs.all.size(); ++i) {
        const auto& [point, seconds, tacks] = expected[i];
        EXPECT_EQ(point, legs.all[i].sailed) << i;
        EXPECT_NEAR(seconds, static_cast<double>(legs.all[i].to - legs.all[i].from), 30) << i;
        EXPECT_EQ(tacks, legs.all[i].tacks) << i;
    }
}

}  // namespace
}  // namespace twr::testing
