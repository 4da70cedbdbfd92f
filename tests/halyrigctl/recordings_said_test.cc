// SPDX-License-Identifier: MIT
// All that is said of recordings and made of them, in scenes in which each figure differs from the next.
#include <cmath>
#include <nlohmann/json.hpp>
#include <set>

#include "base/angles.h"
#include "base/numbers.h"
#include "base/version.h"
#include "core/units.h"
#include "halyrigctl/recordings/board_time.h"
#include "halyrigctl/transcript.h"
#include "streams/json_lines.h"

namespace twr::testing {
namespace {

constexpr double kSunday = 46320;  // 2026-10-25; daylight time ends in its second hour

// Half an hour off, with daylight time till Sunday, and every unit of the user's another than the record's.
struct RecordingsSaidTest : SceneTest {
    RecordingsSaidTest() {
        test.folder.Write("ProgramData/Tidewright/config/boats.xml",
                          R"(<boats><boat id="7" name="Fix &amp; &lt;Foxy&gt;" mmsi="230123450"/></boats>)");
        test.folder.Write(
            "ProgramData/Tidewright/config/channels.xml",
            R"(<channels><channel id="172" user="Jib, &quot;J1&quot;" type="12"/><channel id="173" user="Jib, &quot;J1&quot;" type="3"/></channels>)");
        for (const char* setting :
             {"Sys_i1=2", "Sys_i2=2", "Sys_i3=3", "Sys_i4=2", "Sys_i9=3", "Sys_b33=1", "Sys_b3=0", "Sys_b4=1"})
            Happens(std::string("saved: ") + setting);
        zone.state = ZoneState{-330, -60, true};
        zone.daylightUntil = static_cast<std::int64_t>(((kSunday - 25569) * 24 + 1) * 3600 * 1e7);
        console.goOn = [this] { return Step(); };
        late = 70;  // so that no age limit falls onto one
    }
    bool Step() override {
        const bool goesOn = SceneTest::Step();
        if (suite && !watched) suite->StampTime();
        if (suite && watched) {
            *watched += Watched();
            EXPECT_EQ(NameLook::kTaken, GetInstance().Look(kReplayName).state) << "nor is it hidden that it is a replay";
        }
        return goesOn;
    }
    // "* FILE" is a recording, with its looks below.
    void Stage(Transcript& told) {
        told.ways['*'] = [&](const std::string& file, const std::string& looks) {
            std::vector<std::pair<double, std::string>> all;
            for (const std::string& look : LinesOf(looks)) all.emplace_back(std::stod(look), look.substr(look.find(' ') + 1));
            test.folder.Write(file, Recording(all));
            return looks;
        };
    }
    // Looks of a recorder at seconds of Sunday, each 30 ms late; "header", "mark" and "gap" are what they say, and what is a line
    // is it, torn if it has no end.
    std::string Recording(const std::vector<std::pair<double, std::string>>& looks) const {
        std::string lines;
        for (const auto& [second, what] : looks) {
            const double now = kSunday + second / 86400;
            if (what == "header") {
                AppendHeader(lines, now);
            } else if (what == "mark") {
                AppendMark(lines, now);
            } else if (what == "gap") {
                AppendGap(lines, now, now + 0.5 / 86400);
            } else if (what.starts_with('{')) {
                lines += what.ends_with('}') ? what + "\n" : what;
            } else {
                AppendMark(lines, now + 0.03 / 86400);
                lines += Lines(now, what);
            }
        }
        return lines;
    }
    // What others find in the record, if it isn't what they found before.
    std::string Watched() {
        std::string now;
        for (const BoatSlot boat : {0u, 7u}) {
            for (const ChannelId channel : {kBsp, kAwa, kHdg, kMkLat, kAlt1}) {
                double value = 0;
                const bool is = suite->GetChannel(channel, value, boat, false, true, false) && value != kNoValue;
                now += boat == 0 && channel == kAlt1 ? "" : is ? Printed(" %g", value) : " -";
            }
        }
        EXPECT_NEAR(clock.Days(), Load(suite->View()->fullBlocks[0].time[kTime]), 0.5 / 86400) << "they see it live";
        return now == found_ ? "" : Printed("%7.2f s", Passed()) + (found_ = now) + "\n";
    }
    // A file that a command has made, whatever version made it, and without what Windows' paths could be taken for.
    std::string Made(const std::string& name) const {
        const std::string bytes = std::regex_replace(test.folder.Read(name), std::regex(R"(\\u00b0)"), "\u00B0");
        return std::regex_replace(bytes, std::regex("(\"|Halyrig )" HALYRIG_VERSION "\""), "$1VERSION\"");
    }

