// SPDX-License-Identifier: MIT
#include <limits>

#include "streams/follow_fixture.h"
#include "support/allocations.h"

namespace twr::testing {
namespace {

using Changes = std::vector<Change>;

class FollowerTest : public FollowTest {};

TEST_F(FollowerTest, TellsWhatIsNewAndTheEndOfValuesOnce) {
    Publish(kBsp, 6.5);
    Publish(kAws, 12.0, 0, Now() - 20 / kSecondsPerDay);
    Publish(kMkLat, 50.0, 0, Now() - 100.0);  // never stale
    const double first = Now();
    EXPECT_EQ((Changes{{first, kBsp, 0, 6.5}, {first - 100.0, kMkLat, 0, 50.0}}), Look()) << "neither stale, absent nor Time";
    EXPECT_EQ(Changes{}, Look());
    Pass(1);
    Publish(kBsp, 6.5);
    Publish(kHdg, 90.0);
    EXPECT_EQ((Changes{{Now(), kBsp, 0, 6.5}, {Now(), kHdg, 0, 90.0}}), Look()) << "a new stamp is news";
    Publish(kHdg, kNoValue);
    EXPECT_EQ((Changes{{Now(), kHdg, 0, kNoValue}}), Look());
    Pass(9.999);
    EXPECT_EQ(Changes{}, Look());
    Pass(0.002);
    EXPECT_EQ((Changes{{Now(), kBsp, 0, kNoValue}}), Look());
    EXPECT_EQ(kNoValue, follower->Value(kBsp, 0));
    EXPECT_EQ(Changes{}, Look());
    Publish(kBsp, 7.0);
    EXPECT_EQ((Changes{{Now(), kBsp, 0, 7.0}}), Look());
    Pass(1);
    const auto gone = follower->Gone();
    EXPECT_EQ((Changes{{Now(), kBsp, 0, kNoValue}, {Now(), kMkLat, 0, kNoValue}}), Changes(gone.begin(), gone.end()));
    EXPECT_TRUE(follower->Gone().empty());
}

TEST_F(FollowerTest, DistrustsWhatOtherProgramsWrite) {
    Publish(kBsp, 6.0);
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    record.SetEntry(0, kTws, kNaN, Now(), 0.0);
    record.SetEntry(0, kTwa, std::numeric_limits<double>::infinity(), Now(), 0.0);
    record.SetEntry(0, kAwa, 30.0, kNaN, 0.0);
    record.SetEntry(0, kMkLat, 50.0, -1e300, 0.0);
    record.SetSlot(0, 0, -5);
    record.SetBoatCount(4000000000u);
    Follow({.channels = {kBsp, kTws, kTwa, kAwa, kMkLat, kAlt0}});
    EXPECT_EQ((Changes{{Now(), kBsp, 0, 6.0}, {0.0, kMkLat, 0, 50.0}}), Look());
}

TEST_F(FollowerTest, TellsTheChosenChannelsAndBoats) {
    Publish(kBsp, 6.0);
    Publish(kHdg, 90.0);
    Publish(kMagVar, -3.0);
    Publish(kBsp, 7.0, 1);
    Publish(kBsp, 8.0, 42);
    record.SetSlot(0, 1, kHdg);
    const auto told = [&](const FollowOptions& options) {
        Follow(options);
        std::vector<std::pair<ChannelId, double>> values, present;
        for (const Change& change : Look()) values.emplace_back(change.channel, change.value + 100.0 * change.boat);
        for (const Change& change : follower->Present()) present.emplace_back(change.channel, change.value + 100.0 * change.boat);
        EXPECT_EQ(values, present) << "who joins later gets the same";
        return values;
    };
    using Values = std::vector<std::pair<ChannelId, double>>;
    EXPECT_EQ((Values{{kBsp, 6.0}, {kHdg, 90.0}, {kMagVar, -3.0}, {kBsp, 107.0}, {kBsp, 4208.0}}), told({}));
    EXPECT_EQ((Values{{kBsp, 4208.0}}), told({.boat = 42}));
    EXPECT_EQ(-3.0, follower->Variation(42)) << "the own boat's, though it is not told";
    EXPECT_EQ((Values{{kHdg, 90.0}, {kAlt0, 90.0}}), told({.channels = {kAlt0, kHdg}})) << "as what it stands for";
    EXPECT_EQ(6.0, follower->Value(kBsp, 0)) << "though it is not told";
}

TEST_F(FollowerTest, RepeatsAllOnceASecondIfAsked) {
    Publish(kMkLat, 50.0);
    Publish(kBsp, 6.0);
    Follow({.all = true});
    int told = 0;
    for (int tick = 0; tick < 50; ++tick, Pass(0.1)) told += static_cast<int>(Look().size());
    EXPECT_EQ(10, told);
}

TEST_F(FollowerTest, TakesNoMemoryOnceWarm) {
    const auto publish = [&](double value) {
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) Publish(channel, value, channel % 3);
    };
    publish(1.0);
    follower->Look();
    publish(2.0);
    const int before = Allocations();
    EXPECT_LT(200u, follower->Look().size());
    EXPECT_EQ(before, Allocations());
}

}  // namespace
}  // namespace twr::testing
