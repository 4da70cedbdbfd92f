// What a remote of the instruments shows: labels of channels, and the fields in which all texts go there.
#include "base/wide_text.h"
#include "support/core_fixture.h"
#include "text/remote_label.h"

namespace twr::testing {
namespace {

TEST(RemoteLabel, FitsANameIntoEightCharacters) {
    const struct {
        const char16_t* name;
        const char* label;
    } rows[] = {
        {u"", ""},
        {u"VMG%", "VMG PC"},
        {u"Burn%", "BURN PC"},
        {u"Pol 0%", "POL 0PC"},
        {u"PolBsp%", "POLBSP"},
        {u"1%2%3", "1 PC2 PC"},
        {u"GPS tOffset", "GPS TOFF"},
        {u"km/h", "KM H"},
        {u"speed/hr", "SPEED HR"},
        {u"speed/hour", "SPEEDHOU"},
        {u"TWD+90°%", "TWD+90"},
        {u"é/ä", "é ä"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.label, ToUtf8(RemoteLabelOf(row.name))) << ToUtf8(row.name);
}

class ChannelNameTest : public CoreTest {};

TEST_F(ChannelNameTest, IsTheUsersWhereThereIsOne) {
    record.SetText(RecordBytes::Channel(174) + 76, u"Canard");
    record.SetSlot(0, 3, 174);
    record.SetSlot(1, 3, 500);
    const struct {
        ChannelId channel;
        const char *name, *label;
    } rows[] = {
        {0, "", ""},  {174, "Canard", "CANARD"}, {175, "User 3", "USER 3"}, {117, "Canard", "CANARD"}, {118, "Alt 1", "ALT 1"},
        {414, "", ""}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.name, ToUtf8(core->ChannelName(row.channel))) << row.channel;
        EXPECT_EQ(row.label, ToUtf8(core->RemoteLabel(row.channel))) << row.channel;
    }
}

}  // namespace
}  // namespace twr::testing
