// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "stand_in/sailing_simulation.h"
#include "stand_in/variables.h"
#include "stand_in/yacht_polar.h"
#include "support/test_system.h"

namespace twr {
namespace {

using enum Quantity;

constexpr std::size_t kDay = 86400;

double AngleBetween(double a, double b) { return std::abs(WrappedAngle(a - b)); }

TEST(YachtPolar, KnowsTheTimeToAPointBeforeAndBehindTheWind) {
    const YachtPolar polar;
    // Two boards to a point dead to windward take as long as its distance does at the best speed made good.
    const double angle = polar.Best(12.0).upwind;
    EXPECT_NEAR(3600.0 / (polar.Speed(12.0, angle) * CosDegrees(angle)), polar.SailingTime(12.0, 0.0, 1.0), 1e-6);
    EXPECT_NEAR(3600.0 / polar.Speed(12.0, 100.0), polar.SailingTime(12.0, -100.0, 1.0), 1e-6);
    EXPECT_TRUE(std::isfinite(polar.SailingTime(0.0, 0.0, 1.0)));
}

// One simulated day, a moment for each second.
std::vector<Moment> Sailed() {
    std::vector<Moment> day;
    for (SailingSimulation simulation(2026, 300); day.size() < kDay; simulation.Advance(1.0)) day.push_back(simulation.Now());
    return day;
}

struct ADay : ::testing::Test {
    bool Next() { return ++second_ < kDay; }
    float Now(Quantity quantity) const { return day_[second_][quantity]; }
    float Before(Quantity quantity) const { return day_[second_ - 1][quantity]; }

