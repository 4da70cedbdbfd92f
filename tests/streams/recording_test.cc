// SPDX-License-Identifier: MIT
#include "streams/recording.h"

#include <gtest/gtest.h>

#include <random>

#include "streams/follow_fixture.h"
#include "streams/json_lines.h"
#include "streams/recording_name.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

TEST(RecordingNameTest, HasFieldsAndNumbers) {
    const double shown = 46351.0 + 7.0 / 24;  // 2026-11-25 07:00
    const std::tuple<std::u16string, std::u16string, std::u16string> rows[] = {
        {u"a.b/race", u"a.b/race", u"a.b/race-2"},
        {u"race.jsonl.gz", u"race.jsonl.gz", u"race-2.jsonl.gz"},
        {u".gz", u".gz", u"-2.gz"},
        {u"/a/.race", u"/a/.race", u"/a/.race-2"},
        {u"%Y/%m-%d %H%M%S%%Y.jsonl", u"2026/11-25 070000%Y.jsonl", u"2026/11-25 070000%Y-2.jsonl"}};
    for (const auto& [name, now, second] : rows) {
        EXPECT_EQ(now, NameAt(name, shown));
        EXPECT_EQ(second, NumberedName(now, 2));
        EXPECT_EQ(now, NumberedName(now, 1));
        EXPECT_EQ(std::nullopt, UnknownFieldIn(name));
    }
    EXPECT_EQ(u"%y", UnknownFieldIn(u"%%%y"));
    EXPECT_EQ(std::nullopt, UnknownFieldIn(u"50%%race"));
    EXPECT_EQ(u"25 235959", NameAt(u"%d %H%M%S", 46352 - 0.002 / 86400)) << "the day has not ended yet";
    EXPECT_EQ(u"26 000000", NameAt(u"%d %H%M%S", 46352 - 0.0004 / 86400)) << "as a line tells this moment";
    EXPECT_EQ(u"%", UnknownFieldIn(u"%d%"));
    EXPECT_TRUE(ChangesWithTime(u"%%%d") && !ChangesWithTime(u"%%d"));
}

struct Read {
    explicit Read(std::string bytes, std::size_t atMost = 1000) {
        RecordingReader reader(std::make_unique<UnpackingSource>(std::make_unique<TextSource>(std::move(bytes), atMost)));
        while (const auto next = reader.Next()) all.push_back(*next);
        fault = reader.Fault();
    }
    std::vector<Recorded> all;
    std::string fault;
};

std::string Packed(const std::string& bytes) {
    GzipPacker packer;
    const std::string packed = packer.Pack(bytes);
    return packed + packer.Finish();
}

std::string Line(const std::string& time, double value, int id = 1) {
    return R"({"time":"2026-11-25T)" + time + R"(Z","id":)" + std::to_string(id) + R"(,"value":)" + std::to_string(value) + "}\n";
}

TEST(RecordingReaderTest, TellsWhenEachChangeCame) {
    const std::string header = "{\"format\":\"halyrig-record\",\"version\":1,\"later\":[1]}\n";
    struct Row {
        const char* what;
        std::string text;
        std::vector<double> seconds;
        const char* fault = "";
    };
    const Row rows[] = {
        {"stamps", Line("01:00:00", 1) + Line("01:00:02.5", 2), {0, 2.5}},
        {"old stamps wait for nothing", Line("01:00:00", 1) + Line("00:00:00", 2) + Line("01:00:01", 3), {0, 0, 1}},
        {"marks, whatever the stamps",
         header + Line("01:00:00", 0, 0) + Line("03:00:00", 1) + Line("01:00:03", 0, 0) + Line("00:00:00", 2),
         {0, 3}},
        {"a gap, and a clock that was set back",
         Line("01:00:00", 0, 0) + Line("01:00:00", 1) + Line("09:00:00", 0, 0) + Line("09:00:00", 2) + Line("05:00:00", 0, 0) +
             Line("05:00:00", 3) + Line("05:00:01", 0, 0) + Line("05:00:01", 4),
         {0, 60, 60, 61}},
        {"files behind each other", header + Line("01:00:00", 1) + header + Line("01:00:01", 2), {0, 1}},
        {"packed files behind each other", Packed(header + Line("01:00:00", 1)) + Packed(Line("01:00:01", 2)), {0, 1}},
        {"a gap in the recording",
         Line("01:00:00", 1) + R"({"gap":{"from":"2026-11-25T01:00:00Z","to":"2026-11-25T01:00:09Z"}})" + "\n" +
             Line("01:00:09", 2),
         {0, 9}},
        {"a torn line", Line("01:00:00", 1) + R"({"time":"2026)", {0}},
        {"a whole line without its end", Line("01:00:00", 1) + Line("01:00:01", 1).substr(0, 52), {0}},
        {"a broken line", Line("01:00:00", 1) + "{\n" + Line("01:00:01", 2), {0}, "line 2: it is no JSON"},
        {"a later version",
         "{\"format\":\"halyrig-record\",\"version\":2}\n" + Line("01:00:00", 1),
         {},
         "line 1: it is the recording of a later"},
        {"another format", "{\"format\":[]}\n", {}, "line 1: \"format\""},
        {"damage", Packed(header + Line("01:00:00", 1)) + "none", {0}, "line 3: what follows is damaged"},
        {"nothing", "", {}},
    };
    for (const auto& [what, text, seconds, fault] : rows) {
        for (const std::size_t atMost : {1u, 7u, 1000u}) {
            SCOPED_TRACE(what);
            const Read read(text, atMost);
            EXPECT_EQ(0u, read.fault.find(fault)) << read.fault;
            EXPECT_EQ(*fault == '\0', read.fault.empty()) << read.fault;
            std::vector<double> found;
            for (const Recorded& recorded : read.all) found.push_back(std::round(recorded.seconds * 1000) / 1000);
            EXPECT_EQ(seconds, found);
        }
    }
}

