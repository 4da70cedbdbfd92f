// SPDX-License-Identifier: MIT
// The two passes of a tick alone: rows as data, over a core of fakes and a Deckman of the test's own.
#include "base/wide_text.h"
#include "bridge/instrument_pass.h"
#include "bridge/remote_pass.h"
#include "deckman/remote_text.h"
#include "support/core_fixture.h"
#include "support/stub_deckman.h"

namespace twr::testing {
namespace {

using R = RecordBytes;

MappingVar Mapped(ChannelId channel, std::int32_t variable, std::int32_t boat = 0) {
    MappingVar row;
    row.channel = static_cast<std::int32_t>(channel);
    row.dfwId = variable;
    row.boat = boat;
    return row;
}

struct PassTest : CoreTest {
    PassTest() { LoadLibrary(); }

    void LoadLibrary(const std::string& withoutFunction = "") {
        deckman.missing = {withoutFunction};
        deckman.Install(u"");
        library.Load(u"");
    }

    void Tick(int count = 1) {
        for (; count > 0; --count) {
            machine.clock.AdvanceMs(100);
            deckman.reads.clear();
            deckman.sent.clear();
            instruments.Run(library, variables, timer, settings);
            remotesPass.Run(library, remotes, settings);
        }
    }

    // What one tick reads, and what it sends.
    std::vector<int> TickReads() { return Tick(), deckman.reads; }
    std::vector<std::string> TickSends() { return Tick(), deckman.sent; }

