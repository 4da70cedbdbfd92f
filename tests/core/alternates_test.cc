#include "core/alternates.h"

#include <array>
#include <limits>

#include "support/core_fixture.h"

namespace twr::testing {
namespace {

constexpr double X = kNoValue;

// Slot s holds 10 + s where `filled` has its digit.
std::int32_t Choose(std::string_view filled, const SailingState& state) {
    std::array<std::int32_t, 9> slots;
    slots.fill(kNoInt);
    for (const char digit : filled) slots[static_cast<std::size_t>(digit - '0')] = 10 + digit - '0';
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
        {"3", {X, 30.0, 42.0, 10.0, false, false}, 3},
        {"012345678", {1.0, 40.0, 42.0, 10.0, true, true}, 8},
        {"012345678", {1.0, 40.0, 42.0, 10.0, true, false}, 5},
        {"012345678", {0.0, 40.0, 42.0, 10.0, false, false}, 5},
        {"012345678", {-1.0, 40.0, 42.0, 10.0, false, false}, 1},
        {"012345678", {X, 40.0, 42.0, 10.0, true, false}, 0},
        {"1246", {X, 40.0, 42.0, 10.0, true, false}, 2},  // the flag asks for slot 0 alone
        {"23467", {X, 60.0, 42.0, 10.0, false, false}, 3},
        {"2467", {X, 60.0, 42.0, 10.0, false, false}, 7},
        {"2467", {X, -60.0, 42.0, 10.0, false, false}, 6},
        {"234", {X, -51.9, -42.0, -10.0, false, false}, 2},
        {"234", {X, 52.0, 42.0, 10.0, false, false}, 3},
        {"234", {X, 130.0, 140.0, 10.0, false, false}, 3},
        {"234", {X, -131.0, 140.0, 10.0, false, false}, 4},
        {"234", {X, 90.0, 90.0, 10.0, false, false}, 3},
        {"24", {X, 90.0, 90.0, 10.0, false, false}, 4},
        {"234", {X, 90.0, X, 10.0, false, false}, 4},
        {"234", {X, -89.0, X, 10.0, false, false}, 2},
        {"26", {X, -30.0, X, 10.0, false, false}, 6},
        {"67", {X, 0.0, X, 10.0, false, false}, 7},
        {"678", {X, X, 42.0, 10.0, false, false}, 6},  // the first that is filled
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.slot, Choose(row.filled, row.state))
            << "filled " << row.filled << ", gun " << row.state.toGun << ", TWA " << row.state.twa << ", target "
            << row.state.target << ", flags " << row.state.first << row.state.last;
    }
}

class ResolveAlternateTest : public CoreTest {};

TEST_F(ResolveAlternateTest, OnlyAlternatingChannelsStandForOthers) {
    const ChannelId rows[][2] = {{0, 0},     {116, 116}, {117, 32767}, {126, 32767},
                                 {127, 127}, {413, 413}, {414, 32767}, {~0u, 32767}};
    for (const auto& [channel, resolved] : rows) EXPECT_EQ(resolved, core->ResolveAlternate(channel, true)) << channel;
}

TEST_F(ResolveAlternateTest, FollowsAChainForOneStepWhereverItLeads) {
    record.SetSlot(0, 1, 118);  // 117 -> 118 -> 119 -> 117
    record.SetSlot(1, 1, 119);
    record.SetSlot(2, 1, 117);
    record.SetSlot(3, 1, 120);  // itself
    Publish(kTwa, 40.0);
    EXPECT_EQ(118u, core->ResolveAlternate(117, false));
    EXPECT_EQ(119u, core->ResolveAlternate(117, true));
    EXPECT_EQ(120u, core->ResolveAlternate(120, true));
    double value = 0.0;
    for (const ChannelId channel : {117, 120}) {
        EXPECT_FALSE(core->GetChannel(channel, value, 0, false, true, true));
        EXPECT_EQ(X, value);
        EXPECT_FALSE(core->GetFreshChannel(channel, value, 0, false, true, X));
    }
    for (const std::int32_t wild : {-1, 414, 500, 40000, std::numeric_limits<std::int32_t>::min()}) {
        record.SetSlot(4, 1, wild);
        EXPECT_EQ(32767u, core->ResolveAlternate(121, true)) << wild;
        EXPECT_EQ(32767u, core->ResolveAlternate(121, false)) << wild;
        EXPECT_FALSE(core->GetFreshChannel(121, value, 0, false, true, X)) << wild;
    }
}

TEST_F(ResolveAlternateTest, GoesByTheOwnBoatWhicheverIsRead) {
    record.SetSlot(0, 2, kBsp);   // upwind
    record.SetSlot(0, 4, kSog);   // downwind
    record.SetSlot(0, 5, kBurn);  // before the start
    record.SetValue(7, 20.0);     // degrees round the target
    const struct {
        ChannelId published;
        double value;
        BoatSlot boat;
        ChannelId chosen;
    } steps[] = {{kTwa, -40.0, 0, kBsp},
                 {kTwa, 150.0, 1, kBsp},
                 {kTargTwa, 30.0, 0, kBsp},
                 {kTwa, 170.0, 0, kSog},
                 {kTmToGun, 0.0, 0, kBurn}};
    for (const auto& step : steps) {
        Publish(step.published, step.value, step.boat);
        EXPECT_EQ(step.chosen, core->ResolveAlternate(kAlt0, true)) << step.published << " of " << step.value;
    }
    Publish(kBurn, 9.0, 1);
    double value = 0.0;
    EXPECT_TRUE(core->GetChannel(kAlt0, value, 1, false, true, true));
    EXPECT_EQ(9.0, value);
}

}  // namespace
}  // namespace twr::testing
