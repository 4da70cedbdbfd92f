// SPDX-License-Identifier: MIT
#include <atomic>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <future>
#include <thread>

#include "base/numbers.h"
#include "ctl_fixture.h"
#include "halyrigctl/recordings/day_files.h"
#include "halyrigctl/recordings/replayer.h"
#include "status/bridge_status.h"
#include "streams/json_lines.h"
#include "streams/recording.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

// Time passes only while a command waits.
struct UnseenName : Instance {
    bool Claim(std::u16string_view) override { return true; }
    NameLook Look(std::u16string_view) const override { return {NameLook::kUnknown, "it is a link; remove it"}; }
    void RaiseOther(std::u16string_view) override {}
};

struct RecordTest : CtlTest {
    RecordTest() {
        test.folder.Write("ProgramData/any", "");
        console.goOn = [this] { return Step(); };
    }
    CoreServices Core() override {
        const CoreServices real = test.system->Core();
        return {clock, zone, real.memory, real.registry, disk ? *disk : real.files, real.xml, real.desktop};
    }
    bool Step() {
        // A look comes a little late, and never as late as another, so that no age limit falls onto one.
        clock.AdvanceMs(console.waited - seen + late);
        clock.ticks += 70;
        seen = console.waited;
        return each();
    }
    std::string File(const char* name) { return ToUtf8(test.folder.File(name)); }
    // Records for so long, while something else goes on.
    std::string Record(const std::string& arguments, double seconds, const std::function<void(int look)>& meanwhile) {
        int look = 0;
        const double end = clock.Days() + seconds / 86400;
        each = [&] {
            meanwhile(look++);
            return clock.Days() < end;
        };
        const std::string said = Said("record " + arguments);
        each = [] { return false; };
        return said;
    }
    std::vector<Recorded> Read(const char* name) { return Read(test.folder.File(name)); }
    std::vector<Recorded> Read(const std::u16string& path) {
        RecordingReader reader(std::make_unique<UnpackingSource>(Core().files.Open(path)));
        std::vector<Recorded> all;
        while (const auto next = reader.Next()) all.push_back(*next);
        EXPECT_EQ("", reader.Fault());
        return all;
    }
    std::ptrdiff_t CountOf(ChannelId channel, const std::u16string& path) {
        return std::ranges::count(Read(path), channel, [](const Recorded& one) { return one.change.channel; });
    }
    void AskToClose() { Put(suite->View()->sysFlag[kFlagQuitRequest], std::uint8_t{1}); }
    double Value(ChannelId channel) {
        double value = 0;
        return suite->GetChannel(channel, value, 0, false, true, false) ? value : kNoValue;
    }

    bool HasSaid(const char* part) const { return console.written.find(part) != std::string::npos; }

    FakeClock clock;
    FakeZone zone;
    FakeFiles* disk = nullptr;  // in place of the machine's
    int seen = 0;               // milliseconds that were waited
    int late = 0;               // milliseconds by which the program comes back from each wait
    std::function<bool()> each = [] { return false; };
};

std::string At(const std::string& time, int id, const std::string& value) {
    return R"({"time":")" + std::string(time.size() > 8 ? "" : "2026-11-25T") + time + R"(Z","id":)" + std::to_string(id) +
           R"(,"value":)" + value + "}\n";
}

std::string WithoutTimes(const std::string& lines) {
    std::string rest;
    for (const std::string& line : LinesOf(lines)) {
        const bool isTold = line.find(R"("id":0)") == line.npos && line.find("format") == line.npos;
        rest += isTold ? line.substr(line.find(R"("id")")) + "\n" : "";
    }
    return rest;
}

