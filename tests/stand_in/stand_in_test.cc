// SPDX-License-Identifier: MIT
// The stand-in as a program that loads it meets it: its clock, its settings, its displays, and at last the built library itself.
#include "stand_in/stand_in.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/files.h"
#include "platform/library.h"
#include "stand_in/sailing_simulation.h"
#include "stand_in/variables.h"
#include "support/fakes.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

constexpr std::u16string_view kFolder = u"/deckman";
constexpr std::int32_t kBspNumber = 1;
constexpr std::int32_t kTimerNumber = 50;

struct StandInTest : ::testing::Test {
    StandIn Load() { return StandIn({clock, files, memory}, kFolder); }

    FakeClock clock;
    FakeFiles files;
    FakeMemory memory;
};

TEST_F(StandInTest, MovesWithTheClock) {
    StandIn standIn = Load();
    // Milliseconds on, back for a clock that is set, and a whole day of sleep.
    const std::pair<int, float> steps[] = {{0, 300.0F}, {5000, 295.0F}, {-3600000, 295.0F}, {1000, 294.0F}, {86400000, 284.0F}};
    for (const auto& [advanceMs, timer] : steps) {
        clock.AdvanceMs(advanceMs);
        EXPECT_EQ(timer, standIn.Read(kTimerNumber)) << advanceMs;
    }
}

TEST_F(StandInTest, ReadsOneMomentWithinATickAndLosesNoTime) {
    files.files = {{JoinPath(kFolder, u"simulation.txt"), "speed=100\n"}};
    StandIn standIn = Load();
    const float before = standIn.Read(kBspNumber);
    for (int ms = 1; ms <= 1000; ++ms) {
        clock.AdvanceMs(1);
        const float now = standIn.Read(kBspNumber);
        EXPECT_TRUE(ms >= 20 || now == before) << ms;
    }
    SailingSimulation simulation(1, 300);
    EXPECT_NE(simulation.Now()[Quantity::kTws], SailingSimulation(2, 300).Now()[Quantity::kTws]) << "another day";
    simulation.Advance(100.0);
    for (const Variable& of : Variables()) EXPECT_EQ(simulation.Now()[of.quantity], standIn.Read(of.number)) << of.name;
    EXPECT_NE(before, standIn.Read(kBspNumber));
}

TEST_F(StandInTest, FollowsItsSettings) {
    const std::string recorded = "$GPZDA,120000,\n$GPZDA,120010,\n$IIVHW,,T,,M,6.5,N,,K\n";
    const float wind = SailingSimulation(UINT64_MAX, 300).Now()[Quantity::kTws];
    // value: after this time
    const std::tuple<std::string, std::string, int, std::int32_t, float> rows[] = {
        {"", "", 1000, kTimerNumber, 299.0F},
        {"speed=10\nstart_lead = 60\n", "", 1000, kTimerNumber, 50.0F},
        {"# a demonstration\r\n speed = 2.5 \r\nseed=9\r\n", "", 2000, kTimerNumber, 295.0F},
        {"speed=0\nspeed=1000\nspeed=-1\nspeed=x\nspeed=\nSPEED=10\nspeed\n=\n", "", 1000, kTimerNumber, 299.0F},
        {"start_lead=0\nstart_lead=99999\n", "", 1000, kTimerNumber, 299.0F},
        {"seed=18446744073709551615\n", "", 0, 5, wind},
        {"speed=10\n", recorded, 900, kBspNumber, kAbsent},
        {"speed=10\n", recorded, 1000, kBspNumber, 6.5F}};
    for (const auto& [settings, recording, ms, variable, value] : rows) {
        files.files = {{JoinPath(kFolder, u"simulation.txt"), settings}};
        if (!recording.empty()) files.files.push_back({JoinPath(kFolder, u"recording.nmea"), recording});
        StandIn standIn = Load();
        clock.AdvanceMs(ms);
        EXPECT_EQ(value, standIn.Read(variable)) << settings;
    }
}

