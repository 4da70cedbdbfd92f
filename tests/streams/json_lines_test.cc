// SPDX-License-Identifier: MIT
#include "streams/json_lines.h"

#include <cstring>
#include <nlohmann/json.hpp>
#include <random>

#include "streams/follow_fixture.h"
#include "streams/iso_time.h"

namespace twr::testing {
namespace {

struct JsonLinesTest : FollowTest {
    std::string Line(const Change& change) {
        std::string out;
        AppendJsonLine(out, change, *core);
        return out;
    }
    std::string LineOf(ChannelId channel, double value) { return Line({46351.0 + 3723.4 / 86400, channel, 0, value}); }
};

TEST_F(JsonLinesTest, TellsAChangeOnALine) {
    record.SetInt(2, 2);  // speeds in km/h
    record.SetFlag(3, true);
    record.SetSlot(0, 1, kBsp);
    record.SetText(RecordBytes::Channel(172) + 76, u"A\"\\\x9B\xD83D\xDE00\xD800");
    record.SetText(1780, u"Jib 2");
    record.Set<std::uint16_t>(RecordBytes::Channel(kXte) + 6, 60000);
    EXPECT_GT(300u, LineOf(kXte, 1.0).size()) << "decimals without end";
    const std::tuple<ChannelId, double, const char*> rows[] = {
        {kAlt0, 6.5, R"(117,"name":"BSP","boat":0,"value":6.5,"unit":"kn","text":"12.04"})"},
        {kDistToLn, 1e-7, R"("value":1e-07,"unit":"nm",)"},
        {kRot, -0.0, R"("value":-0,"unit":"deg/s",)"},
        {kSail, 1.0, R"("value":1,"unit":null,"text":"Jib 2"})"},
        {172, 1.0, R"(172,"name":"A\"\\\u009b\ud83d\ude00\ufffd","boat":0)"}};
    for (const auto& [channel, value, told] : rows) {
        const std::string line = LineOf(channel, value);
        EXPECT_EQ(0u, line.find(R"({"time":"2026-11-25T01:02:03.4Z","id":)"));
        EXPECT_NE(line.npos, line.find(told)) << line;
        EXPECT_TRUE(nlohmann::json::accept(line)) << line;
    }
    Publish(kMagVar, -3.0);
    record.SetFlag(3, false);
    Publish(kMagVar, 10.0, 3);
    for (const auto& [boat, told] : {std::pair(0u, R"("value":90,"unit":"deg","text":"087"})"), {3u, R"("text":"100"})"}})
        EXPECT_NE(std::string::npos, Line({0.0, kHdg, boat, 90.0}).find(told))
            << "text alone is true, by the variation of " << boat;
}

TEST_F(JsonLinesTest, ComesBackAsPublished) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 2000; ++i) {
        const std::uint64_t bits = random();
        Change change{46351.0 + static_cast<double>(random() % 86400000000) / 86400e6,
                      static_cast<ChannelId>(1 + random() % (kChannelCount - 1)), static_cast<BoatSlot>(random() % 100), 0.0};
        std::memcpy(&change.value, &bits, sizeof bits);
        if (!std::isfinite(change.value) || i % 10 == 0) change.value = kNoValue;
        const ReadLine read = ParseJsonLine(Line(change));
        ASSERT_TRUE(read.change) << read.fault;
        EXPECT_EQ(ToMillisecond(change.time), ToMillisecond(read.change->time));
        EXPECT_EQ((Change{0.0, change.channel, change.boat, change.value}),
                  (Change{0.0, read.change->channel, read.change->boat, read.change->value}));
        // Damaged or not, the way that is faster reads the same.
        std::string line = Line(change);
        line.pop_back();
        for (int damage = 0; damage < 4; ++damage) {
            const ReadLine usual = ParseJsonLine(line), any = ParseAnyJsonLine(line);
            EXPECT_TRUE(usual.change == any.change && usual.fault == any.fault) << line;
            line[random() % line.size()] = R"({}[]",:.-+e019nulx\ )"[random() % 21];
        }
    }
}

TEST(IsoTimeTest, IsReadAndWritten) {
    const std::pair<const char*, double> rows[] = {{"1899-12-30T00:00:00Z", 0.0},
                                                   {"2024-02-29T12:00:00Z", 45351.5 - 1e-10},
                                                   {"2026-11-25T23:59:59.999Z", 46351.0 + 86399.999 / 86400},
                                                   {"9999-12-30T00:00:00.05Z", 2958464.0 + 0.05 / 86400}};
    for (const auto& [text, days] : rows) {
        std::string out;
        AppendIsoTime(out, days);
        EXPECT_EQ(text, out);
        EXPECT_NEAR(days, ParseIsoTime(text).value_or(-1.0), 1e-9);
    }
    for (const char* text : {"", "2026-11-25T01:02:03", "2026-11-25T01:02:03+01:00", "2026-02-29T00:00:00Z", "2026-11-25T24:00:00Z",
                             "2026-11-25T01:60:00Z", "2026-11-25T01:02:03.Z", "2026-11-25T01:02:03.4Z "})
        EXPECT_FALSE(ParseIsoTime(text)) << text;
}

constexpr const char* kGood = R"({"time":"2026-11-25T01:02:03Z","id":1,"value":6.5,"of tomorrow":[{}]})";

TEST(JsonLineReaderTest, RefusesWithLineNumberAndReason) {
    const std::pair<std::string, const char*> rows[] = {
        {"{", "line 201: it is no JSON object"},
        {R"({"time":"today","id":1,"value":1})", "\"time\""},
        {R"({"time":"2026-11-25T01:02:03Z","value":1,"id":)" + std::to_string(kChannelCount) + "}", "\"id\" must be"},
        {R"({"time":"2026-11-25T01:02:03Z","id":1.5,"value":1})", "\"id\""},
        {R"({"time":"2026-11-25T01:02:03Z","id":1,"boat":100,"value":1})", "\"boat\""},
        {R"({"time":"2026-11-25T01:02:03Z","id":1})", "\"value\""},
        {R"({"time":"2026-11-25T01:02:03Z","id":1,"value":"6"})", "\"value\""},
        {R"({"time":"2026-11-25T01:02:03Z","id":1,"value":1e999})", "no JSON"},
        {std::string(5000, ' ') + kGood, "too long"}};
    for (const auto& [line, fault] : rows) {
        std::string text;
        for (int i = 0; i < 100; ++i) text += std::string(kGood) + "\r\n\n";
        FakeFiles files;
        files.files = {{u"/recording", text + line + "\n" + kGood}};
        const auto recording = files.Open(u"/recording");
        JsonLineReader reader(*recording);
        for (int i = 0; i < 100; ++i) EXPECT_EQ(6.5, reader.Next().value_or(Change{}).value);
        EXPECT_FALSE(reader.Next()) << line;
        EXPECT_NE(std::string::npos, reader.Fault().find(fault)) << reader.Fault();
        EXPECT_EQ(0u, reader.Fault().find("line 201: "));
        EXPECT_FALSE(reader.Next()) << "nor does it go on";
    }
}

}  // namespace
}  // namespace twr::testing