// All that was recorded is published again, as far apart, and recorded again the same.
TEST_F(RecordTest, WhatIsReplayedIsRecordedTheSame) {
    StartSuite();
    Record(File("sea") + " --boat 0", 30, [&](int look) {
        if (look % 7 == 0) Publish(kBsp, 6 + look / 128.0);
        if (look % 10 == 0) Publish(kHdg, std::fmod(350.1 + look, 360));
        if (look % 10 == 5) Publish(kAwa, 30 + look / 8.0);
        if (look < 98) Publish(kMastAng, 7.5);  // goes stale 10 s later or a look after, when nothing else is told
        if (look == 150) suite->SetChannel(kHdg, 0, kNoValue, 0.0);
    });
    const auto first = Read("sea");
    ASSERT_LT(100u, first.size());
    suite.reset();
    StartSuite();
    Put(suite->View()->sysFlag[kFlagMastAngle], std::uint8_t{1});

    RecordingReader reader(std::make_unique<UnpackingSource>(Core().files.Open(test.folder.File("sea"))));
    Replayer replayer(*suite, reader, {}, {});
    double start = 0.0;
    // Half a look apart, so that none tells two at once.
    const std::string said = Record(File("ashore") + " --boat 0", 32, [&](int look) {
        if (look == 0) start = clock.Days();
        replayer.PlayTo((clock.Days() - start) * 86400 + 0.025);
    });
    const auto second = Read("ashore");
    ASSERT_EQ(first.size(), second.size()) << said;
    for (std::size_t i = 0; i < first.size(); ++i) EXPECT_NEAR(first[i].seconds, second[i].seconds, 0.15) << i;
    EXPECT_EQ(WithoutTimes(test.folder.Read("sea")), WithoutTimes(test.folder.Read("ashore")));
    EXPECT_EQ(0u, test.folder.Read("sea").find(R"({"format":"halyrig-record","version":1,"halyrig":")"));
}

TEST_F(RecordTest, RecordOutlivesRecordsAndNeverOverwrites) {
    test.folder.Write("log.jsonl", "mine");
    ExpectIn(Record(File("log.jsonl") + " --gzip", 40,
                    [&](int look) {
                        if (look == 10 || look == 200) StartSuite();
                        if (suite) Publish(kBsp, look);
                        if (look == 100) AskToClose(), suite.reset();
                    }),
             {"no record yet", "the record is there", "asked to close"});
    EXPECT_EQ("mine", test.folder.Read("log.jsonl"));
    EXPECT_EQ("\x1F\x8B", test.folder.Read("log-2.jsonl").substr(0, 2));
    const auto all = Read("log-2.jsonl");
    ASSERT_LT(100u, all.size());
    EXPECT_EQ(1, std::ranges::count_if(all, [](const Recorded& one) { return one.change.value == kNoValue; }));
    ExpectIn(Said("record " + File("missing/log"), 1), {"missing", "can't be made"});
    ExpectIn(Said("record " + File("%q"), 2), {"FILE has %q", "%Y"});
}

// The bridge publishes ten times a second, whatever a look takes.
TEST_F(RecordTest, LooksOnABeatThatSeesEachTickOfTheBridge) {
    StartSuite();
    late = 30;
    int ticks = 0;
    const double start = clock.Days();
    Record(File("beat") + " --channels BSP", 60, [&](int) {
        if ((clock.Days() - start) * 864000 > ticks) Publish(kBsp, ++ticks % 30);
    });
    EXPECT_NEAR(600, ticks, 1);
    EXPECT_NEAR(ticks, static_cast<int>(Read("beat").size()), 1) << "the last may come after the last look";
    late = 0;
    each = [] { return true; };
    const int before = console.waited;
    Said("stream --seconds 3 --rate 3");
    EXPECT_NEAR(3000, console.waited - before, 150) << "in looks that are no whole tenths of a second apart";
    Publish(kBsp, 6.5);
    EXPECT_NEAR(5, std::ranges::count(Said("stream --seconds 5 --format nmea"), '$'), 1) << "sentences come once a second";
}

// Each file can be played alone: it begins with what stands. Its day is that on board.
TEST_F(RecordTest, TheDayOnBoardEndsAFileAndTheNextBeginsWithWhatStands) {
    zone.state = ZoneState{-60, 0, false};
    FakeFiles fake;
    disk = &fake;
    std::atomic<bool> enough = false;
    fake.onFlush = [&] {
        enough = enough || (fake.files.size() == 2 && fake.files[1].bytes.find("Mk Lat") != std::string::npos);
        return true;
    };
    StartSuite();
    clock.AdvanceMs(82'770'000);  // 23:59:30 on board
    Publish(kMkLat, 50.0);
    Record("log-%d", 1e6, [&](int look) {
        Publish(kBsp, 1 + look % 20);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));  // else looks run ahead of the disk by more than is kept for it
        if (enough || look == 1'000'000) clock.AdvanceMs(2'000'000'000);
    });
    ASSERT_EQ(2u, fake.files.size());
    EXPECT_EQ(u"log-20", fake.files[1].path);
    EXPECT_NEAR(30, Read(std::u16string(u"log-19")).back().seconds, 0.2);
    for (const auto& file : fake.files) EXPECT_EQ(1, CountOf(kMkLat, file.path));
}

