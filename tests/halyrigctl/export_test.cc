// SPDX-License-Identifier: MIT
#include <charconv>
#include <map>

#include "base/numbers.h"
#include "ctl_fixture.h"
#include "halyrigctl/recordings/board_time.h"
#include "streams/iso_time.h"
#include "streams/json_lines.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

constexpr std::int64_t kSecond = 1000, kMinute = 60 * kSecond, kHour = 60 * kMinute, kDay = 24 * kHour;
constexpr std::int64_t kMidnight = 46320 * kDay;  // 2026-10-25 00:00 UTC, the day on which daylight time ends at 01:00 UTC

double Days(std::int64_t ms) { return static_cast<double>(ms) / static_cast<double>(kDay); }

std::string TimeText(std::int64_t ms) {
    std::string text;
    AppendIsoTime(text, Days(ms));
    return text;
}

// A race of which every value is a function of the time at which it was published.
double ValueAt(ChannelId channel, BoatSlot boat, std::int64_t ms) {
    return static_cast<double>((ms + 37 * channel + 91 * boat) / 100 % 1800) / 8;
}

struct Course {
    ChannelId channel;
    BoatSlot boat;
    std::int64_t every, at;  // published every so many ms, so many after a whole one

    // It ends for a third of each minute.
    bool IsOff(std::int64_t ms) const { return channel == kDepth && ms % kMinute >= 19500 && ms % kMinute < 40 * kSecond; }
    std::int64_t LastBefore(std::int64_t ms) const { return (ms - at) / every * every + at; }
};
constexpr Course kCourses[] = {{kBsp, 0, 100, 0},       {kDepth, 0, kSecond, 0},      {kHdg, 0, kSecond, 300},
                               {kSog, 7, kSecond, 900}, {kRot, 0, 15 * kSecond, 400}, {kAirTemp, 0, 30 * kSecond, 0}};

// What a recorder keeps that looks each tenth of a second, 30 ms late.
std::string Race(std::int64_t from, std::int64_t to, bool header) {
    std::string lines;
    if (header) AppendHeader(lines, Days(from));
    for (std::int64_t ms = from; ms <= to; ms += 100) {
        AppendMark(lines, Days(ms + 30));
        for (const Course& course : kCourses) {
            const bool ends = course.IsOff(ms) && !course.IsOff(ms - 100);
            if (!ends && (course.IsOff(ms) || (ms - course.at) % course.every != 0)) continue;
            lines += R"({"time":")" + TimeText(ends ? ms + 30 : ms) +
                     Printed(R"(","id":%u,"boat":%u,"value":)", course.channel, course.boat) +
                     (ends ? "null}\n" : Printed("%.3f}\n", ValueAt(course.channel, course.boat, ms)));
        }
    }
    return lines;
}

struct ExportTest : CtlTest {
    ExportTest() {
        test.folder.Write("ProgramData/any", "");
        console.goOn = [] { return true; };
        zone.state = ZoneState{-60, -60, true};
        zone.daylightUntil = static_cast<std::int64_t>((kMidnight + kHour) - 25569 * kDay) * 10000;
    }
    CoreServices Core() override {
        CoreServices real = test.system->Core();
        return {real.clock, zone, real.memory, real.registry, disk ? *disk : real.files, real.xml, real.desktop};
    }
    std::string File(const char* name) { return ToUtf8(test.folder.File(name)); }
    std::vector<std::vector<std::string>> Table(const std::string& command, char separator = ',', int status = 0) {
        std::vector<std::vector<std::string>> table;
        for (std::string line : LinesOf(Said(command, status))) {
            if (!line.ends_with('\r')) continue;  // a complaint
            line.back() = separator;
            table.emplace_back();
            for (std::size_t at = 0; at < line.size(); at = line.find(separator, at) + 1)
                table.back().push_back(line.substr(at, line.find(separator, at) - at));
        }
        return table;
    }

