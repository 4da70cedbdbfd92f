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
#include "streams/iso_time.h"
#include "streams/json_lines.h"

namespace twr::testing {
namespace {

constexpr double kSunday = 46320;  // 2026-10-25; daylight time ends in its second hour

// Half an hour off, with daylight time till Sunday, and every unit of the user's another than the record's.
struct RecordingsSaidTest : CtlTest {
    RecordingsSaidTest() {
        test.folder.Write("ProgramData/Tidewright/config/boats.xml",
                          R"(<boats><boat id="7" name="Fix &amp; &lt;Foxy&gt;" mmsi="230123450"/></boats>)");
        test.folder.Write(
            "ProgramData/Tidewright/config/channels.xml",
            R"(<channels><channel id="172" user="Jib, &quot;J1&quot;" type="12"/><channel id="173" user="Jib, &quot;J1&quot;" type="3"/></channels>)");
        for (const auto& [name, number] : std::map<std::u16string, std::uint32_t>{{u"Sys_i1", 2},
                                                                                  {u"Sys_i2", 2},
                                                                                  {u"Sys_i3", 3},
                                                                                  {u"Sys_i4", 2},
                                                                                  {u"Sys_i9", 3},
                                                                                  {u"Sys_b33", 1},
                                                                                  {u"Sys_b3", 0},
                                                                                  {u"Sys_b4", 1}})
            test.system->Core().registry.Write(u"Software\\Tidewright\\core", name, DwordValue(number));
        zone.state = ZoneState{-330, -60, true};
        zone.daylightUntil = static_cast<std::int64_t>(((kSunday - 25569) * 24 + 1) * 3600 * 1e7);
        console.goOn = [this] { return Step(); };
    }
    CoreServices Core() override {
        const CoreServices real = test.system->Core();
        return {clock, zone, real.memory, real.registry, disk ? *disk : real.files, real.xml, real.desktop};
    }
    // Time passes only while a command waits. A look comes a little late, so that no age limit falls onto one.
    bool Step() {
        clock.AdvanceMs(console.waited - seen_);
        clock.ticks += 70;
        seen_ = console.waited;
        while (!acts.empty() && acts.begin()->first <= Passed()) acts.extract(acts.begin()).mapped()();
        if (suite && !watched) suite->StampTime();
        if (suite && watched) {
            *watched += Watched();
            EXPECT_EQ(NameLook::kTaken, GetInstance().Look(kReplayName).state) << "nor is it hidden that it is a replay";
        }
        return Passed() < lasts;
    }
    double Passed() const { return (clock.Days() - began_) * 86400; }
    // What goes on during the next command, by seconds, and when its user ends it.
    void Then(double seconds, std::multimap<double, std::function<void()>> what) {
        began_ = clock.Days(), lasts = seconds, acts = std::move(what);
    }
    // "BSP@7=5.5, HDG=350" as lines; null for none.
    std::string Lines(double time, const std::string& what) const {
        std::string lines, name, value;
        for (std::istringstream parts(what); std::getline(parts >> std::ws, name, '=') && std::getline(parts, value, ',');) {
            const std::size_t at = std::min(name.find('@'), name.size());
            const auto channel = std::ranges::find(ChannelCatalogue(), FromUtf8(name.substr(0, at)), &ChannelInfo::name);
            EXPECT_NE(ChannelCatalogue().end(), channel) << name;
            lines += R"({"time":")" + IsoTime(time) + R"(","id":)" + std::to_string(channel->id);
            lines += (at < name.size() ? R"(,"boat":)" + name.substr(at + 1) : "") + R"(,"value":)" + value + "}\n";
        }
        return lines;
    }
    // Looks of a recorder at seconds of Sunday, each 30 ms late; "header" and "gap" are what they say.
    std::string Recording(const std::vector<std::pair<double, std::string>>& looks) const {
        std::string lines;
        for (const auto& [second, what] : looks) {
            const double now = kSunday + second / 86400;
            if (what == "header") {
                AppendHeader(lines, now);
            } else if (what == "gap") {
                AppendGap(lines, now, now + 0.5 / 86400);
            } else {
                AppendMark(lines, now + 0.03 / 86400);
                lines += Lines(now, what);
            }
        }
        return lines;
    }
    void Publish(const std::string& what, double secondsAgo = 0) {
        std::istringstream lines(Lines(clock.Days() - secondsAgo / 86400, what));
        for (std::string line; std::getline(lines, line);) {
            const Change change = ParseJsonLine(line).change.value();
            suite->SetChannel(change.channel, change.boat, change.value, change.time);
        }
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
    std::string Made(const char* name) const {
        const std::string bytes = std::regex_replace(test.folder.Read(name), std::regex(R"(\\u00b0)"), "\u00B0");
        return std::regex_replace(bytes, std::regex("(\"|Halyrig )" HALYRIG_VERSION "\""), "$1VERSION\"");
    }

    FakeClock clock;
    FakeZone zone;
    Files* disk = nullptr;  // in place of the machine's
    std::multimap<double, std::function<void()>> acts;
    double lasts = 1e99;
    std::string* watched = nullptr;

private:
    int seen_ = 0;  // milliseconds that were waited
    double began_ = 0;
    std::string found_;
};

TEST_F(RecordingsSaidTest, WhatIsRecorded) {
    Transcript told("recorded", *this);
    Then(36, {{2.5,
               [&] {
                   StartSuite();
                   Publish("BSP=6.25, HDG=350.5, MagVar=-3, Depth=10, AirTemp=20, TWA=-42.5, Mk Lat=50.5, DistToLn=0.05", 0.3);
                   Publish("Tm on S=0.25, GPS time=46345.5, User 0=7, HDG@1=90, BSP@7=5.5, MagVar@7=4, HDG@7=90, SOG@12=4.25");
               }},
              {4, [&] { Publish("BSP=6.25, Depth=9987.5029296875, AirTemp=null, SOG@12=4.5"); }},
              {9, [&] { Publish("HDG=10, BSP=6.5"); }},
              {21, [&] { Publish("BSP=7"); }},
              {22, [&] { Put(suite->View()->sysFlag[kFlagQuitRequest], std::uint8_t{1}); }},
              {23, [&] { suite.reset(); }},
              {30, [&] { StartSuite(), Publish("BSP=8"); }}});
    told.Type("record ~/sea.jsonl");
    Then(3, {{1, [&] { Publish("HDG@7=91, BSP@7=5.75, TWA@7=40, BSP=9"); }}, {2, [&] { Publish("BSP@7=6"); }}});
    told.Type("record ~/sea.jsonl --gzip --boat 7 --channels hdg,1");
    told.Tell("sea.jsonl", Made("sea.jsonl"));
    EXPECT_EQ("\x1F\x8B", test.folder.Read("sea-2.jsonl").substr(0, 2));
    told.Type("info ~/sea-2.jsonl");
    for (const char* typed : {"record ~/no/%d.jsonl", "record ~/%q.jsonl", "record ~/x --channels Jibe",
                              "record ~/x --channels Time", "record ~/x --keep 3", "record --keep 0", "record --keep 4x"})
        told.Type(typed);
    told.Tell("x: " + std::string(Core().files.Exists(test.folder.File("x")) ? "there" : "not made"));
}

TEST_F(RecordingsSaidTest, WhatIsReplayed) {
    Transcript told("replayed", *this);
    test.folder.Write("ProgramData/Tidewright/config/alternate.csv", "1,0,0,1,1,1,1,1,1,0\n");
    const std::string race = Recording({{3590, "header"},
                                        {3590, "BSP=6, AWA=30, HDG=350, Mk Lat=50.5, BSP@7=5, MastAng=7.5"},
                                        {3594, "BSP=6.5, HDG@7=80, Alt 1=3, HDG=null"},
                                        {3594.5, "AWA=-40, Mk Lat@7=51"},
                                        {3595.5, "AWA=null"},
                                        {3596.5, "AWA=-40"},
                                        {3600, "gap"},
                                        {3605, "BSP=7, HDG=10, BSP@7=null"},
                                        {3700, "BSP=8, AWA=20"},
                                        {3640, "BSP=9, AWA=null"},
                                        {3641.5, "BSP=9.5"}});
    test.folder.Write("race.jsonl", race);
    test.folder.Write("long.jsonl", race + std::string(200'000, '\n') + Recording({{3800, "BSP=10"}}));
    test.folder.Write("torn.jsonl", Recording({{0, "BSP=4"}, {2, "BSP=4.5"}}) + "{\"time\":\"");
    test.folder.Write("broken.jsonl", Recording({{0, "BSP=3"}, {1, "HDG=3"}}) + "{\"id\":\"\x1B[2J\"}\n");
    test.folder.Write("log.nmea",
                      "garbage\n$IIVHW,,T,,M,5.00,N,,K\n$GPRMC,120000,A,5000.00,N,00100.00,W,6.0,90.0,251126,10.0,E\n"
                      "$IIHDT,100.0,T\n$IIVHW,,T,,M,9.99,N*00\n$GPGSV,1\n"
                      "$IIMWV,28,R,12,N,A\n$GPRMC,120008,A,5000.00,N,00100.00,W,7.0,90.0,251126,10.0,E\n$IIVHW,,T,,M,5.50,N,,K\n");
    test.folder.Write("binary", std::string("\0\xFF$\n\x1B", 5));
    test.folder.Write("header", Recording({{0, "header"}}));
    std::string seen;
    watched = &seen;
    const auto play = [&](const char* typed, double seconds = 300,
                          const std::vector<std::pair<double, std::u32string>>& keys = {}) {
        std::multimap<double, std::function<void()>> led{{0, [&] { StartSuite(); }}};
        std::string pictures;
        for (const auto& [at, typedKeys] : keys) {
            led.emplace(at, [&, typedKeys = typedKeys] { console.keys += typedKeys; });
            led.emplace(at + 0.25, [&, at = at] { pictures += Printed("after %g s:\n", at) + console.pictures.back(); });
        }
        Then(seconds, led);
        suite.reset();
        EXPECT_FALSE(Held());
        seen.clear();
        told.Type(typed);
        told.Tell("BSP AWA HDG Mk Lat, of boat 7 BSP AWA HDG Mk Lat Alt 1:", seen + Watched());
        if (!keys.empty()) told.Tell("on the screen", std::regex_replace(pictures, std::regex("( *\n)+"), "\n"));
    };
    play("replay ~/race.jsonl");
    play("replay ~/race.jsonl --from 2026-10-25T07:29:54.2 --speed 4 --channels BSP,AWA");
    play("replay ~/race.jsonl --from +4s --speed 0.5", 12);
    play("replay ~/torn.jsonl --loop", 5);
    play("replay ~/broken.jsonl");
    play("replay ~/log.nmea");
    play("replay ~/log.nmea --from 12:00:04Z");
    for (const char* typed :
         {"replay ~/race.jsonl --from 2026-10-25T09:00", "replay ~/none", "replay ~/binary", "replay ~/header",
          "replay ~/race.jsonl --channels Jibe", "replay ~/race.jsonl --from noon", "replay ~/race.jsonl --speed 0"})
        told.Type(typed);
    console.size = ConsoleSize{90, 7};
    const std::u32string on{Key::kRight}, up{Key::kUp}, back{Key::kLeft}, down{Key::kDown};
    play("replay ~/long.jsonl", 30,
         {{0.5, U"x"}, {1, U"]]"}, {2, on}, {3, U" "}, {4, back}, {5, up}, {6, down}, {7, U"[[[ "}, {9, up}, {9.6, U"q"}});
    play("replay ~/long.jsonl", 3, {{1, U" "}});  // Ctrl-C, as it pauses
    play("replay ~/long.jsonl --from +2s", 8, {{1, back}});
    console.size.reset();
    told.Tell("The machine sleeps for a minute");
    Then(70, {{0, [&] { StartSuite(); }}, {2, [&] { clock.AdvanceMs(60'000), suite->StampTime(); }}});
    suite.reset(), seen.clear();
    told.Type("replay ~/long.jsonl");
    told.Tell("BSP and so on:", seen + Watched());
    told.Tell("The mast's angle is not subtracted; then the suite is asked to close");
    test.system->Core().registry.Write(u"Software\\Tidewright\\core", u"Sys_b33", DwordValue(0));
    play("replay ~/race.jsonl", 3);
    Then(300, {{2, [&] { Put(suite->View()->sysFlag[kFlagQuitRequest], std::uint8_t{1}); }}});
    StartSuite();
    told.Type("replay ~/race.jsonl");
    EXPECT_GT(3, Passed());
    EXPECT_FALSE(console.screenTaken);
}

TEST_F(RecordingsSaidTest, WhatIsLookedAtAndExported) {
    Transcript told("exported", *this);
    const std::string line = "Port lat=61.5, Port lon=20.25, Stbd lat=61.625, Stbd lon=20.75, ";
    test.folder.Write(
        "race-1",
        Recording(
            {{3597, "header"},
             {3597, "BSP=6.5, HDG=350, MagVar=-5.25, Depth=10, AirTemp=12, TWA=-170, AWA=90, Baro=1013.25, User 0=7.25, User 1=3"},
             {3597, line + "Mk Lat=61, Mk Lon=20.5, Lat=60.0845, Lon=23.5, SOG=6.4, COG=3, Tm on S=0.5, GPS time=46320.5"},
             {3597, "BSP@7=5.25, DistToLn=0.05, Log Bsp=1234.5, PolBsp%=97.5"},
             {3598.5, "BSP=6.75, HDG=10, TWA=150, AWA=-90, Lat=60.085, Lon=23.501, Lat@7=-60.1, Lon@7=180, HDG@7=0, MagVar@7=2"},
             {3599.7, "BSP=null, SOG@7=5, COG@7=359, Mk Lat=62, Mk Lon=20.75, Lat@12=-10, Lon@12=359, COG@12=355"},
             {3601, "BSP=7.125, Depth=null, HDG=15, Lat=60.086, Mk Lat@7=10, Mk Lon@7=10, Lon@7=179.75"},
             {3602, "gap"},
             {3602, "BSP=7.25, Mk Lat=61, Mk Lon=20.5"},
             {3601.25, "BSP=7.5, Lat=null"},
             {3602.5, "BSP=7.75, Trim=2"},
             {3600.25, "BSP=8, Lat=60.087, Lon=23.503"},
             {3601.5, "BSP=8.25"}}));
    test.folder.Write("race-2", Recording({{3603.25, "header"}, {3603.25, "BSP=9, Lat=60.088, Lon=23.505"}, {3604, "BSP=9.25"}}));
    test.folder.Write(
        "race-3", Recording({{3606.5, "header"}, {3606.5, "BSP=10, HDG=0"}, {3666.25, "BSP=11, User 1=1e-7"}, {3726.5, "BSP=12"}}) +
                      R"({"time":"2026)");
    // A look that came late: what was published ahead of a row is in it, the rest is not.
    std::string late = Recording({{3607, "BSP=2, HDG=1"}});
    AppendMark(late, kSunday + 3610.05 / 86400);
    test.folder.Write("late",
                      late + Lines(kSunday + 3609.96 / 86400, "BSP=3") + Lines(kSunday + 3610.02 / 86400, "HDG=null, TWA=4"));
    test.folder.Write("unvaried", Recording({{0, "Lat=60, Lon=23, COG=3, SOG=6.5"}, {2, "SOG=6.75"}}));
    std::string tenths = "\n$GPRMC,235959.9,A,5000.00,N,00100.00,W,6.0,90.0,241026,,\n";
    for (int i = 0; i < 30; ++i) tenths += Printed("$GPGLL,5000.00,N,00100.00,W,0000%02d.%d,A,A\n", i / 10, i % 10);
    test.folder.Write("tenths", tenths);
    test.folder.Write("broken", Recording({{0, "BSP=3"}}) + "{}\n" + Recording({{1, "BSP=4"}}));
    test.folder.Write("empty", "");
    test.folder.Write("header", Recording({{0, "header"}}));
    told.Play("Recordings of each kind");
    FakeFiles full;
    full.files = {{u"race", Recording({{0, "BSP=3"}, {20, "BSP=4"}})}};
    full.room = 100;
    disk = &full;
    told.Tell("# The disk is full");
    told.Type("export race -o new");
    full.room = 1 << 20;
    full.onFlush = [] { return false; };
    told.Type("export race -o other");
    console.goOn = [] { return false; };
    told.Type("export race");
    for (const char* typed : {"", "noon", "24:00", "+", "+2x", "12:30+0200", "2026-10-25X12:30", "2026-13-01"})
        EXPECT_FALSE(ParseTypedTime(typed)) << typed;
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
    // The data of a page, each turn, leg, column... on a line; values that come several times as 3x0.
    const auto report = [&](const std::string& typed, const std::string& name, const std::set<std::string>& without = {}) {
        told.Type("report " + typed + " -o ~/" + name);
        const std::string page = test.folder.Read(name), begin = "id=\"data\">";
        const std::size_t from = page.find(begin) + begin.size();
        auto data = nlohmann::ordered_json::parse(page.substr(from, page.find("</script>", from) - from));
        EXPECT_EQ(HALYRIG_VERSION, data["version"]);
        std::string text;
        for (auto& [member, value] : data.items()) {
            if (member == "version" || without.contains(member)) continue;
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
        told.Tell("its data", text);
    };
    const std::set<std::string> rest{"columns", "turns", "byMarks", "legs", "bands", "marks"};
    test.folder.Write("race", Recording(SailedLooks(", Port lat=50.0016, Port lon=-1.006, Stbd lat=50.001, Stbd lon=-1.003")));
    report("~/race", "race.html");
    report("~/race --boat 7 --from +1m45s --to +1m50s", "seven.html");
    test.folder.Write("beside", Recording(SailedLooks(", Port lat=50.0022, Port lon=-1.009, Stbd lat=50.0016, Stbd lon=-1.006")));
    report("~/beside --to +8m", "beside.html", rest);
    test.folder.Write("other", Recording(OtherLooks()));
    report("~/other", "other.html", {"columns"});
    report("~/other --from +4m --boat 0", "gunless.html", {"columns", "turns", "bands"});
    std::vector<std::pair<double, std::string>> day;  // of nine hours each other second is told, and each gap
    for (int s = 0; s < 32'400; s += 8) day.emplace_back(s + (s > 10'000) + (s > 20'000) * 20, s % 12'000 == 0 ? "gap" : "BSP=6");
    test.folder.Write("day", Recording(day));
    report("~/day", "day.html", {"columns"});
    test.folder.Write("broken", Recording({{3950, "BSP=6"}, {3951, "BSP=7, Lat=91"}}) + "{}\n");
    report("~/broken ~/race --from +9m", "broken.html", rest);
    test.folder.Write("back", Recording({{4000, "BSP=6"}, {4001, "BSP=7"}, {4002, "TWA=1"}, {3996, "BSP=6"}, {4003, "BSP=5"}}));
    report("~/back", "back.html", rest);
    test.folder.Write("dateless", "$IIVHW,,T,,M,4,N,,K\n$GPGLL,6005.071,N,02332.346,E,095559,A,D\n$IIVHW,,T,,M,5,N,,K\n");
    report("~/dateless", "dateless.html", rest);
    for (const char* typed :
         {"~/race -o ~/race.html", "~/race -o ~/x --boat 9", "~/race -o ~/x --from noon", "~/none -o ~/x", "~/race"})
        told.Type(std::string("report ") + typed);
}

}  // namespace
}  // namespace twr::testing