// A file a day, of which the oldest are removed, and nothing else; not into the last of the disk's room.
TEST_F(RecordTest, RecordsByItselfAndKeepsWhatIsWanted) {
    const std::string at = "ProgramData/Tidewright/recordings/";
    const char* const old[] = {"halyrig-20261114.jsonl.gz",    "halyrig-20261116.jsonl.gz", "halyrig-20261116-2.jsonl.gz",
                               "halyrig-20261116-10.jsonl.gz", "halyrig-2026111.jsonl.gz",  "halyrig-20261001-x.jsonl.gz",
                               "halyrig-20261399.jsonl.gz",    "race-20260101.jsonl.gz"};
    StartSuite();
    clock.AdvanceMs(12 * 3'600'000);
    const auto left = [&](const std::string& keep) {
        for (const char* name : old) test.folder.Write(at + name, std::string(1 << 20, 'x'));
        Record(keep, 3, [&](int look) { Publish(kBsp, look); });
        std::string found;
        for (const char* name : old) found += Core().files.Exists(test.folder.File(at + name)) ? '1' : '0';
        return found;
    };
    EXPECT_EQ("11111111", left(""));
    EXPECT_EQ("01111111", left("--keep 4")) << "the 16th to the 19th";
    EXPECT_EQ("00001111", left("--keep 3d"));
    EXPECT_EQ("00111111", left("--keep 3M")) << "two of the 16th, and this run's";
    std::size_t count = 0;
    for (const std::u16string& path :
         Core().files.List(test.folder.File("ProgramData/Tidewright/recordings"), u"halyrig-20261119*")) {
        EXPECT_LE(1u, Read(path).size()) << ToUtf8(path);
        ++count;
    }
    EXPECT_EQ(4u, count);
    // While another program makes them there is no second.
    auto others = TakeDays(Core().files, test.folder.File("ProgramData/Tidewright/recordings"));
    ExpectIn(Said("record", 1), {"is being made already"});
    const auto writtenBefore = [&](int seconds) {
        const std::chrono::nanoseconds then((clock.ticks - seconds * 10'000'000LL) * 100);
        const auto path = test.folder.Path() / (at + "halyrig-20261119-4.jsonl.gz");
        std::filesystem::last_write_time(path,
                                         std::chrono::file_clock::from_sys(std::chrono::sys_time<std::chrono::nanoseconds>(then)));
    };
    writtenBefore(60);
    ExpectIn(Said("check", 1), {"recording    runs, but nothing is written since 2026-11-19T"});
    writtenBefore(5);
    ExpectIn(Said("check", 1), {"recording    runs since 2026-11-19T", "halyrig-20261119-4.jsonl.gz, ", " GiB left"});
    ExpectIn(Said("check --json", 1), {R"("recording":{"running":true,"file":")", R"("since":"2026-11-19T)", R"("room":)"});
    others.reset();
    ExpectIn(Said("check", 1), {"recording    none now; the last from 2026-11-19T"});
    ExpectSaid(2, {{"record --keep 0", {"--keep must be"}},
                   {"record --keep 4x", {"--keep must be"}},
                   {"record f --keep 4", {"does not go with FILE"}}});
    const std::u16string folder = test.folder.File("ProgramData/Tidewright/recordings");
    const auto current = Core().files.List(folder, u"halyrig-20261119*").front();
    DayFiles(Core().files, folder, {.bytes = 1}).Tend(current, 46345);
    EXPECT_EQ(std::vector{current}, Core().files.List(folder, u"halyrig-20261119*")) << "that which grows stays";
    FakeFiles full;
    disk = &full;
    full.diskRoom = (1ULL << 30) - 1;
    ExpectIn(Said("record", 1), {"less than 1 GiB of room"});
    full.diskRoom = 1ULL << 30;
    full.onFlush = [&] { return --full.diskRoom > 0; };
    each = [&] {
        Publish(kBsp, console.waited % 20);
        std::this_thread::yield();
        return true;
    };
    ExpectIn(Said("record", 1), {"halyrig-20261119.jsonl.gz ended, since its disk has less than 1 GiB of room"});
    EXPECT_EQ(1u, full.files.size());
}