    FakeZone zone;
    Files* disk = nullptr;  // in place of the machine's
};

// Each second that was recorded, of each boat, in the order of the recording: over midnight, over a gap, over a clock set back.
TEST_F(ExportTest, EachCellIsWhatHeldThen) {
    const std::tuple<std::int64_t, std::int64_t, bool> parts[] = {{kMidnight - kMinute, kMidnight + 90 * kSecond, true},
                                                                  {kMidnight + 58 * kMinute, kMidnight + 62 * kMinute, true},
                                                                  {kMidnight + 2 * kMinute, kMidnight + 3 * kMinute, false}};
    std::string first, second;
    std::vector<std::vector<std::string>> expected{{"time", "boat", "BSP", "HDG", "AirTemp", "Depth", "ROT", "SOG"}};
    for (const auto& [from, to, header] : parts) {
        (from < kMidnight ? first : second) += Race(from, to, header);
        for (std::int64_t ms = from + kSecond; ms <= to; ms += kSecond) {
            std::map<BoatSlot, std::map<ChannelId, std::string>> cells;
            for (const Course& course : kCourses) {
                const std::int64_t stamp = course.LastBefore(ms), limit = course.channel == kAirTemp ? kMinute : 10 * kSecond;
                const bool fresh = stamp >= from && ms - stamp <= limit && !course.IsOff(ms);
                if (fresh) cells[course.boat][course.channel] = Printed("%.3f", ValueAt(course.channel, course.boat, stamp));
            }
            for (auto& [boat, row] : cells) {
                expected.push_back({TimeText(ms), std::to_string(boat)});
                for (const ChannelId channel : {kBsp, kHdg, kAirTemp, kDepth, kRot, kSog}) expected.back().push_back(row[channel]);
            }
        }
    }
    test.folder.Write("joined.jsonl", first + second);
    test.folder.Write("one.jsonl", first);
    test.folder.Write("two.jsonl", second);
    for (const std::string& files : {File("joined.jsonl"), File("two.jsonl") + " " + File("one.jsonl")}) {
        auto table = Table("export " + files + " --units internal");
        ASSERT_LT(800u, table.size());
        for (std::size_t i = 1; i < table.size(); ++i) {
            for (std::size_t j = 2; j < table[i].size(); ++j)
                if (!table[i][j].empty()) table[i][j] = Printed("%.3f", std::strtod(table[i][j].c_str(), nullptr));
        }
        EXPECT_EQ(expected, table);
    }
    const auto onBoard = Table("export " + File("joined.jsonl") + " --zone board --every 10s --boat 0 --channels BSP");
    std::vector<std::string> times;
    for (const auto& row : onBoard) times.push_back(row[0]);
    const auto at = [&](const char* text) { return std::ranges::find(times, text); };
    ASSERT_NE(times.end(), at("2026-10-25T02:59:50+02:00"));
    EXPECT_EQ("2026-10-25T02:00:00+01:00", *(at("2026-10-25T02:59:50+02:00") + 1)) << "daylight time has ended";
    ExpectIn(Said("info " + File("joined.jsonl")),
             {"a recording", "from   2026-10-25T01:59:00.03+02:00 (2026-10-24T23:59:00.03Z)", "gaps   2\n", "0:56:30\n",
              "the clock was set back", "lasts  0:07:30, without"});
    std::string lost = Race(kMidnight, kMidnight + kSecond, true);
    AppendGap(lost, Days(kMidnight + kSecond), Days(kMidnight + 2 * kSecond));
    test.folder.Write("lost", lost + Race(kMidnight + 2 * kSecond, kMidnight + 3 * kSecond, false));
    ExpectIn(Said("info " + File("lost")), {"gaps   1\n"});  // however short
}

