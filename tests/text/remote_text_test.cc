// What a remote of the instruments shows: labels of channels, and the fields in which all texts go there.
#include "base/wide_text.h"
#include "support/core_fixture.h"
#include "text/remote_field.h"
#include "text/remote_label.h"

namespace twr::testing {
namespace {

TEST(RemoteField, HoldsFifteenBytes) {
    const struct {
        std::u16string text;
        std::string bytes;
    } rows[] = {
        {u"", ""},
        {u"123456789012345", "123456789012345"},
        {u"1234567890123456", "123456789012345"},
        {u"2.50\u00B0w", "2.50\xB0w"},
        {u"\u0080\u0099\u00FF", "\x80\x99\xFF"},
        {u"\u20AC\u00B0\u0178\u017E", "\x80\xB0\x9F\x9E"},
        {u"\u20AC\u0080\u0099\u0081", "\x80??\x81"},  // the bytes of another character and of none
        {u"1\U0001F30A2", "1??2"},
        {u"\xD83C\xD83C\xDF0A\xDF0A|", "????|"},
        {u"123456789012345\u0100", "123456789012345"},
        {std::u16string(u"ab\0cd", 5), "ab"},
    };
    for (const auto& row : rows) {
        std::string expected = row.bytes;
        expected.resize(16);
        const RemoteField field = ToRemoteField(row.text);
        EXPECT_EQ(expected, std::string(field.data(), field.size())) << ToUtf8(row.text);
    }
}

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