struct HangingDisk : FakeFiles {
    HangingDisk() {
        onFlush = [this, works = works.get_future().share()] {
            if (flushes == 1) hangs.set_value();
            return works.get();
        };
    }
    std::promise<void> hangs;
    std::promise<bool> works;  // again, from then on
};

TEST_F(RecordTest, LooksOnWhileTheDiskHangsAndTellsTheGapThatIsTooLong) {
    HangingDisk hanging;
    disk = &hanging;
    StartSuite({{kMkLat, 50.0}});
    int full = 0;
    Record("log --boat 0", 1e6, [&](int look) {
        if (full == 0 && HasSaid("is lost until it does")) {
            full = look;
            suite->SetChannel(kMkLat, 0, kNoValue, 0.0);
            Publish(kMkLon, -1.0);
        }
        if (full > 0 && look == full + 20) hanging.works.set_value(true);
        if (full > 0 && look > full + 20) std::this_thread::yield();
        suite->StampTime();
        if (full > 0 && HasSaid("the recording tells so")) return clock.AdvanceMs(2'000'000'000);  // to the end
        for (ChannelId channel = kAwa; channel < kChannelCount && look % 2 == 0 && full == 0; ++channel) {
            if (channel != kMkLat && channel != kMkLon) Publish(channel, 1 + look / 1024.0);
        }
    });
    EXPECT_LT(600, full) << "there is room for 30 seconds";
    EXPECT_NEAR(full / 2, CountOf(kAwa, u"log"), 2) << "of which all is kept";
    const std::string behind = hanging.files.at(0).bytes.substr(hanging.files[0].bytes.find(R"({"gap":{"from":")"));
    ExpectIn(behind, {R"("name":"Mk Lat","boat":0,"value":null)", R"("name":"Mk Lon","boat":0,"value":-1)"});
}

TEST_F(RecordTest, TellsAGapThatLastsToTheEnd) {
    HangingDisk hanging;
    disk = &hanging;
    StartSuite();
    Record("log --boat 0", 1e6, [&](int look) {
        suite->StampTime();
        for (ChannelId channel = kAwa; channel < kChannelCount && look % 2 == 0; ++channel) Publish(channel, 1 + look / 1024.0);
        if (HasSaid("is lost until it does")) hanging.works.set_value(true), clock.AdvanceMs(2'000'000'000);
    });
    ExpectIn(hanging.files.at(0).bytes, {R"({"gap":{"from":")"});
}

TEST_F(RecordTest, EndsThoughTheDiskHangs) {
    HangingDisk hanging;
    disk = &hanging;
    StartSuite({{kBsp, 6.0}});
    int asked = 0;
    console.stillGoesOn = [&] { return ++asked, false; };
    each = [&] { return console.waited == 0 || (hanging.hangs.get_future().wait(), false); };
    ExpectIn(Said("record log", 1), {"log: the disk takes nothing; what was published after 2026-", " is lost"});
    EXPECT_EQ(1, asked) << "the user need not wait for the disk";
    hanging.works.set_value(false);  // the thread that was given up ends without the disk
}

TEST_F(RecordTest, ARecordingThatIsRemovedGoesOnInTheNext) {
    FakeFiles fake;
    disk = &fake;
    StartSuite({{kMkLat, 50.0}});
    fake.onFlush = [&] {
        if (fake.files.front().bytes.find("Mk Lat") != std::string::npos) fake.Remove(u"log");
        return true;
    };
    int said = 0;
    Record("log", 1e6, [&](int look) {
        Publish(kBsp, 1 + look % 20);
        std::this_thread::yield();
        const bool hasSaid = HasSaid("log was removed, renamed or replaced; the recording goes on in log-2");
        if (hasSaid && ++said == 4) clock.AdvanceMs(2'000'000'000);
    });
    ASSERT_EQ(1u, fake.files.size());
    EXPECT_EQ(u"log-2", fake.files.front().path);
    EXPECT_EQ(1, CountOf(kMkLat, u"log-2"));
}

TEST_F(RecordTest, ReplayPublishesAsAProgramOfTheSuite) {
    test.folder.Write("two.jsonl",
                      At("01:00:00", 1, "6") + At("01:00:00", 93, "9") + At("01:00:20", 1, "7") + At("01:00:40", 1, "null") + "{");
    // Seconds that pass until its end; the boat's speeds seen.
    const auto replay = [&](const std::string& options, int status = 0, const char* file = "two.jsonl") {
        std::pair<double, std::vector<double>> found;
        const double start = clock.Days();
        each = [&] {
            if (!suite) StartSuite();
            if (found.second.empty() || found.second.back() != Value(kBsp))
                found.second.push_back(Value(kBsp));
            else
                EXPECT_NEAR(clock.Days(), Load(suite->View()->fullBlocks[0].time[kTime]), 0.5 / 86400) << "others see it live";
            found.first = (clock.Days() - start) * 86400;
            return found.first < 100;
        };
        Said("replay " + File(file) + " " + options, status);
        suite.reset();
        found.first = std::round(found.first);
        return found;
    };
    using Played = std::pair<double, std::vector<double>>;
    EXPECT_EQ((Played{40, {6, 7, kNoValue}}), replay(""));
    ExpectIn(console.written, {"live record"});
    EXPECT_FALSE(Held());
    const std::pair<const char*, Played> rows[] = {{"--speed 10", {4, {6, 7, kNoValue}}},
                                                   {"--speed 0.5", {80, {6, 7, kNoValue}}},
                                                   {"--from 01:00:20Z", {20, {7, kNoValue}}},
                                                   {"--from 2026-11-25T03:00:20+02:00", {20, {7, kNoValue}}},
                                                   {"--from +20s", {20, {7, kNoValue}}},
                                                   {"--from 2026-11-25T01:00:19Z", {20, {7, kNoValue}}},
                                                   {"--from 01:00:21Z --channels MagVar", {0, {kNoValue}}}};
    for (const auto& [options, found] : rows) EXPECT_EQ(found, replay(options)) << options;
    test.folder.Write("night.jsonl",
                      At("23:59:50", 1, "6") + At("2026-11-26T00:00:20", 1, "7") + At("2026-11-26T00:00:40", 1, "null"));
    const std::tuple<int, const char*, Played> nights[] = {{0, "00:00:10", {20, {7, kNoValue}}},
                                                           {0, "23:59:30", {0, {kNoValue}}},
                                                           {-60, "01:00:10", {20, {7, kNoValue}}},
                                                           {300, "19:00:10", {20, {7, kNoValue}}},
                                                           {-60, "00:00:10Z", {20, {7, kNoValue}}}};
    for (const auto& [bias, from, found] : nights) {
        zone.state = ZoneState{bias, 0, false};
        EXPECT_EQ(found, replay(std::string("--from ") + from, found.first > 0 ? 0 : 1, "night.jsonl")) << from << " by " << bias;
    }
    each = [&, looks = 0]() mutable {
        if (!suite) StartSuite();
        return ++looks < 3;
    };
    Said("replay " + File("two.jsonl") + " --from 01:00:20Z");
    EXPECT_EQ(9, Value(kMagVar)) << "which stood then";
    suite.reset();
    each = [&, looks = 0]() mutable {
        if (!suite) StartSuite();
        if (++looks == 3) clock.AdvanceMs(60'000);
        return looks < 9;
    };
    Said("replay " + File("two.jsonl"));
    EXPECT_EQ(6, Value(kBsp)) << "a machine that slept plays on where it was";
    suite.reset();
    EXPECT_EQ(100, replay("--loop --speed 2").first);
    replay("--from 01:01Z", 1);
    ExpectIn(console.written, {"ends before 01:01Z"});
    ExpectSaid(2, {{"replay f --from noon", {"--from must be"}}, {"replay f --speed 0", {"--speed"}}});
    each = [&] {
        StartSuite();
        AskToClose();
        return true;
    };
    Said("replay " + File("two.jsonl"));
    EXPECT_EQ(9, Value(kMagVar));
    EXPECT_EQ(6, Value(kBsp)) << "it has ended at once";
    ExpectIn(Said("replay " + File("two.jsonl"), 1), {"asked to close"});
}

// Keys at a terminal, typed when so many seconds have passed: what the boat's speed is then, a line for each second of the
// recording.
TEST_F(RecordTest, ReplayIsLedByKeys) {
    std::string lines;
    for (int i = 0; i < 300; ++i) lines += At(Printed("01:%02d:%02d", i / 60, i % 60), 1, std::to_string(i));
    test.folder.Write("race", lines);
    console.size = ConsoleSize{100, 10};
    const auto played = [&](std::map<int, std::u32string> keys, double seconds) {
        const double start = clock.Days();
        double last = kNoValue;
        each = [&] {
            if (!suite) StartSuite();
            const double passed = (clock.Days() - start) * 86400;
            for (auto& [at, typed] : keys) {
                if (passed >= at) console.keys += std::exchange(typed, U"");
            }
            last = Value(kBsp);
            return passed < seconds;
        };
        Said("replay " + File("race"));
        suite.reset();
        return last;
    };
    const std::u32string left{Key::kLeft}, right{Key::kRight}, up{Key::kUp}, down{Key::kDown};
    EXPECT_NEAR(10, played({}, 10), 1);
    ExpectIn(console.pictures.back(), {"REPLAY of ", "recorded at  2026-11-25T", "% of the file", "as it was"});
    EXPECT_NEAR(5, played({{5, U" "}}, 15), 1);
    ExpectIn(console.pictures.back(), {"paused"});
    EXPECT_NEAR(10, played({{5, U" "}, {10, U" "}}, 15), 1);
    EXPECT_NEAR(30, played({{0, U"]]"}}, 7.5), 3);
    EXPECT_NEAR(5, played({{0, U"["}}, 10), 1);
    EXPECT_NEAR(90, played({{5, right + up}}, 20), 5);
    EXPECT_NEAR(40, played({{5, up}, {10, left + left + left}}, 10.5), 6);
    EXPECT_NEAR(20, played({{5, up}, {10, down}}, 20), 5);
    const double start = clock.Days();
    played({{3, U"q"}}, 100);
    EXPECT_NEAR(3, (clock.Days() - start) * 86400, 1);
    EXPECT_FALSE(console.screenTaken);
    console.size.reset();
}

TEST_F(RecordTest, ReplayKeepsOutOfTheBridgesWay) {
    test.folder.Write("long.jsonl", At("01:00:00", 1, "6") + At("01:00:50", 1, "7"));
    StartSuite();
    std::optional<RunningBridge> bridge(test);
    each = [] { return true; };
    ExpectIn(Said("replay " + File("long.jsonl"), 1), {"is running", "--into"});
    EXPECT_EQ(kNoValue, Value(kBsp));
    Said("replay " + File("long.jsonl") + " --into");
    EXPECT_EQ(7, Value(kBsp));
    bridge.reset();
    each = [&] { return bridge ? true : (bridge.emplace(test), true); };
    ExpectIn(Said("replay " + File("long.jsonl"), 1), {"has been started"});
    EXPECT_EQ(6, Value(kBsp));

    // What decides is its name, not what it tells, and a name that can't be looked at may be taken.
    each = [] { return true; };
    bridge.reset();
    const auto silent = SystemOf(test.Arguments());
    EXPECT_TRUE(silent->GetInstance().Claim(kBridgeName));
    const auto unfinished = silent->GetStatusBoard().Post(kBridgeName, 12352);
    EXPECT_TRUE(unfinished && !ReadBridgeStatus(*this)) << "its version comes last";
    ExpectIn(Said("replay " + File("long.jsonl"), 1), {"is running"});
    EXPECT_EQ(std::string::npos, Said("get aws", 1).find("not running"));
    UnseenName unseen;
    instance = &unseen;
    ExpectIn(Said("replay " + File("long.jsonl"), 1), {"can't be seen", "it is a link; remove it", "--into"});
    ExpectIn(Said("get aws", 1), {"can't be seen: it is a link; remove it"});
    EXPECT_EQ(6, Value(kBsp));
}

TEST_F(RecordTest, ReplayTakesNmeaLogsAndRefusesWhatIsNone) {
    StartSuite();
    each = [] { return true; };
    test.folder.Write("log.nmea",
                      "garbage\n$IIVHW,,T,,M,5.00,N,,K\n$GPRMC,120000,A,5000.00,N,00100.00,W,6.0,90.0,251126,10.0,E\n"
                      "$IIHDT,100.0,T\n$IIDBT,32.808,f,,M,,F\n$IIXDR,A,-12.0,D,HEEL\n$IIVHW,,T,,M,9.99,N*00\n"
                      "$GPRMC,120008,A,5000.00,N,00100.00,W,7.0,90.0,251126,10.0,E\n");
    const double start = clock.Days();
    ExpectIn(Said("replay " + File("log.nmea")),
             {"log.nmea: 8 lines, of which 2 (25.0 %) are broken\n  used: DBT 1, HDT 1, RMC 2, VHW 1, XDR 1\n"});
    EXPECT_NEAR(8, (clock.Days() - start) * 86400, 0.2);
    Said("replay " + File("log.nmea") + " --from 12:00:05Z");
    EXPECT_NEAR(8, (clock.Days() - start) * 86400, 0.4) << "from its last second on, though it begins without a clock";
    const std::pair<ChannelId, double> rows[] = {{kBsp, 5},  {kHdg, 90}, {kMagVar, 10}, {kLat, 50},  {kSog, 7},
                                                 {kCog, 80}, {kLon, -1}, {kDepth, 10},  {kHeel, -12}};
    for (const auto& [channel, value] : rows) EXPECT_NEAR(value, Value(channel), 1e-3) << channel;
    test.folder.Write("broken", At("01:00:00", 1, "3") + "{\"id\":\"\x1B[2J\"}\n");
    test.folder.Write("binary", std::string("\0\xFF$\n\x1B", 5));
    test.folder.Write("empty", "");
    test.folder.Write("header", "{\"format\":\"halyrig-record\",\"version\":1}\n");
    const std::pair<const char*, const char*> faults[] = {{"broken", "line 2: it is no JSON"},
                                                          {"binary", "line 1: it is neither"},
                                                          {"empty", "neither"},
                                                          {"header", "no value"},
                                                          {"none", "can't be read"}};
    for (const auto& [file, fault] : faults) ExpectIn(Said("replay " + File(file), 1), {file, fault});
    EXPECT_EQ(3, Value(kBsp)) << "what stands above a broken line";
}

}  // namespace
}  // namespace twr::testing