struct RecordingTest : FollowTest {
    // Of a look.
    std::string Lines() {
        std::string lines;
        for (const Change& change : Look()) {
            AppendJsonLine(lines, change, *core);
            told.push_back(change);
        }
        return lines;
    }
    bool Record(RecordingWriter& writer) { return writer.Put(Lines(), {Now(), Now() + ahead}) && writer.Keep(); }
    const std::string& Bytes(const std::u16string& path) {
        return std::ranges::find(machine.files.files, path, &FakeFiles::File::path)->bytes;
    }
    // Both tell the same of these changes, from the first on.
    void ExpectTold(const std::vector<Recorded>& read, std::size_t least) {
        ASSERT_TRUE(read.size() >= least && read.size() <= told.size()) << read.size() << ", least " << least;
        for (std::size_t i = 0; i < read.size(); ++i) {
            const auto& [time, channel, boat, value] = told[i];
            ASSERT_NEAR(time, read[i].change.time, 0.0011 / kSecondsPerDay);
            ASSERT_EQ((Change{read[i].change.time, channel, boat, value}), read[i].change) << i;
        }
    }

    std::vector<Change> told;
    double ahead = 0.0;  // days of the zone before UTC
};

// Ten times a second, every channel of the own boat. Whatever is cut off the file, all up to the last flush that is in it is read.
TEST_F(RecordingTest, KeepsAllUpToTheLastSecondWhereverItIsCut) {
    std::mt19937 random(1);
    for (const bool gzip : {false, true}) {
        SCOPED_TRACE(gzip);
        told.clear();
        follower->Forget();
        const std::u16string path = gzip ? u"/packed" : u"/plain";
        RecordingWriter writer(machine.files, {path, gzip, 0});
        ASSERT_TRUE(writer.Begin({Now(), Now()}));
        std::map<std::size_t, std::size_t> flushed{{0, 0},
                                                   {Bytes(path).size(), 0}};  // changes, by the size of the file that holds them
        for (int look = 0; look < 25; ++look) {
            for (ChannelId channel = 1; channel < kChannelCount; ++channel) Publish(channel, 1 + look / 64.0);
            ASSERT_TRUE(Record(writer));
            if (Bytes(path).size() > flushed.rbegin()->first) flushed[Bytes(path).size()] = told.size();
            Pass(0.1);
        }
        EXPECT_EQ(4u, flushed.size()) << "once a second";
        EXPECT_LE(3, std::exchange(machine.files.flushes, 0));
        ASSERT_TRUE(writer.Close());
        const std::string bytes = Bytes(path);
        EXPECT_NEAR(2.4, Read(bytes).all.back().seconds, 0.01);
        ExpectTold(Read(bytes).all, told.size());
        const Read joined(bytes + (gzip ? Packed(Line("01:00:00", 9)) : Line("01:00:00", 9)));
        EXPECT_TRUE(joined.fault.empty() && joined.all.size() == told.size() + 1) << "it has its end: " << joined.fault;
        for (int cut = 0; cut < 8; ++cut) {
            const std::size_t size = std::uniform_int_distribution<std::size_t>(0, bytes.size())(random);
            const Read read(bytes.substr(0, size));
            EXPECT_EQ("", read.fault) << size;
            ExpectTold(read.all, std::prev(flushed.upper_bound(size))->second);
        }
    }
    EXPECT_LT(machine.files.files[1].bytes.size() * 8, machine.files.files[0].bytes.size());
}