TEST_F(ExportTest, TakesTimesAsTheyAreTyped) {
    test.folder.Write("race", Race(kMidnight + 58 * kMinute, kMidnight + 62 * kMinute, true));
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"--from +1m --to +61s", "00:59:01Z", "00:59:01Z"},
        {"--from 02:59:30 --to 00:59:31Z", "00:59:30Z", "00:59:31Z"},
        {"--from 2026-10-25T02:59:30+02:00 --to 2026-10-25T02:00:10+01:00", "00:59:30Z", "01:00:10Z"},
        {"--from 2026-10-25T01:01:00Z --to 01:02Z", "01:01:00Z", "01:02:00Z"},
        {"--from 2026-10-24T19:59:30-05:00 --to 2026-10-24T20:00:10-05:00", "00:59:30Z", "01:00:10Z"},
        {"--from 2026-10-25T00:59:00Z --to 00:58:30Z", "00:59:00Z", "01:02:00Z"},  // that of the next day
        {"--to 2026-10-25T02:58:01", "00:58:01Z", "00:58:01Z"}};
    for (const auto& [options, first, last] : rows) {
        const auto table = Table("export " + File("race") + " " + options + " --boat 0");
        ASSERT_LT(1u, table.size()) << options;
        EXPECT_EQ(std::string("2026-10-25T") + first, table[1][0]) << options;
        EXPECT_EQ(std::string("2026-10-25T") + last, table.back()[0]) << options;
    }
    const auto early = Table("export " + File("race") + " --every 100ms --to 2026-10-25T00:58:00.5Z");
    EXPECT_EQ((std::vector<std::string>{"time", "BSP", "HDG", "AirTemp", "Depth", "ROT"}), early.at(0)) << "no boat 7 yet";
    Said("report " + File("race") + " -o " + File("page"));
    ExpectIn(test.folder.Read("page"), {R"("zone":[[1792889881,120],[1792890001,60]])"});
    for (const char* typed : {"", "noon", "24:00", "+", "+2x", "12:30+0200", "2026-10-25X12:30", "2026-13-01"})
        EXPECT_FALSE(ParseTypedTime(typed)) << typed;
    const std::pair<const char*, double> durations[] = {{"1h30m", 5400}, {"100ms", 0.1}, {"0.5", 0.5}, {"2min", 120}};
    for (const auto& [typed, seconds] : durations) EXPECT_EQ(seconds, ParseDuration(typed)) << typed;
}