TEST(Displays, ShowWhatWasSentLast) {
    FakeMemory memory;
    std::optional<DisplayWriter> writer(std::in_place, memory, kFolder);
    const DisplayReader reader(memory, kFolder);
    writer->ShowName(1, "BSP");
    for (const char* text : {"12.3", "7.25"}) writer->ShowValue(1, text);
    writer->ShowValue(32, "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    const std::tuple<std::int32_t, const char*, const char*, std::uint32_t> rows[] = {
        {1, "7.25", "BSP", 2}, {32, "ABCDEFGHIJKLMNO", "", 1}, {2, "", "", 0},        {0, "", "", 0}, {-1, "", "", 0},
        {33, "", "", 0},       {INT32_MAX, "", "", 0},         {INT32_MIN, "", "", 0}};
    for (const auto& [remote, value, name, updates] : rows) {
        if (updates == 0 && remote != 2) writer->ShowValue(remote, "X");
        EXPECT_EQ(value, reader.Value(remote).text) << remote;
        EXPECT_EQ(updates, reader.Value(remote).updates) << remote;
        EXPECT_EQ(name, reader.Name(remote).text) << remote;
    }
    // A viewer keeps the block when the library goes and comes again.
    writer.reset();
    EXPECT_EQ("7.25", reader.Value(1).text);
    writer.emplace(memory, kFolder);
    EXPECT_EQ("", reader.Value(1).text + reader.Name(1).text);
    // A writer that ended in the middle of a text leaves an odd sequence and words without an end.
    const auto block = memory.OpenExisting(DisplayBlockName(kFolder), sizeof(DisplayBlock));
    auto* bytes = static_cast<char*>(block->Data());
    std::memset(bytes, 'Z', 40);
    bytes[0] = 7;
    EXPECT_EQ(std::string(15, 'Z'), reader.Value(1).text);
    writer->ShowValue(1, "1");
    EXPECT_EQ("1", reader.Value(1).text);
    EXPECT_EQ(0, bytes[0] % 2) << "whole again";
}

TEST(Displays, AreNamedForTheFolderAndDoWithoutMemory) {
    EXPECT_EQ(u"ShDfW2_089be207b544f1e4", DisplayBlockName(u"a"));
    EXPECT_EQ(DisplayBlockName(kFolder), DisplayBlockName(u"/deckman/"));
    EXPECT_NE(DisplayBlockName(u"\u0141"), DisplayBlockName(u"A"));
    FakeMemory memory;
    memory.failMap = true;
    DisplayWriter(memory, u"/unmapped").ShowValue(1, "X");
    memory.failCreate = true;
    DisplayWriter(memory, u"/missing").ShowValue(1, "X");
}

TEST(BuiltLibrary, ReadsAndShowsUntilItIsFreed) {
    const TempFolder folder;
    const std::filesystem::path built(STAND_IN_LIBRARY);
    std::filesystem::copy_file(built, folder.Path() / built.filename());
    folder.Write("recording.nmea", "$GPGLL,6005.071,N,02332.346,W,120000,A\n$IIVHW,,T,,M,6.5,N,,K\n");
    const auto system = MakeSystem(UserRoots());
    auto library = system->GetLibraries().Load(folder.File(built.filename().string()));
    ASSERT_TRUE(library);
    using TextFunction = void(TWR_EXPORT_CALL*)(std::uint32_t*, std::int32_t, const char*);
    const auto read = reinterpret_cast<void(TWR_EXPORT_CALL*)(std::int32_t, float*)>(library->Find("Usr_Read"));
    const auto position = reinterpret_cast<void(TWR_EXPORT_CALL*)(float*, float*)>(library->Find("Usr_GetPosition"));
    const auto showData = reinterpret_cast<TextFunction>(library->Find("Usr_SetISData"));
    const auto showName = reinterpret_cast<TextFunction>(library->Find("Usr_SetISName"));
    ASSERT_TRUE(read && position && showData && showName);

    float value = 0.0F, latitude = 0.0F, longitude = 0.0F;
    read(1, &value);
    EXPECT_EQ(6.5F, value);
    read(-5, &value);
    EXPECT_EQ(32767.0F, value);
    position(&latitude, &longitude);
    EXPECT_NEAR(60.08452, latitude, 1e-4);
    EXPECT_NEAR(-23.5391, longitude, 1e-4);
    showData(nullptr, 1, "7.25");
    showName(nullptr, 1, "BSP");

    // Odd arguments do no harm.
    read(1, nullptr);
    position(nullptr, nullptr);
    for (const std::int32_t remote : {0, 1, -1, 33, INT32_MAX, INT32_MIN}) {
        showData(nullptr, remote, nullptr);
        showName(nullptr, remote, nullptr);
        if (remote != 1) showData(nullptr, remote, "9");
    }

    const auto displays = [&] {
        return DisplayReader(system->Core().memory, std::filesystem::canonical(folder.Path()).u16string());
    };
    EXPECT_EQ("7.25", displays().Value(1).text);
    EXPECT_EQ("BSP", displays().Name(1).text);
    library.reset();
    EXPECT_EQ(kPathSeparator == u'/', displays().Found()) << "on Linux a released library stays mapped";
}

}  // namespace
}  // namespace twr::testing
