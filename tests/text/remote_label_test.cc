#include "text/remote_label.h"

#include <gtest/gtest.h>

#include "platform/wide_text.h"
#include "support/fakes.h"
#include "support/record_writer.h"

namespace twr {
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
        {u"Charge1%", "CHARGE1"},
        {u"1%2%", "1 PC2 PC"},
        {u"1%2%3", "1 PC2 PC"},
        {u"GPS tOffset", "GPS TOFF"},
        {u"VmcOptHdg", "VMCOPTHD"},
        {u"km/h", "KM H"},
        {u"speed/hr", "SPEED HR"},
        {u"speed/hour", "SPEEDHOU"},
        {u"°%°", " PC"},
        {u"TWD+90°%", "TWD+90"},
        {u"é/ä", "é ä"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.label, ToUtf8(RemoteLabelOf(row.name))) << ToUtf8(row.name);
}

TEST(ChannelName, IsTheUsersWhereThereIsOne) {
    testing::FakeMachine machine;
    CCore core(machine.Services());
    testing::RecordWriter record(core);
    record.SetText(6300 + 108 * 174 + 76, u"Canard");
    record.SetSlot(0, 3, 174);
    record.SetSlot(1, 3, 500);
    const struct {
        ChannelId channel;
        const char *name, *label;
    } rows[] = {
        {0, "", ""},
        {174, "Canard", "CANARD"},
        {175, "User 3", "USER 3"},
        {203, "User 31", "USER 31"},
        {117, "Canard", "CANARD"},
        {118, "Alt 1", "ALT 1"},
        {119, "Alt 2", "ALT 2"},
        {414, "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.name, ToUtf8(core.ChannelName(row.channel))) << row.channel;
        EXPECT_EQ(row.label, ToUtf8(core.RemoteLabel(row.channel))) << row.channel;
    }
}

TEST(ChannelName, NeedsNoRecord) {
    testing::FakeMachine machine;
    machine.memory.failCreate = true;
    CCore core(machine.Services());
    EXPECT_EQ("VMG PC", ToUtf8(core.RemoteLabel(kVmgPct)));
    EXPECT_EQ("ALT 0", ToUtf8(core.RemoteLabel(kAlt0)));
}

}  // namespace
}  // namespace twr
