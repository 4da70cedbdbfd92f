// What other code relies on in the catalogue beyond its literal rows.
#include <gtest/gtest.h>

#include <set>

#include "core/channel_catalogue.h"

namespace twr::testing {
namespace {

TEST(ChannelCatalogue, EveryRowStandsAtItsId) {
    for (ChannelId channel = 0; channel < kChannelCount; ++channel) EXPECT_EQ(channel, ChannelCatalogue()[channel].id);
}

TEST(ChannelCatalogue, TheShortStoreHasOneChannelForEachPlace) {
    std::set<int> places;
    for (const ChannelInfo& info : ChannelCatalogue()) {
        if (info.shortIndex == 32767) continue;
        EXPECT_LT(info.shortIndex, 34) << info.id;
        EXPECT_TRUE(places.insert(info.shortIndex).second) << info.id;
    }
    EXPECT_EQ(34u, places.size());
}

TEST(ChannelCatalogue, HoldsTheChannelsThatTheCodeNames) {
    const struct {
        ChannelId channel;
        std::u16string_view name, longName;
        int type, min, max, stale, prec, shortIndex;
    } rows[] = {
        {0, u"", u"Time", 1, 0, 0, 10, 255, 0},
        {2, u"AWA", u"AWA", 13, -180, 180, 10, 0, 8},
        {13, u"HDG", u"Heading", 6, 0, 360, 10, 0, 11},
        {49, u"Lon", u"Longitude", 9, -180, 360, 10, 255, 4},
        {93, u"MagVar", u"Magnetic variation", 7, -90, 90, 10, 2, 1},
        {148, u"TWD-90", u"TWD - 90\u00B0", 6, 0, 360, 10, 0, 32767},
        {282, u"RudderP", u"Rudder port", 7, -180, 180, 10, 1, 32},
        {365, u"Charge%", u"Charge state %", 10, 0, 252, 30, 1, 32767},
        {404, u"SailEvt", u"Sail event", 11, 0, 0, 0, 0, 32767},
        {413, u"PredSeaTemp", u"Sea temperature predicted", 14, 0, 0, 60, 1, 32767},
    };
    for (const auto& row : rows) {
        const ChannelInfo& info = ChannelCatalogue()[row.channel];
        SCOPED_TRACE(::testing::Message() << "channel " << row.channel);
        EXPECT_TRUE(row.name == info.name && row.longName == info.longName);
        EXPECT_EQ(row.type, info.type);
        EXPECT_EQ(row.min, info.min);
        EXPECT_EQ(row.max, info.max);
        EXPECT_EQ(row.stale, info.staleSeconds);
        EXPECT_EQ(row.prec, info.prec);
        EXPECT_EQ(row.shortIndex, info.shortIndex);
    }
}

}  // namespace
}  // namespace twr::testing
