#include "base/wide_text.h"
#include "pass_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;
using Sent = std::vector<std::string>;

class RemotePassTest : public PassTest {
protected:
    void Remote(ChannelId channel) { remotes = {{.channel = static_cast<std::int32_t>(channel), .remote = 3}}; }
};

TEST(RemoteField, HoldsFifteenBytes) {
    const std::pair<std::u16string, std::string> rows[] = {
        {u"", ""},
        {u"1234567890123456", "123456789012345"},
        {u"2.50\u00B0w", "2.50\xB0w"},
        {u"\u0080\u0099\u00FF", "\x80\x99\xFF"},
        {u"\u20AC\u0080\u0099\u0081", "\x80??\x81"},  // the bytes of another character and of none
        {u"1\U0001F30A2", "1??2"},
        {u"123456789012345\u0100", "123456789012345"},
        {std::u16string(u"ab\0cd", 5), "ab"}};
    for (auto [text, bytes] : rows) {
        bytes.resize(16);
        const RemoteField field = ToRemoteField(text);
        EXPECT_EQ(bytes, std::string(field.data(), field.size())) << ToUtf8(text);
    }
}

TEST_F(RemotePassTest, TheTextIsCutToFourWhereItHasAPoint) {
    record.Set<std::uint16_t>(R::Channel(kUser0) + 6, 0);
    const struct {
        ChannelId channel;
        double value;
        std::u16string text;
    } rows[] = {
        {kBsp, 7.25, u"7.25"},       {kBsp, 12.34, u"12.3"},         {kBsp, 1234.5, u"1234"},           {kBsp, -12.5, u"-12."},
        {kUser0, 12345.0, u"12345"}, {kBsp, kNoValue, u"-0"},        {kTmToGun, 45.0 / 86400, u"0.45"}, {kTime, 46345.5, u"4634"},
        {kLat, 45.2057, u"45 1"},    {kGpsMethod, 8.0, u"SIMULATE"}, {kMagVar, 0.5, u"0.50"},           {kDMkBrgCog, -4.0, u"4L"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, RemoteValueText(*core, row.channel, row.value)) << row.channel << " at " << row.value;
    }
}

TEST_F(RemotePassTest, SendsOnChangeAndBlanksOnceWhenStaleWithNamesWhenTheyAreDue) {
    Remote(kBsp);
    const struct {
        const char* what;
        double published;  // 0: nothing
        int pauseMs;
        bool names;
        Sent sent;
    } rows[] = {
        {"nothing yet, not even a blank", 0, 0, false, {}},
        {"the first value", 7.5, 0, false, {"3=7.50"}},
        {"no change", 0, 0, false, {}},
        {"a change", 7.6, 0, false, {"3=7.60"}},
        {"just within its limit of 10 s", 0, 9700, false, {}},
        {"stale", 0, 100, false, {"3=-0"}},
        {"still stale", 0, 0, false, {}},
        {"the same value again", 7.6, 0, false, {"3=7.60"}},
        {"names, but not at once", 0, 0, true, {}},
        {"the first value with its name", 2.0, 0, true, {"3=2.00", "3#BSP"}},
        {"a later one", 3.0, 0, true, {"3=3.00"}},
        {"without names", 4.0, 0, false, {"3=4.00"}},
        {"the name is known already", 5.0, 0, true, {"3=5.00"}},
    };
    for (const auto& row : rows) {
        if (row.published != 0) Publish(kBsp, row.published);
        machine.clock.AdvanceMs(row.pauseMs);
        settings.sendNames = row.names;
        EXPECT_EQ(row.sent, TickSends()) << row.what;
    }
}

TEST_F(RemotePassTest, AnAlternatingChannelTakesItsNameAlong) {
    Remote(kAlt0);
    settings.sendNames = true;
    EXPECT_EQ(Sent{}, TickSends()) << "it stands for none";
    record.SetSlot(0, 2, kBsp);  // upwind
    record.SetSlot(0, 4, kTws);  // downwind
    Publish(kBsp, 7.0);
    Publish(kTws, 15.0);
    Publish(kTwa, 45.0);
    EXPECT_EQ((Sent{"3=7.00", "3#BSP"}), TickSends());
    Publish(kTwa, -150.0);
    EXPECT_EQ((Sent{"3=15.0", "3#TWS"}), TickSends());
}

TEST_F(RemotePassTest, ShowsTheDampedValueOfTheBoatAskedForAndBearingsAsTheUserChose) {
    remotes = {{.channel = kBsp, .boat = 1, .remote = 3, .damp = 1}, {.channel = kHdg, .remote = 4}};
    Publish(kBsp, 7.0);
    Publish(kBsp, 8.0, 1);
    Publish(kHdg, 355.0);
    Publish(kMagVar, 10.0);
    EXPECT_EQ(Sent{"4=355"}, TickSends()) << "nobody has damped the speed";
    record.Set(R::Damped(1, kBsp), 8.5);
    SetFlag(3, false);
    EXPECT_EQ((Sent{"3=8.50", "4=005"}), TickSends());
}

TEST_F(RemotePassTest, WithoutBothSettersNothingIsSent) {
    for (const std::string missing : {"Usr_SetISData", "Usr_SetISName"}) {
        LoadLibrary(missing);
        Remote(kBsp);
        Publish(kBsp, 7.0);
        EXPECT_EQ(Sent{}, TickSends()) << missing;
    }
}

}  // namespace
}  // namespace twr::testing
