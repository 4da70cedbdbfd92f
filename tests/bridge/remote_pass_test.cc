#include "bridge/remote_pass.h"

#include "base/wide_text.h"
#include "bridge_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;
using Sent = std::vector<std::string>;

// A bridge with one remote, 3, that shows a channel which the other holder of the record publishes.
class RemotePassTest : public BridgeTest {
protected:
    void Remote(ChannelId channel, const std::string& more = "") {
        Variables("12 X\n");
        MappingXml("<remote remote='3' twr='" + std::to_string(channel) + "' " + more + "/>");
    }

    void Publish(ChannelId channel, double value, BoatSlot boat = 0) { other->SetChannel(channel, boat, value, 0.0); }

    // What one tick sends.
    Sent TickSends() {
        deckman.sent.clear();
        host.Tick();
        return deckman.sent;
    }
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
    Remote(kBsp);
    Run([&] {
        record->Set<std::uint16_t>(R::Channel(kUser0) + 6, 0);
        const struct {
            ChannelId channel;
            double value;
            std::u16string text;
        } rows[] = {
            {kBsp, 7.25, u"7.25"},
            {kBsp, 12.34, u"12.3"},
            {kBsp, 123.4, u"123."},
            {kBsp, 1234.5, u"1234"},
            {kBsp, -12.5, u"-12."},
            {kUser0, 12345.0, u"12345"},
            {kBsp, kNoValue, u"-0"},
            {kTmToGun, 45.0 / 86400, u"0.45"},
            {kTmToGun, 754.0 / 86400, u"12.3"},
            {kTime, 46345.5, u"4634"},
            {kLat, 45.2057, u"45 1"},
            {kGpsMethod, 8.0, u"SIMULATE"},
            {kMagVar, 0.5, u"0.50"},
            {kMagVar, 2.0, u"2.00"},
            {kTwd, 5.4, u"005"},
            {kDMkBrgCog, -4.0, u"4L"},
        };
        for (const auto& row : rows) {
            EXPECT_EQ(row.text, RemoteValueText(*other, row.channel, row.value)) << row.channel << " at " << row.value;
        }
    });
}

TEST_F(RemotePassTest, SendsOnChangeAndBlanksOnceWhenStale) {
    Remote(kBsp);
    Run([&] {
        EXPECT_EQ(Sent{}, TickSends()) << "nothing yet, not even a blank";
        Publish(kBsp, 7.5);
        EXPECT_EQ(Sent{"3=7.50"}, TickSends());
        EXPECT_EQ(Sent{}, TickSends());
        Publish(kBsp, 7.6);
        EXPECT_EQ(Sent{"3=7.60"}, TickSends());
        machine.clock.AdvanceMs(9700);
        EXPECT_EQ(Sent{}, TickSends()) << "just within its limit of 10 s";
        machine.clock.AdvanceMs(100);
        EXPECT_EQ(Sent{"3=-0"}, TickSends());
        EXPECT_EQ(Sent{}, TickSends());
        Publish(kBsp, 7.6);
        EXPECT_EQ(Sent{"3=7.60"}, TickSends()) << "the same value again";
    });
}

TEST_F(RemotePassTest, ANameFollowsItsValueWhenItIsDue) {
    Remote(kBsp);
    Run([&] {
        Publish(kBsp, 1.0);
        EXPECT_EQ(Sent{"3=1.00"}, TickSends());
        host.SetChecked(kNamesCheck, true);
        EXPECT_EQ(Sent{}, TickSends()) << "not at once";
        Publish(kBsp, 2.0);
        EXPECT_EQ((Sent{"3=2.00", "3#BSP"}), TickSends());
        Publish(kBsp, 3.0);
        EXPECT_EQ(Sent{"3=3.00"}, TickSends());
        host.SetChecked(kNamesCheck, false);
        Publish(kBsp, 4.0);
        TickSends();
        host.SetChecked(kNamesCheck, true);
        Publish(kBsp, 5.0);
        EXPECT_EQ(Sent{"3=5.00"}, TickSends()) << "its name is known already";
        host.PickFolder(machine.folder.File("Deckman"));
        EXPECT_EQ((Sent{"3=5.00", "3#BSP"}), TickSends()) << "a reload sends all once more";
    });
}

TEST_F(RemotePassTest, AnAlternatingChannelTakesItsNameAlong) {
    Remote(kAlt0);
    SaveSetting(u"DfwTags", DwordValue(1));
    Run([&] {
        EXPECT_EQ(Sent{}, TickSends()) << "it stands for none";
        record->Set<std::int32_t>(5080 + 4 * 2, kBsp);  // upwind
        record->Set<std::int32_t>(5080 + 4 * 4, kTws);  // downwind
        Publish(kBsp, 7.0);
        Publish(kTws, 15.0);
        Publish(kTwa, 45.0);
        EXPECT_EQ((Sent{"3=7.00", "3#BSP"}), TickSends());
        Publish(kTwa, -150.0);
        EXPECT_EQ((Sent{"3=15.0", "3#TWS"}), TickSends());
    });
}

TEST_F(RemotePassTest, ShowsTheDampedValueAndTheBoatAskedFor) {
    Remote(kBsp, "damp='true' boat='1'");
    Run([&] {
        Publish(kBsp, 7.0);
        Publish(kBsp, 8.0, 1);
        EXPECT_EQ(Sent{}, TickSends()) << "nobody has damped it";
        record->Set(R::Damped(1, kBsp), 8.5);
        EXPECT_EQ(Sent{"3=8.50"}, TickSends());
    });
}

TEST_F(RemotePassTest, BearingsFollowTheUsersChoice) {
    Remote(kHdg);
    Run([&] {
        Publish(kHdg, 355.0);
        Publish(kMagVar, 10.0);
        EXPECT_EQ(Sent{"3=355"}, TickSends());
        record->Set<std::uint8_t>(R::SysFlag(3), 0);
        EXPECT_EQ(Sent{"3=005"}, TickSends());
    });
}

TEST_F(RemotePassTest, WithoutBothSettersNothingIsSent) {
    for (const std::string missing : {"Usr_SetISData", "Usr_SetISName"}) {
        deckman.missing = {missing};
        Remote(kBsp);
        Run([&] {
            Publish(kBsp, 7.0);
            EXPECT_EQ(Sent{}, TickSends()) << missing;
        });
        other.reset();
    }
}

TEST_F(RemotePassTest, AValueJustReadGoesOutOnTheSameTick) {
    Variables("12 X\n");
    MappingXml("<var twr='1' dfw='12'/><remote remote='3' twr='1'/><remote remote='3' twr='1'/>");
    deckman.variables[12] = 6.5f;
    Run([&] { EXPECT_EQ((Sent{"3=6.50", "3=6.50"}), TickSends()); });
}

}  // namespace
}  // namespace twr::testing
