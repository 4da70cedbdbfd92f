#include "core/alternates.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "support/fakes.h"
#include "support/record_writer.h"

namespace twr {
namespace {

constexpr double X = kNoValue;

// Slot s holds 10 + s where `filled` has its digit.
std::int32_t Choose(const char* filled, const SailingState& state) {
    std::array<std::int32_t, 9> slots;
    slots.fill(kNoInt);
    for (const char* c = filled; *c; ++c) slots[static_cast<std::size_t>(*c - '0')] = 10 + *c - '0';
    const std::int32_t chosen = ChooseAlternate(slots, state);
    return chosen == kNoInt ? -1 : chosen - 10;
}

TEST(ChooseAlternate, GoesByTheStateOfTheBoat) {
    const struct {
        const char* filled;
        SailingState state;  // to the gun, TWA, target, margin, first, last
        int slot;            // -1 for none
    } rows[] = {
        {"", {1.0, 40.0, 42.0, 10.0, true, true}, -1},
        {"3", {X, X, X, 10.0, false, false}, 3},
        {"3", {X, 30.0, 42.0, 10.0, false, false}, 3},
        {"012345678", {1.0, 40.0, 42.0, 10.0, true, true}, 8},
        {"012345678", {1.0, 40.0, 42.0, 10.0, true, false}, 5},
        {"012345678", {0.0, 40.0, 42.0, 10.0, false, false}, 5},
        {"012345678", {-1.0, 40.0, 42.0, 10.0, false, false}, 1},
        {"012345678", {X, 40.0, 42.0, 10.0, true, false}, 0},
        {"1246", {X, 40.0, 42.0, 10.0, true, false}, 2},  // the flag asks for slot 0 alone
        {"2468", {X, 40.0, 42.0, 10.0, false, false}, 2},
        {"23467", {X, 60.0, 42.0, 10.0, false, false}, 3},
        {"2467", {X, 60.0, 42.0, 10.0, false, false}, 7},
        {"2467", {X, -60.0, 42.0, 10.0, false, false}, 6},
        {"234", {X, -51.9, -42.0, -10.0, false, false}, 2},
        {"234", {X, 52.0, 42.0, 10.0, false, false}, 3},
        {"234", {X, 120.0, 140.0, 10.0, false, false}, 3},
        {"234", {X, 130.0, 140.0, 10.0, false, false}, 3},
        {"234", {X, -131.0, 140.0, 10.0, false, false}, 4},
        {"234", {X, 90.0, 90.0, 10.0, false, false}, 3},
        {"24", {X, 90.0, 90.0, 10.0, false, false}, 4},
        {"234", {X, 90.0, X, 10.0, false, false}, 4},
        {"234", {X, -89.0, X, 10.0, false, false}, 2},
        {"26", {X, -30.0, X, 10.0, false, false}, 6},
        {"67", {X, 0.0, X, 10.0, false, false}, 7},
        {"678", {X, X, 42.0, 10.0, false, false}, 6},
        {"58", {X, X, X, 10.0, false, false}, 5},  // the first that is filled
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.slot, Choose(row.filled, row.state))
            << "filled " << row.filled << ", gun " << row.state.toGun << ", TWA " << row.state.twa << ", target "
            << row.state.target << ", flags " << row.state.first << row.state.last;
    }
}

class ResolveAlternateTest : public ::testing::Test {
protected:
    void OwnBoat(ChannelId channel, double value) {
        record.SetBoatCount(1);
        record.SetEntry(0, channel, value, machine.clock.Days(), X);
    }

    testing::FakeMachine machine;
    CCore core{machine.Services()};
    testing::RecordWriter record{core};
};

TEST_F(ResolveAlternateTest, OnlyAlternatingChannelsStandForOthers) {
    const ChannelId rows[][2] = {{0, 0},     {116, 116}, {117, 32767}, {126, 32767},
                                 {127, 127}, {413, 413}, {414, 32767}, {~0u, 32767}};
    for (const auto& [channel, resolved] : rows) EXPECT_EQ(resolved, core.ResolveAlternate(channel, true)) << channel;
}

TEST_F(ResolveAlternateTest, FollowsAChainForOneStep) {
    record.SetSlot(0, 1, 118);  // 117 -> 118 -> 119 -> 13
    record.SetSlot(1, 1, 119);
    record.SetSlot(2, 1, 13);
    EXPECT_EQ(118u, core.ResolveAlternate(117, false));
    EXPECT_EQ(119u, core.ResolveAlternate(117, true));
    EXPECT_EQ(13u, core.ResolveAlternate(118, true));
}

TEST_F(ResolveAlternateTest, EndsWhateverStandsInTheTable) {
    for (std::size_t row = 0; row < 10; ++row) {
        for (std::size_t slot = 0; slot < 9; ++slot) record.SetSlot(row, slot, 117 + static_cast<std::int32_t>((row + 1) % 10));
    }
    OwnBoat(kTwa, 40.0);
    double value = 0.0;
    EXPECT_EQ(119u, core.ResolveAlternate(117, true));
    EXPECT_FALSE(core.GetFreshChannel(117, value, 0, false, true, X));

    record.SetSlot(3, 1, 120);  // itself
    EXPECT_EQ(120u, core.ResolveAlternate(120, true));
    EXPECT_FALSE(core.GetChannel(120, value, 0, false, true, true));
    EXPECT_EQ(X, value);

    for (const std::int32_t wild : {-1, 414, 500, 40000, std::numeric_limits<std::int32_t>::min()}) {
        record.SetSlot(4, 1, wild);
        EXPECT_EQ(32767u, core.ResolveAlternate(121, true)) << wild;
        EXPECT_EQ(32767u, core.ResolveAlternate(121, false)) << wild;
        EXPECT_FALSE(core.GetFreshChannel(121, value, 0, false, true, X)) << wild;
    }
}

TEST_F(ResolveAlternateTest, GoesByTheOwnBoatWhicheverIsRead) {
    record.SetSlot(0, 2, kBsp);   // upwind
    record.SetSlot(0, 4, kSog);   // downwind
    record.SetSlot(0, 5, kBurn);  // before the start
    OwnBoat(kTwa, -40.0);
    record.SetEntry(1, kTwa, 150.0, machine.clock.Days(), X);
    record.SetEntry(0, kBsp, 7.0, machine.clock.Days(), X);
    record.SetEntry(1, kBsp, 9.0, machine.clock.Days(), X);
    record.SetBoatCount(2);
    double value = 0.0;
    EXPECT_TRUE(core.GetChannel(117, value, 1, false, true, true));
    EXPECT_EQ(9.0, value);
    record.SetValue(7, 20.0);
    OwnBoat(kTargTwa, 30.0);
    EXPECT_EQ(kBsp, core.ResolveAlternate(117, true));
    OwnBoat(kTwa, 170.0);
    EXPECT_EQ(kSog, core.ResolveAlternate(117, true));
    OwnBoat(kTmToGun, 0.0);
    EXPECT_EQ(kBurn, core.ResolveAlternate(117, true));
}

}  // namespace
}  // namespace twr
