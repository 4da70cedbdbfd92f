// SPDX-License-Identifier: MIT
#include <atomic>
#include <chrono>
#include <filesystem>
#include <future>
#include <thread>

#include "base/numbers.h"
#include "halyrigctl/recordings/day_files.h"
#include "halyrigctl/transcript.h"
#include "status/bridge_status.h"
#include "streams/iso_time.h"
#include "streams/recording.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

struct UnseenName : Instance {
    bool Claim(std::u16string_view) override { return true; }
    NameLook Look(std::u16string_view) const override { return {NameLook::kUnknown, "it is a link; remove it"}; }
    void RaiseOther(std::u16string_view) override {}
};

struct RecordTest : SceneTest {
    RecordTest() {
        test.folder.Write("ProgramData/any", "");
        late = kLate;
        console.goOn = [this] { return Step(), each(); };
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
    double Value(ChannelId channel) {
        double value = 0;
        return suite->GetChannel(channel, value, 0, false, true, false) ? value : kNoValue;
    }

    bool HasSaid(const char* part) const { return console.written.find(part) != std::string::npos; }

    static constexpr std::int64_t kLate = 70;  // in ticks, so that no age limit falls onto a look
    std::function<bool()> each = [] { return false; };
};

// The bridge publishes ten times a second, whatever a look takes.
TEST_F(RecordTest, LooksOnABeatThatSeesEachTickOfTheBridge) {
    StartSuite();
    late += 300'000;  // 30 ms
    int ticks = 0;
    const double start = clock.Days();
    Record(File("beat") + " --channels BSP", 60, [&](int) {
        if ((clock.Days() - start) * 864000 > ticks) Publish(kBsp, ++ticks % 30);
    });
    EXPECT_NEAR(600, ticks, 1);
    EXPECT_NEAR(ticks, static_cast<int>(Read("beat").size()), 1) << "the last may come after the last look";
    late = kLate;
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
    files = &fake;
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

TEST_F(RecordTest, AFileThatIsTakenAwayIsFollowedByOneThatCanBePlayedAlone) {
    StartSuite({{kMkLat, 50.0}});
    bool taken = false;
    int followed = 0;  // looks
    Record(File("race"), 1e6, [&](int look) {
        Publish(kBsp, 1 + look % 20);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));  // as above
        std::error_code refused;
        if (look == 20) taken = std::filesystem::remove(test.folder.Path() / "race", refused);
        followed += HasSaid("was removed, renamed or replaced");
        if ((look >= 20 && !taken) || followed == 20 || look == 1'000'000) clock.AdvanceMs(2'000'000'000);
    });
    if (!taken) GTEST_SKIP() << "this system takes no file away from who writes it";
    ASSERT_EQ(20, followed) << console.written;
    EXPECT_EQ(1, CountOf(kMkLat, test.folder.File("race-2")));
}

// A file a day, of which the oldest are removed, and nothing else; not into the last of the disk's room.
TEST_F(RecordTest, RecordsByItselfAndKeepsWhatIsWanted) {
    const std::string at = "ProgramData/Tidewright/recordings/";
    const char* const old[] = {"halyrig-20261114.jsonl.gz",    "halyrig-20261116.jsonl.gz", "halyrig-20261116-2.jsonl.gz",
                               "halyrig-20261116-10.jsonl.gz", "halyrig-2026111.jsonl.gz",  "halyrig-20261001-x.jsonl.gz",
                               "halyrig-20261399.jsonl.gz",    "race-20260101.jsonl.gz"};
    StartSuite();
    clock.AdvanceMs(12 * 3'600'000);
    std::vector<std::string> begun;
    const auto left = [&](const std::string& keep) {
        begun.push_back(IsoTime(clock.Days()));
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
    const auto writtenBefore = [&](int seconds, const char* number = "-4") {
        const std::chrono::nanoseconds then((clock.ticks - seconds * 10'000'000LL) * 100);
        const auto path = test.folder.Path() / (at + "halyrig-20261119" + number + ".jsonl.gz");
        std::filesystem::last_write_time(path,
                                         std::chrono::file_clock::from_sys(std::chrono::sys_time<std::chrono::nanoseconds>(then)));
    };
    writtenBefore(60);
    ExpectIn(Said("check", 1), {"recording    runs, but nothing is written since 2026-11-19T"});
    writtenBefore(1);
    writtenBefore(3600, "-2");  // after which there was a break
    ExpectIn(Said("check", 1),
             {("recording    runs since " + begun[2].substr(0, 19)).c_str(), "halyrig-20261119-4.jsonl.gz, ", " GiB left"});
    ExpectIn(Said("check --json", 1), {R"("recording":{"running":true,"file":")", R"("since":"2026-11-19T)", R"("room":)"});
    others.reset();
    const std::string until = "2026-11-19T12:00:1";  // a file system's time may be a little earlier than it was given
    clock.AdvanceMs(3'600'000);
    ExpectIn(Said("check", 1),
             {("recording    none now; the last from " + begun[2].substr(0, 19)).c_str(), (" to " + until).c_str()});
    ExpectIn(Said("check --json", 1), {(R"("until":")" + until).c_str()});
    const std::u16string folder = test.folder.File("ProgramData/Tidewright/recordings");
    const auto current = Core().files.List(folder, u"halyrig-20261119*").front();
    DayFiles(Core().files, folder, {.bytes = 1}).Tend(current, 46345);
    EXPECT_EQ(std::vector{current}, Core().files.List(folder, u"halyrig-20261119*")) << "that which grows stays";
    each = [&, looks = 0]() mutable {
        Publish(kBsp, ++looks % 20);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return Core().files.List(folder, u"halyrig-20261119*").size() < 3 && looks < 100'000;
    };
    Said("record --max-size 1");
    EXPECT_EQ(3u, Core().files.List(folder, u"halyrig-20261119*").size());
    FakeFiles full;
    files = &full;
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
    files = &hanging;
    StartSuite({{kMkLat, 50.0}});
    int full = 0, told = 0;
    const std::string said = Record("log --boat 0", 1e6, [&](int look) {
        if (full == 0 && HasSaid("is lost until it does")) {
            full = look;
            suite->SetChannel(kMkLat, 0, kNoValue, 0.0);
            Publish(kMkLon, -1.0);
        }
        if (full > 0 && look == full + 20) hanging.works.set_value(true);
        if (full > 0 && look > full + 20) std::this_thread::yield();
        suite->StampTime();
        if (full > 0 && HasSaid("the recording tells so") && ++told == 5) return clock.AdvanceMs(2'000'000'000);  // to the end
        for (ChannelId channel = kAwa; channel < kChannelCount && look % 2 == 0 && full == 0; ++channel) {
            if (channel != kMkLat && channel != kMkLon) Publish(channel, 1 + look / 1024.0);
        }
    });
    for (const char* once : {"is lost until it does", "the recording tells so"}) EXPECT_EQ(said.find(once), said.rfind(once));
    EXPECT_LT(600, full) << "there is room for 30 seconds";
    EXPECT_NEAR(full / 2, CountOf(kAwa, u"log"), 2) << "of which all is kept";
    const std::string behind = hanging.files.at(0).bytes.substr(hanging.files[0].bytes.find(R"({"gap":{"from":")"));
    ExpectIn(behind, {R"("name":"Mk Lat","boat":0,"value":null)", R"("name":"Mk Lon","boat":0,"value":-1)"});
}

TEST_F(RecordTest, TellsAGapThatLastsToTheEnd) {
    HangingDisk hanging;
    files = &hanging;
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
    files = &hanging;
    StartSuite({{kBsp, 6.0}});
    int asked = 0;
    console.stillGoesOn = [&] { return ++asked, false; };
    each = [&] { return console.waited == 0 || (hanging.hangs.get_future().wait(), false); };
    ExpectIn(Said("record log", 1), {"log: the disk takes nothing; what was published after 2026-", " is lost"});
    EXPECT_EQ(1, asked) << "the user need not wait for the disk";
    hanging.works.set_value(false);  // the thread that was given up ends without the disk
}

TEST_F(RecordTest, ReplayKeepsOutOfTheBridgesWay) {
    test.folder.Write("long.jsonl", Lines(46350, "BSP=6") + Lines(46350 + 50 / kSecondsPerDay, "BSP=7"));
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
    ExpectIn(Said("check", 1), {"\nwhether the bridge is running can't be seen: it is a link"});
    EXPECT_EQ(6, Value(kBsp));
}

}  // namespace
}  // namespace twr::testing