    inline static const std::vector<Moment> day_ = Sailed();
    std::size_t second_ = 0;
};

TEST_F(ADay, IsPlausibleAndAgreesWithItself) {
    const std::tuple<Quantity, double, double> bounds[] = {
        {kBsp, 1.5, 20},        {kAws, 0, 40},           {kTws, 3, 26},         {kHeel, -28, 28},     {kTrim, -3, 4},
        {kRateOfTurn, -10, 10}, {kSog, 0.5, 21},         {kDrift, 0.2, 1},      {kDepth, 230, 330},   {kSeaTemp, 13, 16},
        {kAirTemp, 12, 20},     {kBaro, 1000, 1025},     {kVariation, -3, -3},  {kLat, 50.4, 50.6},   {kLon, -7.1, -6.9},
        {kTargetBsp, 3, 20},    {kTargetTwa, -160, 160}, {kMarkDistance, 0, 3}, {kMarkTime, 0, 3600}, {kVolts, 24, 27},
        {kLog, 0, 300}};
    while (Next()) {
        for (const auto& [quantity, least, most] : bounds)
            ASSERT_TRUE(Now(quantity) >= least && Now(quantity) <= most)
                << "quantity " << static_cast<int>(quantity) << " is " << Now(quantity) << " after " << second_ << " s";
        const float percent = Now(kPolarPercent);
        ASSERT_TRUE(percent == kAbsent || (percent > 10.0F && percent < 300.0F)) << percent << " after " << second_;
        const Vector boat = Towards(Now(kCourse), Now(kBsp)), current = Towards(Now(kSet), Now(kDrift));
        const Vector trueWind = VelocityOf({Now(kTwd), Now(kTws)});
        ASSERT_LT(Length(Towards(Now(kCog), Now(kSog)) - boat - current), 1e-3) << second_;
        ASSERT_LT(Length(VelocityOf({Now(kHdg) + Now(kAwa), Now(kAws)}) - (trueWind - boat)), 1e-3) << second_;
        ASSERT_LT(AngleBetween(Now(kTwd), Now(kCourse) + Now(kTwa)), 1e-3) << second_;
        ASSERT_LT(AngleBetween(Now(kCourse), Now(kHdg) - Now(kLeeway)), 1e-3) << second_;
    }
}

// The wind heels her to leeward and pushes her there, the target lies on the side that she sails on, and a tack costs speed.
TEST_F(ADay, HasItsSidesRightAndTurnsAsAYacht) {
    int port = 0, starboard = 0, tacks = 0, gybes = 0;
    float straightSpeed = 0.0F;  // of the last time that she sailed straight
    while (Next()) {
        const float awa = Now(kAwa);
        const bool straight = std::abs(Now(kRateOfTurn)) < 1.0F;
        ASSERT_LT(AngleBetween(Now(kHdg), Before(kHdg)), 10.0) << second_;
        const bool across = Now(kTwa) * Before(kTwa) < 0.0F;
        if (across && std::abs(Now(kTwa)) > 160.0F) ++gybes;
        if (across && std::abs(Now(kTwa)) < 20.0F) {
            ++tacks;
            ASSERT_TRUE(straightSpeed <= 7.0F || Now(kBsp) < straightSpeed - 0.5F) << second_;
            ASSERT_GT(std::abs(Now(kRateOfTurn)), 2.0F) << second_;
            ASSERT_GT(Now(kRateOfTurn) * Now(kRudder), 0.0F) << second_;
        }
        if (straight) straightSpeed = Now(kBsp);
        if (!straight || std::abs(awa) < 15.0F || std::abs(awa) > 165.0F) continue;
        ++(awa > 0.0F ? starboard : port);
        ASSERT_TRUE(awa * Now(kTwa) > 0.0F && std::abs(awa) < std::abs(Now(kTwa)) + 10.0F) << second_;
        ASSERT_GT(awa * Now(kTargetTwa), 0.0F) << second_;
        if (std::abs(awa) > 90.0F || Now(kBsp) < 6.0F) continue;
        ASSERT_TRUE(awa * Now(kHeel) > 0.0F && awa * Now(kLeeway) > 0.0F) << second_;
    }
    EXPECT_TRUE(port > 21600 && starboard > 21600) << port << " " << starboard;
    EXPECT_TRUE(tacks > 100 && gybes > 50) << tacks << " " << gybes;
}

TEST_F(ADay, RoundsItsMarksAndStartsAgain) {
    int races = 0, windward = 0, leeward = 0;
    while (Next()) {
        const float timer = Now(kTimer);
        const bool counts = timer == 300.0F && Before(kTimer) == 0.0F;
        races += counts;
        ASSERT_EQ(counts ? 300.0F : std::max(0.0F, Before(kTimer) - 1.0F), timer) << second_;
        ASSERT_EQ(timer > 0.0F ? timer / 86400.0F : 32767.0F, Now(kTimeToGun)) << second_;
        if (second_ < 295) {
            ASSERT_GT(Now(kMarkDistance) * CosDegrees(Now(kMarkBearing) - Now(kGroundWindDirection)), -0.02) << "below the line";
        } else if (second_ == 295) {
            EXPECT_LT(Now(kMarkDistance), 0.06F) << "close to the line when the gun goes";
        }
        if (timer == 0.0F && std::abs(Now(kMarkDistance) - Before(kMarkDistance)) > 1.0F) {
            ++(AngleBetween(Now(kTwd), Now(kMarkBearing)) < 90.0 ? leeward : windward);
            ASSERT_LT(Before(kMarkDistance), 0.05F) << second_;
        }
    }
    EXPECT_GE(races, 18);
    EXPECT_NEAR(2 * races, windward, 2);
    EXPECT_NEAR(2 * races, leeward, 3) << "the start and one leeward rounding in each race";
}

TEST(Variables, AreThoseOfTheFileAndCoverEveryQuantity) {
    const std::string bytes = testing::BytesOf(STAND_IN_VARIABLES);
    EXPECT_EQ(VariableFileText(), bytes);
    EXPECT_NE(bytes.npos, bytes.find("\n[variables]\n  1 BSP             kn      2 0 1\n"));
    std::set<Quantity> quantities;
    for (const Variable& variable : Variables()) {
        EXPECT_EQ(variable.quantity, QuantityOf(variable.number)) << variable.name;
        quantities.insert(variable.quantity);
    }
    EXPECT_EQ(kQuantityCount, quantities.size());
    for (const std::int32_t number : {-1, 0, 22, 64, 32767, INT32_MIN, INT32_MAX}) EXPECT_FALSE(QuantityOf(number)) << number;
}

}  // namespace
}  // namespace twr