    StubDeckman deckman;
    DeckmanLibrary library{deckman};
    std::vector<MappingVar> variables;
    std::vector<MappingRemote> remotes;
    std::int32_t timer = -1;
    Settings settings;
    InstrumentPass instruments{*core, machine.clock};
    RemotePass remotesPass{*core};
};

using Reads = std::vector<int>;

class InstrumentPassTest : public PassTest {};

TEST(InstrumentValue, BringsAReadingToItsChannel) {
    constexpr float kNone = 32767.0f;
    const std::tuple<ChannelId, float, bool, bool, double, float> rows[] = {
        {kHdg, 185.0f, true, false, 10.0, 175.0f},     {kHdg, 185.0f, false, false, 10.0, 185.0f},
        {kHdg, 359.0f, true, false, -5.0, 4.0f},       {kHdg, 3.0f, true, false, 10.0, 353.0f},
        {kCog, 90.0f, true, false, 2.0, 88.0f},        {kTwd, 90.0f, true, false, 2.0, 88.0f},
        {kCourse, 90.0f, true, false, 2.0, 88.0f},     {kSet, 90.0f, true, false, 2.0, 88.0f},
        {kSog, 90.0f, true, false, 2.0, 90.0f},        {kHdg, kNone, true, false, 10.0, kNone},
        {kHdg, 90.0f, true, false, kNoValue, kNone},   {kHdg, 720.0f, true, false, 0.0, 360.0f},
        {kHeel, 5.0f, true, true, 10.0, -5.0f},        {kLeeway, -3.0f, false, false, 0.0, 3.0f},
        {kHeel, kNone, false, false, 0.0, -kNone},     {kDepth, 32.808f, false, true, 0.0, 10.0f},
        {kDepth, 32.808f, false, false, 0.0, 32.808f}, {kBsp, 7.5f, true, true, 10.0, 7.5f}};
    for (const auto& [channel, reading, degreesTrue, feet, variation, value] : rows) {
        const float brought = InstrumentValue(channel, reading, {degreesTrue, feet, variation});
        EXPECT_FLOAT_EQ(value, brought) << "channel " << channel << " read " << reading;
    }
}

TEST_F(InstrumentPassTest, ASteadyReadingGoesOutOnceASecond) {
    const std::tuple<ChannelId, float, const char*> rows[] = {{kBsp, 6.5f, "a value"}, {kAws, 32767.0f, "even an absent one"}};
    for (const auto& [channel, reading, what] : rows) {
        SCOPED_TRACE(what);
        variables = {Mapped(channel, 12)};
        deckman.variables[12] = reading;
        SetFlag(38, false);
        Tick();
        const double first = machine.clock.Days();
        EXPECT_EQ(first, OwnTime(channel));
        EXPECT_EQ(reading, Own(channel));
        EXPECT_EQ(1, record.U8(R::SysFlag(38))) << "set at the end of every pass";
        Tick(9);
        EXPECT_EQ(first, OwnTime(channel));
        Tick(2);
        EXPECT_NEAR(1.05, (OwnTime(channel) - first) * 86400, 0.051);
        deckman.variables[12] = 6.6f;
        Tick();
        EXPECT_EQ(machine.clock.Days(), OwnTime(channel)) << "a change goes out at once";
        EXPECT_EQ(6.6f, Own(channel));
    }
}

TEST_F(InstrumentPassTest, TheFilterBelongsToTheChannelNotToTheRow) {
    variables = {Mapped(kBsp, 1), Mapped(kBsp, 2, 5)};
    deckman.variables = {{1, 6.0f}, {2, 6.0f}};
    Tick();
    EXPECT_EQ(6.0, Own(kBsp));
    EXPECT_EQ(0.0, record.F64(R::FarTime(5, 10))) << "the same value of the same channel has just gone out";
    deckman.variables[2] = 7.0f;
    Tick();
    EXPECT_EQ(7.0, record.F64(R::FarValue(5, 10)));
}

TEST_F(InstrumentPassTest, PositionsComeFromDeckmanOnlyWhenChosen) {
    const ChannelId channels[] = {kLat, kLon, kCog, kSog, kBsp};
    for (int i = 0; i < 5; ++i) {
        variables.push_back(Mapped(channels[i], i));
        deckman.variables[i] = 10.0f + static_cast<float>(i);
    }
    deckman.latitude = 50.5f;
    deckman.longitude = -1.25f;
    EXPECT_EQ(Reads{4}, TickReads());
    EXPECT_EQ(0, deckman.positions);
    EXPECT_EQ(kNoValue, Own(kLat));
    record.SetInt(6, 3);
    EXPECT_EQ((Reads{0, 1, 2, 3, 4}), TickReads());
    EXPECT_EQ(50.5, Own(kLat)) << "the position goes out behind the rows";
    EXPECT_EQ(-1.25, Own(kLon));
    EXPECT_EQ(12.0, Own(kCog));
    Tick(3);
    EXPECT_EQ(4, deckman.positions) << "on every tick";
    EXPECT_EQ(machine.clock.Days(), OwnTime(kLat));
}

TEST_F(InstrumentPassTest, TheTimerSetsTheGunWhileItFalls) {
    timer = 0;
    settings.useTimer = true;
    const std::pair<float, bool> rows[] = {{300, false}, {299, true},  {298, true}, {298, false}, {299, false}, {1, true},
                                           {0, false},   {300, false}, {299, true}, {200, false}, {-5, true}};
    for (const auto& [reading, sets] : rows) {
        SCOPED_TRACE(reading);
        if (reading == 200) instruments.ForgetTimer();
        deckman.variables[0] = reading;
        record.SetValue(36, 1.0);
        Tick();
        const double gun = static_cast<double>(reading) / 60.0 / 60.0 / 24.0 + machine.clock.Days();
        EXPECT_EQ(sets ? gun : 1.0, record.F64(R::SysValue(36)));
    }
    settings.useTimer = false;
    EXPECT_EQ(Reads{}, TickReads());
}

TEST_F(InstrumentPassTest, TrueBearingsNeedTheVariationOfTheRecord) {
    variables = {Mapped(kMagVar, 13), Mapped(kHdg, 12)};
    settings.degreesTrue = true;
    deckman.variables = {{12, 185.0f}, {13, 32767.0f}};
    Tick();
    EXPECT_EQ(kNoValue, Own(kHdg));
    deckman.variables[13] = 10.0f;
    Tick();
    EXPECT_EQ(175.0, Own(kHdg)) << "the row before has just published it";
    deckman.variables[13] = 12.0f;
    Tick();
    EXPECT_EQ(173.0, Own(kHdg)) << "and another one";
}

TEST_F(InstrumentPassTest, ReadsOnlyWhatItCan) {
    record.SetInt(6, 3);
    timer = 9;
    settings.useTimer = true;
    const std::tuple<std::string, MappingVar, Reads, bool> rows[] = {
        {"Usr_Read", Mapped(kBsp, 1), {}, true},          {"Usr_GetPosition", Mapped(kBsp, 1), {1, 9}, false},
        {"Usr_SetISData", Mapped(kBsp, 1), {1, 9}, true}, {"", Mapped(kTime, 1), {9}, true},
        {"", Mapped(kChannelCount, 1), {9}, true},        {"", Mapped(kBsp, kNoInt), {9}, true}};
    for (const auto& [missing, mapped, reads, position] : rows) {
        LoadLibrary(missing);
        variables = {mapped};
        deckman.positions = 0;
        SetFlag(38, false);
        EXPECT_EQ(reads, TickReads()) << missing << mapped.channel;
        EXPECT_EQ(position, deckman.positions == 1) << missing;
        EXPECT_EQ(1, record.U8(R::SysFlag(38)));
    }
    record.SetInt(6, 0);
    LoadLibrary("Usr_Read");
    SetFlag(38, false);
    Tick();
    EXPECT_EQ(1, record.U8(R::SysFlag(38))) << "by a pass that reads nothing";
}

using Sent = std::vector<std::string>;

struct RemotePassTest : PassTest {
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
    const std::tuple<ChannelId, double, std::u16string> rows[] = {
        {kBsp, 7.25, u"7.25"},       {kBsp, 12.34, u"12.3"},         {kBsp, 1234.5, u"1234"},           {kBsp, -12.5, u"-12."},
        {kUser0, 12345.0, u"12345"}, {kBsp, kNoValue, u"-0"},        {kTmToGun, 45.0 / 86400, u"0.45"}, {kTime, 46345.5, u"4634"},
        {kLat, 45.2057, u"45 1"},    {kGpsMethod, 8.0, u"SIMULATE"}, {kMagVar, 0.5, u"0.50"},           {kDMkBrgCog, -4.0, u"4L"}};
    for (const auto& [channel, value, text] : rows)
        EXPECT_EQ(text, RemoteValueText(*core, channel, value)) << channel << ": " << value;
}

TEST_F(RemotePassTest, SendsOnChangeAndBlanksOnceWhenStaleWithNamesWhenTheyAreDue) {
    Remote(kBsp);
    // published: 0: nothing
    const std::tuple<const char*, double, int, bool, Sent> rows[] = {
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
        {"the name is known already", 5.0, 0, true, {"3=5.00"}}};
    for (const auto& [what, published, pauseMs, names, sent] : rows) {
        if (published != 0) Publish(kBsp, published);
        machine.clock.AdvanceMs(pauseMs);
        settings.sendNames = names;
        EXPECT_EQ(sent, TickSends()) << what;
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