    std::string* watched = nullptr;

private:
    std::string found_;
};

TEST_F(RecordingsSaidTest, WhatIsRecorded) {
    Transcript told("recorded", *this);
    Stage(told);
    told.ways['<'] = [&](const std::string& file, const std::string&) { return Made(file); };
    happenings["daylight time ends"] = [&] { zone.state->daylight = false; };
    told.Play("A recorder outlives two suites");
    EXPECT_EQ("\x1F\x8B", test.folder.Read("sea-2.jsonl").substr(0, 2));
    told.Play("What can't be recorded");
    EXPECT_FALSE(Core().files.Exists(test.folder.File("x")));
}

TEST_F(RecordingsSaidTest, WhatIsReplayed) {
    Transcript told("replayed", *this);
    test.folder.Write("ProgramData/Tidewright/config/alternate.csv", "1,0,0,1,1,1,1,1,1,0\n");
    Stage(told);
    told.Play("Recordings of each kind");
    test.folder.Write("long.jsonl", test.folder.Read("race.jsonl") + std::string(200'000, '\n') + Recording({{3800, "BSP=10"}}));
    test.folder.Write("broken.jsonl", Recording({{0, "BSP=3"}, {1, "HDG=3"}}) + "{\"id\":\"\x1B[2J\"}\n");
    test.folder.Write("binary", std::string("\0\xFF$\n\x1B", 5));
    std::string seen, pictures;
    watched = &seen;
    told.ways['$'] = [&, run = told.ways['$']](const std::string& command, const std::string&) {
        suite.reset();
        EXPECT_FALSE(Held());
        seen.clear(), pictures.clear();
        acts.emplace(0, "the suite starts");
        std::string said = run(command, "");
        if (suite) said += "BSP AWA HDG Mk Lat, of boat 7 BSP AWA HDG Mk Lat Alt 1:\n" + seen + Watched();
        return said + std::regex_replace(pictures, std::regex("( *\n)+"), "\n");
    };
    happenings["the screen is looked at"] = [&] {
        pictures += Printed("on the screen, after %.1f s:\n", Passed()) + console.pictures.back();
    };
    happenings["the machine sleeps for a minute"] = [&] { clock.AdvanceMs(60'000), suite->StampTime(); };
    const std::pair<const char*, std::u32string> keys[] = {{"x", U"x"},
                                                           {"]]", U"]]"},
                                                           {"[[[ Space", U"[[[ "},
                                                           {"Space", U" "},
                                                           {"q", U"q"},
                                                           {"Right", {Key::kRight}},
                                                           {"Left", {Key::kLeft}},
                                                           {"Up", {Key::kUp}},
                                                           {"Down", {Key::kDown}}};
    for (const auto& [name, typed] : keys) {
        happenings[std::string("keys: ") + name] = [&, typed = typed] {
            console.keys += typed;
            acts.emplace(Passed() + 0.25, "the screen is looked at");
        };
    }
    told.Play("They are replayed");
    console.size = ConsoleSize{90, 7};
    told.Play("On a screen");
    console.size.reset();
    told.Play("The machine sleeps, the mast's angle is not subtracted, and the suite is asked to close");
    EXPECT_FALSE(console.screenTaken);
}

TEST_F(RecordingsSaidTest, WhatIsLookedAtAndExported) {
    Transcript told("exported", *this);
    Stage(told);
    std::string tenths = "\n$GPRMC,235959.9,A,5000.00,N,00100.00,W,6.0,90.0,241026,,\n";
    for (int i = 0; i < 30; ++i) tenths += Printed("$GPGLL,5000.00,N,00100.00,W,0000%02d.%d,A,A\n", i / 10, i % 10);
    test.folder.Write("tenths", tenths);
    told.Play("Recordings of each kind");
    zone.state = ZoneState{300, 300, false};
    told.Play("West of Greenwich");
    FakeFiles full;
    full.files = {{u"race", Recording({{0, "BSP=3"}, {20, "BSP=4"}})}};
    full.room = 100;
    files = &full;
    told.Play("The disk is full");
    full.room = 1 << 20;
    full.onFlush = [] { return false; };
    told.Play("It fails at the end");
    console.goOn = [] { return false; };
    told.Play("The user does not wait");
    EXPECT_FALSE(ParseTypedTime(""));
    const std::pair<const char*, double> durations[] = {{"1h30m", 5400}, {"100ms", 0.1}, {"0.5", 0.5}, {"2min", 120}};
    for (const auto& [typed, seconds] : durations) EXPECT_EQ(seconds, ParseDuration(typed)) << typed;
}

// A start, a beat with a tack to a mark, a run with a gybe and a gap, second by second.
std::vector<std::pair<double, std::string>> SailedLooks(const char* line) {
    constexpr double kWind = 20, kVariation = -5.25;
    std::vector<std::pair<double, std::string>> looks;
    double latitude = 50, longitude = -1;
    for (int s = 0; s < 560; ++s) {
        const double twa = s < 120   ? 90
                           : s < 320 ? 42 - 14 * std::clamp(s - 219, 0, 6)
                                     : WrappedAngle(-150 - 15 * std::clamp(s - 429, 0, 4));
        const double bsp = s < 120 ? 5 : s >= 220 && s < 250 ? 4 : s < 320 ? 6 + s / 30 % 2 * 0.25 : 7 + s / 20 % 3 * 0.25;
        const double tws = s < 320 ? 10.5 : 13, course = WrappedBearing(kWind - twa);
        std::string what =
            Printed("BSP=%g, TWA=%g, HDG=%g, SOG=%g, TWS=%g, TWD=%g, AWA=%g", bsp, twa, course, bsp + 0.5, tws, kWind, twa * 0.75);
        what += Printed(", Lat=%.7f, Lon=%.7f, Heel=%g, MagVar=%g", latitude, longitude, twa / 3, kVariation);
        if (s >= 20 && s < 120) what += Printed(", TmToGun=%.9g", (120 - s) / 86400.0);
        if (s == 120 || s >= 150)
            what += s < 320 ? Printed(", Targ Bsp=6.5, Targ Twa=%g", twa > 0 ? 40.0 : -40.0)
                            : std::string(", Targ Bsp=7.5, Targ Twa=-148");
        what += s < 70 ? ", Mk Lat=49.75, Mk Lon=-1.5" : s < 323 ? ", Mk Lat=50.0025, Mk Lon=-1.002" : ", Mk Lat=49.5, Mk Lon=-1";
        if (s == 0) what += line + std::string(", Depth=10");
        if (s >= 100 && s < 140) what += Printed(", BSP@7=%g, TWD@7=355, Lat@7=50.01, Lon@7=-1.01", s < 110 ? 4.5 : 5.5);
        if (s == 490) looks.emplace_back(3400 + s, "gap");
        if (s < 490 || s >= 500) looks.emplace_back(3400 + s, what);
        const Vector way = Towards(course + kVariation, (bsp + 0.5) / 3600 / 60);
        latitude += way.north, longitude += way.east / CosDegrees(latitude);
    }
    return looks;
}

// What that race has not: a count that is broken off, a line and marks of which only the distance is known, a mark that is chosen
// late, turns that are none or come too close, an engine, and drifting.
std::vector<std::pair<double, std::string>> OtherLooks() {
    struct Stretch {
        int seconds;
        double twa, awa, bsp, tws;
        int gun = 0;  // the second to which is counted down
    };
    constexpr Stretch kStretches[] = {{30, 60, 40, 5, 12, 60}, {40, 60, 40, 5, 12},      {90, -60, -40, 5, 12, 160},
                                      {100, 42, 28, 6, 12},    {6, 5, 4, 5, 12},         {60, 42, 28, 6, 12},
                                      {90, -44, -30, 6.5, 12}, {45, 42, 28, 6, 12},      {149, -42, -28, 6.25, 12},
                                      {150, 150, 90, 7, 9},    {160, -155, -95, 7.5, 9}, {60, -100, -11, 6, 9},
                                      {30, 100, 11, 6, 9},     {30, 60, 30, 6, 1.5},     {30, -60, -30, 6, 1.5},
                                      {60, -60, -40, 0.5, 2},  {90, 100, 60, 5, 8}};
    const auto range = [](int s) {  // in miles: each mark is passed at a twentieth, and the next one known later
        return s < 700 ? 0.05 + std::abs(610 - s) * 0.0016 : s < 1100 ? 0.04 + std::abs(760 - s) * 0.02 : 3 - (s - 1100) * 0.001;
    };
    std::vector<std::pair<double, std::string>> looks;
    int s = 0;
    for (const auto& [seconds, twa, awa, bsp, tws, gun] : kStretches) {
        for (const int end = s + seconds; s < end; ++s) {
            std::string what =
                Printed("BSP=%g, TWA=%g, HDG=%g, TWS=%g, AWA=%g, MkRng=%g", bsp, twa, WrappedBearing(5 - twa), tws, awa, range(s));
            if (gun > s) what += Printed(", TmToGun=%.9g", (gun - s) / 86400.0);
            if (s >= 150 && s < 260) what += Printed(", DistToLn=%g", (200 - s) * 0.0005);
            if (s % 3 == 0) what += s < 700 ? ", Targ Twa=40, Targ Bsp=6.25" : ", Targ Twa=152, Targ Bsp=7.25";
            looks.emplace_back(7200 + s, what);
        }
    }
    return looks;
}

TEST_F(RecordingsSaidTest, WhatIsReported) {
    Transcript told("reported", *this);
    Stage(told);
    std::set<std::string> without{"version"};
    // Behind what is said: the data of the page, each turn, leg, column... on a line; values that come several times as 3x0.
    told.ways['$'] = [&, run = told.ways['$']](const std::string& command, const std::string&) {
        const std::string name = command.substr(command.find("~/", command.find("-o ") + 1) + 2), before = test.folder.Read(name);
        std::string text = run(command, "");
        const std::string page = test.folder.Read(name), begin = "id=\"data\">";
        if (page == before) return text;
        const std::size_t from = page.find(begin) + begin.size();
        auto data = nlohmann::ordered_json::parse(page.substr(from, page.find("</script>", from) - from));
        EXPECT_EQ(HALYRIG_VERSION, data["version"]);
        for (auto& [member, value] : data.items()) {
            if (without.contains(member)) continue;
            const bool rows = value.is_array() && !value.empty() && value[0].is_object();
            if (!rows) text += member + " " + value.dump() + (member == "segments" || member == "marks" ? "\n" : ", ");
            for (std::size_t row = 0; rows && row < value.size(); ++row) {
                std::string values;
                const auto all = value[row].contains("values") ? value[row]["values"] : nlohmann::ordered_json();
                for (std::size_t i = 0, next = 0; i < all.size(); i = next) {
                    while (next < all.size() && all[next] == all[i]) ++next;
                    values += " " + (next - i > 1 ? std::to_string(next - i) + "x" : "") + all[i].dump();
                }
                value[row].erase("values");
                text += member + " " + value[row].dump() + values + "\n";
            }
        }
        return text;
    };
    test.folder.Write("race", Recording(SailedLooks(", Port lat=50.0016, Port lon=-1.006, Stbd lat=50.001, Stbd lon=-1.003")));
    told.Play("A race, and a part of it");
    without.insert("columns");
    test.folder.Write("beside", Recording(SailedLooks(", Port lat=50.0022, Port lon=-1.009, Stbd lat=50.0016, Stbd lon=-1.006")));
    test.folder.Write("other", Recording(OtherLooks()));
    std::vector<std::pair<double, std::string>> day;  // of nine hours each other second is told, and each gap
    for (int s = 0; s < 32'400; s += 8) day.emplace_back(s + (s > 10'000) + (s > 20'000) * 20, s % 12'000 == 0 ? "gap" : "BSP=6");
    test.folder.Write("day", Recording(day));
    told.Play("Other recordings");
}

}  // namespace
}  // namespace twr::testing