TEST_F(ExportTest, HasTheUnitsAndTheFormThatAreAskedFor) {
    std::string lines;
    AppendHeader(lines, Days(kMidnight));
    AppendMark(lines, Days(kMidnight));
    for (const auto& [id, value] : std::map<int, const char*>{{1, "6.5"},
                                                              {13, "350"},
                                                              {17, "10"},
                                                              {93, "12"},
                                                              {34, "0.5"},
                                                              {146, "46320.5"},
                                                              {48, "60.0845"},
                                                              {49, "23.5391"},
                                                              {173, "1e-7"},
                                                              {161, "61"},
                                                              {162, "20.5"}})
        lines += R"({"time":")" + TimeText(kMidnight) + Printed(R"(","id":%d,"value":%s})", id, value) + "\n";
    test.folder.Write("race", lines);
    test.folder.Write("ProgramData/Tidewright/config/channels.xml",
                      "<channels><channel id='173' user='Jib, &quot;J1&quot;'/></channels>");
    const std::pair<const char*, const char*> rows[] = {
        {"--channels BSP,HDG,Depth,34,146 --units si --header units",
         "time,BSP (m/s),HDG (rad),Depth (m),Tm on S (s),GPS time\r\n"
         "2026-10-25T00:00:00Z,3.343888889,6.108652382,10,43200,2026-10-25T12:00:00Z\r\n"},
        {"--channels BSP,146,161 --units internal --header units",
         "time,BSP (kn),GPS time (days),Mk Lat (deg)\r\n2026-10-25T00:00:00Z,6.5,46320.5,61\r\n"},
        {"--channels BSP,HDG --decimal comma", "time;BSP;HDG\r\n2026-10-25T00:00:00Z;6,5;350\r\n"},
        {"--channels 173,1,1 --units internal", "time,\"Jib, \"\"J1\"\"\",BSP\r\n2026-10-25T00:00:00Z,1e-07,6.5\r\n"},
        {"--channels BSP,TWS,173 --format jsonl",
         "{\"time\":\"2026-10-25T00:00:00Z\",\"BSP\":6.5,\"TWS\":null,\"Jib, \\\"J1\\\"\":1e-07}\n"},
        {"--format gpx",
         "<wpt lat=\"61.00000000\" lon=\"20.50000000\"><name>Mark 1</name></wpt>\n<trk><name>Boat 0</name>\n<trkseg>\n"
         "<trkpt lat=\"60.08450000\" lon=\"23.53910000\"><time>2026-10-25T00:00:00Z</time></trkpt>\n</trkseg>\n</trk>\n</gpx>\n"}};
    for (const auto& [options, expected] : rows) {
        const std::string said = Said("export " + File("race") + " " + options);
        EXPECT_TRUE(said.ends_with(expected) && (said.size() == std::string(expected).size() || said.starts_with("<?xml")))
            << options << "\n"
            << said;
    }
    for (const char* theirs : {R"(161,"boat":1,"value":10)", R"(162,"boat":1,"value":11)"})
        lines += R"({"time":")" + TimeText(kMidnight) + R"(","id":)" + theirs + "}\n";
    test.folder.Write("two", lines);
    ExpectIn(Said("export " + File("two") + " --format gpx"), {"<wpt lat=\"61.00000000\""});  // not another boat's mark
    std::string next;
    AppendHeader(next, Days(kMidnight));
    for (const std::int64_t ms : {kSecond, 2 * kSecond}) {
        AppendMark(next, Days(kMidnight + ms));
        next += R"({"time":")" + TimeText(kMidnight + ms) + Printed(R"(","id":1,"value":%d})", static_cast<int>(ms)) + "\n";
    }
    test.folder.Write("next", next);
    EXPECT_TRUE(
        Said("export " + File("race") + " " + File("next") + " --units internal --channels 161,1").ends_with("02Z,,2000\r\n"))
        << "what a file does not begin with has ended\n"
        << console.written;
}

TEST_F(ExportTest, TakesLogsWithTheirOwnTimes) {
    test.folder.Write(
        "log.nmea",
        "$IIHDM,90.0,M\nbroken\n$GPRMC,235959,A,5000.00,N,00100.00,W,6.0,90.0,241026,,\n$IIVHW,,T,,M,5.81,N,,K\n$GPGSV,1\n"
        "$GPZDA,000000,,,,00,00\n$IIVHW,,T,,M,5.9,N,,K\n$GPRMC,020000,A,5001.00,N,00100.00,W,6.1,90.0,251026,,\n");
    EXPECT_EQ(
        "time,BSP,HDG,Lat,Lon,SOG\r\n2026-10-24T23:59:59Z,5.81,90,50,-1,6\r\n2026-10-25T00:00:00Z,5.9,90,50,-1,6\r\n"
        "2026-10-25T02:00:00Z,,,50.016666666666666,-1,6.1\r\n",
        Said("export " + File("log.nmea") + " --units internal"));
    ExpectIn(Said("info " + File("log.nmea")),
             {"8 lines, of which 1 (12.5 %) are broken", "used: HDM 1, RMC 2, VHW 2, ZDA 1", "GSV 1", "gaps   1"});
    test.folder.Write("dateless", "$IIVHW,,T,,M,4,N,,K\n$GPGLL,6005.071,N,02332.346,E,095559,A,D\n$IIVHW,,T,,M,5,N,,K\n");
    EXPECT_EQ("time,BSP\r\n09:55:59Z,5\r\n", Said("export " + File("dateless") + " --channels BSP"));
    EXPECT_EQ(std::string::npos, Said("export " + File("dateless") + " --format gpx").find("<time>"));
    std::string tenths = "$GPRMC,235959.9,A,5000.00,N,00100.00,W,6.0,90.0,241026,,\n";
    for (int i = 0; i < 30; ++i) tenths += Printed("$GPGLL,5000.00,N,00100.00,W,0000%02d.%d,A,A\n", i / 10, i % 10);
    test.folder.Write("tenths", tenths);
    ExpectIn(Said("info " + File("tenths")), {"gaps   none\n", "(2026-10-25T00:00:02.9Z)"});
    ExpectSaid(1, {{("export " + File("dateless") + " " + File("log.nmea")).c_str(), {"dateless tells no date"}}});
}

