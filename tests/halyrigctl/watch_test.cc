// SPDX-License-Identifier: MIT
#include <algorithm>

#include "config/bridge_settings.h"
#include "displays/displays.h"
#include "halyrigctl/ctl_fixture.h"
#include "halyrigctl/setup/bridge_pulse.h"
#include "halyrigctl/watch/watch_view.h"
#include "status/bridge_status.h"

namespace twr::testing {
namespace {

struct WatchTest : CtlTest {
    void ExpectAbsent(const std::string& text, const std::vector<const char*>& parts) {
        for (const char* part : parts) EXPECT_EQ(std::string::npos, text.find(part)) << part << "\nis in\n" << text;
    }
    std::string PictureAfter(const std::u32string& keys, const std::string& command = "watch") {
        console.keys = keys;
        console.pictures.clear();
        Said(command);
        return console.pictures.empty() ? "" : console.pictures.back();
    }
};

TEST_F(WatchTest, EndsWithTheUserOrTheSuiteThoughNobodyTakesItsOutput) {
    constexpr const char* kWatch = "watch --interval 250";
    const auto userEnds = [&] { return console.waited < 700; };
    const auto suiteEnds = [&] { return Record().SetFlag(35, true), true; };
    for (const bool live : {false, true}) {
        SCOPED_TRACE(live);
        if (live) console.size = ConsoleSize{80, 24};
        console.held = false;
        console.waited = console.writes = 0;
        console.beforeError = {};
        StartSuite();
        Record().SetFlag(35, false);
        console.goOn = userEnds;
        Said(kWatch);
        EXPECT_EQ(700, console.waited);
        EXPECT_EQ(3, live ? static_cast<int>(console.pictures.size()) : console.writes) << "one look for each interval begun";
        console.goOn = suiteEnds;
        ExpectIn(Said(kWatch), {"asked to close"});
        EXPECT_EQ(800, console.waited);
        ExpectIn(Said("get bsp", 1), {"asked to close", "not running"});

        Record().SetFlag(35, false);
        console.held = !live;
        console.goOn = [asked = 0]() mutable { return ++asked < 3; };
        Said("watch");
        const int before = console.waited;
        console.goOn = suiteEnds;
        console.beforeError = [&] {
            EXPECT_FALSE(console.screenTaken) << "it would cover the message";
            suite.reset();
            EXPECT_FALSE(Held()) << "the request would stay with it";
        };
        ExpectIn(Said("watch"), {"asked to close"});
        EXPECT_EQ(before + (live ? 100 : 0), console.waited);
    }
}

TEST_F(WatchTest, ObeysItsKeys) {
    StartSuite();
    for (ChannelId channel = 1; channel <= 20; ++channel) Publish(channel, 1.0);
    console.size = ConsoleSize{80, 13};  // ten of the rows
    using K = Key;
    const std::u32string down{K::kDown}, page{K::kPageDown}, end{K::kEnd}, escape{K::kEscape}, enter{K::kEnter};
    const std::u32string back{K::kBackspace};
    const std::tuple<const char*, std::u32string, std::vector<const char*>, std::vector<const char*>> rows[] = {
        {"at first", U"", {"1-10 of 22", " 1>BSP", "q End", "Sort (id)"}, {"20 Rudder"}},
        {"a line down", down + down + std::u32string{K::kUp}, {"1-10 of 22", "2>AWA"}, {"1>BSP"}},
        {"and explained", down + enter, {"AWA (2): all is well", "Enter Close"}, {"Drift"}},
        {"and no more", down + enter + enter, {"1-10 of 22", "Enter Explain"}, {"all is well"}},
        {"a page down", page, {"2-11 of 22", "11>"}, {"BSP"}},
        {"beyond the end and back", page + page + page + std::u32string{K::kPageUp}, {"12-21 of 22"}, {}},
        {"to the end", end, {"13-22 of 22"}, {}},
        {"to the start", end + std::u32string{K::kHome}, {"1-10 of 22"}, {}},
        {"by name", U"s", {"Sort (name)"}, {}},
        {"by age", U"ss", {"Sort (age)"}, {}},
        {"and by number again", U"sss", {"Sort (id)"}, {}},
        {"a filter, in which q and s are letters",
         U"/Qsx" + back + back + back + U"tw",
         {"/tw_", "TWA", "TWD", "TWS"},
         {"BSP", "of 22"}},
        {"kept", U"/tw" + enter, {"/tw  Esc Clear", "TWS"}, {"BSP", "/tw_"}},
        {"kept, then cleared", U"/tw" + enter + escape, {"1-10 of 22"}, {"/tw"}},
        {"cleared at once", U"/tw" + escape, {"1-10 of 22"}, {"/tw"}},
        {"with nothing found", U"/xyz", {"No channel's name contains"}, {"TWS"}},
        {"a key without meaning", U"x", {"1-10 of 22"}, {}}};
    for (const auto& [what, keys, shown, absent] : rows) {
        SCOPED_TRACE(what);
        const std::string picture = PictureAfter(keys);
        ExpectIn(picture, shown);
        ExpectAbsent(picture, absent);
    }
    const int waited = console.waited;
    for (const std::u32string& ending :
         {std::u32string(U"q"), escape, U"/tw" + enter + U"q", U"/tw" + escape + escape, enter + escape + escape}) {
        console.goOn = [] { return ADD_FAILURE() << "it goes on", false; };
        PictureAfter(ending);
        EXPECT_EQ(waited, console.waited);
    }
}

// The pictures, and the parts of which they are made.

TEST(WatchView, FitsItsTerminalAndTellsWhatDoesNot) {
    WatchedLook look{"12:34:56", "bridge 10 ticks/s", true, {}, {}};
    look.rows.assign(27, {172, "Jib lead positi", "7.25", "kt", 0.1, ChannelState::kFresh, "", std::string(20, '=')});
    look.rows[1].state = ChannelState::kStale;
    look.rows[1].reason = "it is stale";
    for (int number = 1; number <= 12; ++number) look.remotes.push_back({number, "6.37", "BSP"});
    constexpr const char* kCourse = "====================";
    const std::tuple<int, int, std::vector<const char*>, const char*> sizes[] = {
        {130,
         28,
         {"\u256D 12 ", "1-25 of 27", "fresh   172 Jib lead positi          7.25 kt        0.1 s  ====================  \u256D"},
         "more displays"},
        {80,
         24,
         {"kt        0.1 s       1 BSP      6.37", " 12 BSP ", "1-21 of 27", "stale   172 Jib lead pos it is stale"},
         kCourse},
        {80, 10, {" 6 BSP ", "6 more displays", "1-7 of 27", "12:34:56  bridge 10"}, " 7 BSP"},
        {60, 24, {" 1 BSP      6.37       2 BSP      6.37", "12 BSP", "1-14 of 27"}, "more displays"},
        {60, 60, {"\u256D 12 ", "      0.1 s"}, "more"},
        {40, 10, {" 2 BSP", "10 more displays", "s 172 Jib lead pos it is stale"}, " 3 BSP"},
        {30, 4, {"12 more displays", "f 172>Jib lead"}, "state"},
        {20, 3, {"bridge 10 ticks/s", "f>Jib lead      7.25", "12 more displays"}, "12:34"},
        {20, 2, {"f>Jib lead      7.25"}, "displays"},
        {5, 1, {"bridg"}, "f"},
        {1, 1, {"b"}, "f"},
        {500, 200, {"\u256D 12 ", kCourse}, "more"}};
    for (const auto& [columns, rows, shown, absent] : sizes) {
        SCOPED_TRACE(::testing::Message() << columns << "x" << rows);
        const std::string picture = Shown(WatchView(RowOrder::kId).Draw(look, {columns, rows}), {columns, rows});
        ExpectIn(picture, shown);
        EXPECT_EQ(std::string::npos, picture.find(absent)) << picture;
    }
}

TEST(Sparkline, ShowsTheLastMinute) {
    constexpr double kGap = 1e9;
    const auto fill = [](const std::u16string& bars) {
        return ToUtf8(std::u16string(Sparkline::kWidth - bars.size(), u' ') + bars);
    };
    using Looks = std::vector<std::pair<double, double>>;
    const std::tuple<const char*, Looks, bool, std::string> rows[] = {
        {"nothing", {}, false, fill(u"")},
        {"one value", {{0, 5}}, false, fill(u"\u2585")},
        {"from lowest to highest", {{0, -1}, {3, 0}, {6, 1}}, false, fill(u"\u2581\u2585\u2588")},
        {"the last of three seconds", {{0, 9}, {2.9, 0}, {3, 8}}, false, fill(u"\u2581\u2588")},
        {"hardly a change", {{0, 100}, {3, 100.1}}, false, fill(u"\u2584\u2585")},
        {"a gap", {{0, 0}, {3, kGap}, {6, 8}}, false, fill(u"\u2581 \u2588")},
        {"nobody looked", {{0, 0}, {9, 8}}, false, fill(u"\u2581\u2581\u2581\u2588")},
        {"through north", {{0, 350}, {3, 0}, {6, 10}}, true, fill(u"\u2581\u2585\u2588")},
        {"the same, not circular", {{0, 350}, {3, 0}, {6, 10}}, false, fill(u"\u2588\u2581\u2581")},
        {"a minute later", {{0, 0}, {57, 8}}, false, ToUtf8(std::u16string(19, u'\u2581') + u"\u2588")},
        {"after that", {{0, 0}, {60, 8}}, false, fill(u"\u2585")},
        {"the clock is set back", {{100, 0}, {50, 8}}, false, fill(u"\u2585")}};
    for (const auto& [what, looks, circular, text] : rows) {
        Sparkline course;
        for (const auto& [seconds, value] : looks) course.Add(999.0 + seconds, value == kGap ? std::nullopt : std::optional(value));
        EXPECT_EQ(text, course.Text(circular)) << what;
    }
}

TEST(BridgePulse, TellsTheTicksBetweenLooks) {
    const auto with = [](std::uint32_t ticks) {
        std::optional<BridgeStatus> bridge(std::in_place);
        bridge->ticks = ticks;
        return bridge;
    };
    const auto still = [&](std::uint32_t ticks) {
        auto bridge = with(ticks);
        bridge->sinceTickMs = 1001;
        return bridge;
    };
    // In their order: seconds, bridge, words
    const std::tuple<double, std::optional<BridgeStatus>, const char*> looks[] = {{0.0, std::nullopt, ""},
                                                                                  {1.0, with(50), "the bridge is running"},
                                                                                  {2.5, with(65), "the bridge is running"},
                                                                                  {4.0, with(80), "bridge 10 ticks/s"},
                                                                                  {4.5, with(86), "bridge 10 ticks/s"},
                                                                                  {5.5, still(86), "the bridge stands still"},
                                                                                  {8.0, with(101), "bridge 4 ticks/s"},
                                                                                  {8.5, with(2), "the bridge is running"},
                                                                                  {11.5, with(32), "bridge 10 ticks/s"},
                                                                                  {12.0, std::nullopt, ""}};
    BridgePulse pulse;
    for (const auto& [seconds, bridge, words] : looks) {
        pulse.Look(bridge, seconds);
        EXPECT_EQ(words, pulse.Words()) << seconds;
    }
}

}  // namespace
}  // namespace twr::testing