TEST_F(RecordingTest, GoesToTheDiskOnceASecondThoughTheClockIsSetBack) {
    RecordingWriter writer(machine.files, {u"/log", false, 0});
    ASSERT_TRUE(writer.Begin({Now(), Now()}));
    Pass(-3600.0);
    for (int look = 0; look < 25; ++look, Pass(0.1)) {
        Publish(kBsp, look);
        ASSERT_TRUE(Record(writer));
    }
    EXPECT_LE(3, machine.files.flushes);
}

TEST_F(RecordingTest, BeginsANewFileByNameAndBySizeAndNeverOverOne) {
    machine.files.files.push_back({u"/log-1119.jsonl", "mine"});
    RecordingWriter writer(machine.files, {u"/log-%m%d.jsonl", false, 600});
    ahead = 1.0 / 24;  // 2026-11-19 00:00 UTC is 01:00
    Pass(22.9 * 3600);
    for (int second = 0; second < 720; ++second, Pass(1)) {
        if (second % 120 == 0) Publish(kBsp, 1 + second / 120.0);
        ASSERT_TRUE(Record(writer));
    }
    ASSERT_TRUE(writer.Close());
    std::vector<std::u16string> names;
    for (const auto& file : machine.files.files) {
        names.push_back(file.path);
        EXPECT_TRUE(file.bytes == "mine" || Read(file.bytes).all.size() >= 2) << file.bytes;
    }
    EXPECT_EQ((std::vector<std::u16string>{u"/log-1119.jsonl", u"/log-1119-2.jsonl", u"/log-1119-3.jsonl", u"/log-1120.jsonl",
                                           u"/log-1120-2.jsonl"}),
              names);
    EXPECT_EQ("mine", Bytes(names[0]));
}

// A file that was removed, or whose folder was, is left within a second; what was not written to it goes to the next.
TEST_F(RecordingTest, GoesOnInANewFileIfItsOwnHasGone) {
    for (const bool gzip : {false, true}) {
        const std::u16string path = gzip ? u"/packed" : u"/plain";
        RecordingWriter writer(machine.files, {path, gzip, 0});
        ASSERT_TRUE(writer.Begin({Now(), Now()}));
        for (int tenth = 0; tenth < 25; ++tenth, Pass(0.1)) {
            if (tenth == 12) machine.files.Remove(path);
            Publish(kBsp, 1 + tenth);
            ASSERT_TRUE(Record(writer));
            EXPECT_EQ(tenth < 20 ? u"" : path, writer.Lost()) << tenth;
        }
        ASSERT_TRUE(writer.Close());
        const auto left = Read(Bytes(path + u"-2")).all;
        ASSERT_FALSE(left.empty());
        EXPECT_EQ(12.0, left.front().change.value) << "the first that was not written";
        EXPECT_EQ(25.0, left.back().change.value);
    }
}

TEST_F(RecordingTest, SaysWhyItCannotWrite) {
    RecordingWriter writer(machine.files, {u"/full", false, 0});
    machine.files.room = 400;
    int seconds = 0;
    for (; seconds < 100 && Publish(kBsp, 1 + seconds / 100.0) && Record(writer); ++seconds) Pass(1);
    EXPECT_TRUE(seconds > 0 && seconds < 5) << seconds;
    EXPECT_EQ(0u, writer.Fault().find("can't be written any more: the disk is full"));
    EXPECT_FALSE(Record(writer) || writer.Close());
}

TEST(RecordingReaderTest, AReadErrorIsAFaultAndNotTheEnd) {
    std::string text;
    for (int i = 0; i < 300; ++i) text += Line("01:00:00", i);
    for (const std::string& file : {text, Packed(text)}) {
        auto broken = std::make_unique<Broken>(std::make_unique<TextSource>(file, 1000), file.size() * 2 / 3);
        RecordingReader reader(std::make_unique<UnpackingSource>(std::move(broken)));
        int count = 0;
        while (reader.Next()) ++count;
        EXPECT_TRUE(100 < count && count < 300) << count;
        EXPECT_EQ("line " + std::to_string(count + 1) + ": what follows can't be read: broken disk", reader.Fault());
    }
}

TEST(RecordingReaderTest, WhateverAFileHoldsItIsReadNoFurtherThanWanted) {
    const std::string first = Line("01:00:00", 1), blank(1 << 20, '\n');
    std::string empty;
    for (int i = 0; i < (1 << 20); i += 20) empty += Packed("");
    for (const std::string& file :
         {first + blank, Packed(first + blank), Packed(first) + empty, first + std::string(1 << 20, 'x')}) {
        int asked = 0;
        RecordingReader reader(
            std::make_unique<UnpackingSource>(std::make_unique<TextSource>(file, 1000), [&] { return ++asked < 3; }));
        EXPECT_TRUE(reader.Next());
        EXPECT_FALSE(reader.Next());
        EXPECT_EQ(3, asked);
        EXPECT_EQ("", reader.Fault());
    }
}

}  // namespace
}  // namespace twr::testing