// A clear word, nothing overwritten, and all that can be read.
TEST_F(ExportTest, SaysWhatIsWrongAndKeepsTheRest) {
    const std::string race = Race(kMidnight, kMidnight + 3 * kSecond, true);
    test.folder.Write("race", race);
    test.folder.Write("broken", race + "{}\n" + race);
    test.folder.Write("torn", race + R"({"time":"2026)");
    test.folder.Write("empty", "");
    test.folder.Write("header", "{\"format\":\"halyrig-record\",\"version\":1}\n");
    test.folder.Write("mine", "mine");
    const std::string file = File("race");
    EXPECT_EQ(7u, Table("export " + File("broken"), ',', 1).size());
    ExpectIn(console.written, {"broken line ", "\"time\" must be", "what comes before is exported"});
    const std::tuple<int, std::string, const char*> rows[] = {
        {1, "export " + file + " -o " + File("mine"), "mine is there already, and is not overwritten"},
        {1, "export " + file + " -o " + File("no/where"), "can't be made"},
        {1, "export " + File("empty"), "empty line 1: it is neither"},
        {1, "export " + File("none"), "can't be read"},
        {1, "export " + file + " --boat 9", "no value of what you want"},
        {2, "export " + file + " --every 0", "--every must be"},
        {2, "export " + file + " --from noon", "--from must be"},
        {2, "export " + file + " --channels Jibberish", "no channel Jibberish"},
        {2, "export " + file + " --format gpx --units si", "for csv and jsonl"},
        {2, "export " + file + " --format parquet", "--format"},
        {1, "report " + file + " -o " + File("mine"), "mine is there already, and is not overwritten"},
        {1, "report " + File("empty") + " -o " + File("page"), "empty line 1: it is neither"},
        {1, "report " + file + " -o " + File("page") + " --boat 9", "no value of what a report shows"},
        {2, "report " + file + " -o " + File("page") + " --from noon", "--from must be"},
        {2, "report " + file, "--output is required"},
        {1, "report " + File("broken") + " -o " + File("page"), "what comes before is in the report"},
        {1, "info " + File("broken"), "read no further"},
        {0, "info " + File("torn"), "its last line is torn"},
        {1, "info " + File("header"), "no value in it"},
        {1, "info " + File("empty"), "neither"}};
    for (const auto& [status, command, said] : rows) ExpectIn(Said(command, status), {said});
    EXPECT_EQ("mine", test.folder.Read("mine"));
    ExpectIn(test.folder.Read("page"), {R"("dated":true,)", R"("segments":[[1792886401,3]])", "Read no further than here: "});
    Said("export " + file + " -o " + File("new.csv"));
    EXPECT_EQ(Said("export " + file), test.folder.Read("new.csv"));
    FakeFiles full;
    full.files = {{u"race", race}};
    full.room = 100;
    disk = &full;
    ExpectIn(Said("export race -o new", 1), {"new can't be written any more: the disk is full"});
    full.room = 1 << 20;
    full.onFlush = [] { return false; };
    ExpectIn(Said("export race -o other", 1), {"other can't be written to its end: the disk is full"});
    disk = nullptr;
    console.goOn = [] { return false; };
    ExpectIn(Said("export " + file, 1), {"as you asked"});
}

}  // namespace
}  // namespace twr::testing
