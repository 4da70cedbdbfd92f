// SPDX-License-Identifier: MIT
// The record's life: created, filled by what the machine has saved, joined, and left alone where there is none.

#include "base/wide_text.h"
#include "core/initialise.h"
#include "platform/files.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;

struct AttachTest : CoreTest {
    // A new record, after the registry has been given this value alone.
    void Start(std::u16string_view name, const RegistryValue& value) {
        machine.registry.keys.clear();
        machine.registry.Write(u"Software\\Tidewright\\core", name, value);
        Restart();
    }
    void Restart() {
        core.reset();
        core = std::make_unique<CCore>(machine.Services());
        record = R(core->View());
    }
    CoreRecord* Guest() { return CCore(machine.Services(), Attachment::kOpenOnly).View(); }

    const std::u16string suite = JoinPath(u"/data", u"Tidewright");
};

TEST_F(AttachTest, ALaterProcessTakesTheRecordAsItFindsItAndTheLastHolderEndsIt) {
    Publish(kBsp, 7.5);
    auto second = std::make_unique<CCore>(machine.Services());
    core.reset();
    EXPECT_EQ(7.5, second->View()->fullBlocks[0].value[kBsp]);
    second.reset();
    Restart();
    EXPECT_EQ(kNoValue, Own(kBsp)) << "created again";
}

TEST_F(AttachTest, AGuestWaitsForTheEndOfTheFilling) {
    double& stamp = core->View()->fullBlocks[0].time[kTime];
    const double filled = std::exchange(stamp, 0.0);
    EXPECT_EQ(nullptr, Guest());
    stamp = filled;
    const std::uint8_t mark = std::exchange(core->View()->filledMark, 0);
    EXPECT_EQ(nullptr, Guest()) << "another has stamped it meanwhile";
    core->View()->filledMark = mark;
    EXPECT_EQ(core->View(), Guest());
    int early = 0;  // looks of the creator for what is saved
    machine.files.folders = {u"/elsewhere"};
    machine.files.onLook = [&] {
        CoreRecord* const seen = Guest();
        early += !seen;
        EXPECT_TRUE(!seen || R(seen).Text(1068) == u"/elsewhere");
    };
    Start(u"DataFolder", StringValue(u"/elsewhere"));
    EXPECT_LT(0, early);
}

TEST_F(AttachTest, WithoutSharedMemoryTheUserIsToldAndEveryOperationIsHarmless) {
    for (const bool create : {true, false}) {
        FakeMachine broken;
        (create ? broken.memory.failCreate : broken.memory.failMap) = true;
        bool quitAtTheBox = true;
        broken.desktop.answer = [&](const auto&) { return quitAtTheBox = broken.desktop.quit, BoxAnswer::kOk; };
        CCore none(broken.Services());
        const std::string message = create ? "Unable to create shared memory map" : "Unable to map shared memory";
        ASSERT_EQ(1u, broken.desktop.boxes.size());
        EXPECT_EQ(message, ToUtf8(broken.desktop.boxes[0].text));
        EXPECT_TRUE(!quitAtTheBox && broken.desktop.quit);
        EXPECT_TRUE(broken.files.Exists(JoinPath(u"", u"log_system_19Nov2026.log"))) << "the log of the day";

        double value = 1.0;
        EXPECT_FALSE(none.View() || none.QuitRequested() || none.SetChannel(kBsp, 0, 1.0, 0) || none.SetOwnChannel(kBsp, 1.0, 0));
        EXPECT_FALSE(none.SetSystemValue(36, 1.0) || none.LoadBoatsFile() || none.LoadChannelsFile());
        EXPECT_FALSE(none.GetChannel(kBsp, value, 0, false, true, true) || none.CalibrationLookup(2, value, 5.0));
        EXPECT_FALSE(none.GetFreshChannel(kBsp, value = 1.0, 0, false, true, kNoValue) || value != kNoValue);
        none.NormaliseValue(kTwd, value = 400.0);
        EXPECT_EQ(kNoValue, value) << "no wrap without a record, but the range holds";
        none.SetSystemInt(1, 1), none.StampTime(), none.SetMarksPath(u"x"), none.CheckDatabasePath(), none.LoadAlternatesFile();
        EXPECT_TRUE(none.GetDataFolder(u"config").empty() && none.GetDatabasePath().empty() && broken.files.folders.empty());
        for (const double angle : {none.ToDisplayUnits(kTwd, 10.0, 5.0), none.ApplyCalibration(kBsp, 10.0)}) EXPECT_EQ(10.0, angle);
        EXPECT_EQ(kNoValue, none.ApplyVariation(10.0, 0));
        EXPECT_EQ(kBsp, none.ResolveAlternate(kBsp, true));
        EXPECT_EQ(u"- -ALT 019-Nov-2026 12:00:00", none.ChannelText(kBsp, 7.0) + FromBytes(none.ChannelFormat(kBsp)) +
                                                       none.RemoteLabel(kAlt0) + none.TimeText(46345.5));
    }
}

// As a reader sees it that knows nothing but offsets; whatever is not named here is 0.
TEST(InitialRecord, IsTheSameByteForByte) {
    std::vector<double> memory(R::kSize / sizeof(double)), expected(memory);
    InitialiseRecord(*reinterpret_cast<CoreRecord*>(memory.data()));
    R actual(memory.data()), bytes(expected.data());
    const auto fill = [&](std::size_t at, std::size_t count, std::size_t step, auto value) {
        for (; count > 0; --count, at += step) bytes.Set(at, value);
    };
    for (const std::size_t gps : {2000, 2008, 2016}) fill(gps, 64, 48, kNoValue);
    for (std::size_t at = 5048; const char c : std::string("Tidewright suite.")) bytes.Set(at++, c);
    fill(5080, 90, 4, 32767);
    for (std::size_t i = 0; const double value : {15.85, 15.8, 4.4, 0., 3., 1., 1., 10., 5., 5., 5., 3.})
        bytes.SetValue(i++, value);
    fill(5568, 77, 8, kNoValue);
    bytes.SetInt(6, 7), bytes.SetInt(10, 60);
    for (const std::size_t flag : {1, 3, 7, 21, 40, 41, 42}) bytes.SetFlag(flag, true);
    for (const std::size_t logged :
         {0,  1,  2,  3,  4,   5,   6,   10,  11,  12,  13,  16,  17,  18,  19,  20,  22,  39,  41,  43,  47, 48,
          49, 50, 51, 60, 146, 161, 162, 163, 164, 165, 166, 167, 204, 205, 206, 207, 208, 256, 282, 283, 284}) {
        bytes.Set<std::uint8_t>(R::Channel(logged) + 3, 1);
    }
    for (const ChannelInfo& info : ChannelCatalogue()) bytes.Set<std::uint16_t>(R::Channel(info.id) + 6, info.prec);
    fill(51012, 100, 80, 32767), fill(51088, 100, 80, 0x90EE90);
    for (const std::size_t values : {62328, 75992}) fill(values, std::size_t{3} * 414, 8, kNoValue);
    for (std::size_t boat = 2; boat < 100; ++boat) fill(R::FarValue(boat, 0), std::size_t{2} * 34, 8, kNoValue);
    bytes.Set<std::uint8_t>(166624, 8), bytes.Set(166626, 32767), fill(166760, 2, 8, kNoValue);
    for (std::size_t at = 0; at < R::kSize && !HasFailure(); ++at) EXPECT_EQ(bytes.U8(at), actual.U8(at)) << "byte " << at;
}

TEST_F(AttachTest, WithoutSavedSettingsTheDefaultsHold) {
    EXPECT_TRUE(machine.registry.keys.contains(u"software\\tidewright\\core"));
    EXPECT_TRUE(record.I32(R::SysInt(6)) == 6 && record.I32(R::SysInt(4)) == 1) << "the initial 7 is above its bound";
    EXPECT_EQ(suite, record.Text(1068));
    EXPECT_EQ(JoinPath(JoinPath(suite, u"database"), u"Tidewright.db"), record.Text(548));
    EXPECT_EQ(JoinPath(suite, u"marks.xml"), record.Text(28));
    EXPECT_TRUE(machine.files.Exists(JoinPath(suite, u"database")));
    machine.registry.unavailable = true;
    Restart();
    EXPECT_TRUE(record.I32(R::SysInt(6)) == 7 && record.Text(548).empty() && OwnTime(kLogBsp) == 0.0) << "nothing is loaded";
    EXPECT_EQ(suite, record.Text(1068)) << "the configuration files have asked for it";
}

TEST_F(AttachTest, SavedNumbersCountByTypeFormAndBound) {
    const std::tuple<std::u16string_view, RegistryValue, std::size_t, double> rows[] = {
        {u"Sys_v0", StringValue(u" 12.25 m"), R::SysValue(0), 12.25},
        {u"Sys_v1", StringValue(u"abc"), R::SysValue(1), 15.8},
        {u"Sys_v1", {kRegistryString, {'5', 0}}, R::SysValue(1), 15.8},  // not terminated
        {u"Sys_v1", {kRegistryString, {'5', 0, 0}}, R::SysValue(1), 15.8},
        {u"Sys_v1", {kRegistryString, {'5', 0, 0, 0, '6', 0, 0, 0}}, R::SysValue(1), 5.0},
        {u"Sys_v1", {kRegistryString, {}}, R::SysValue(1), 15.8},
        {u"Sys_v1", StringValue(std::u16string(510, u' ') + u'5'), R::SysValue(1), 5.0},
        {u"Sys_v1", {kRegistryExpandString, {'5', 0, 0, 0}}, R::SysValue(1), 5.0},
        {u"Sys_v1", StringValue(std::u16string(512, u'1')), R::SysValue(1), 15.8},
        {u"Sys_v15", StringValue(u"-1e3"), R::SysValue(15), -1000.0},
        {u"Sys_b3", StringValue(u"0"), R::SysFlag(3), 1.0},
        {u"Sys_b3", {kRegistryDword, {0, 0, 0}}, R::SysFlag(3), 1.0},
        {u"Sys_b3", {kRegistryBinary, {0, 0, 0, 0}}, R::SysFlag(3), 1.0},
        {u"Sys_b3", DwordValue(0), R::SysFlag(3), 0.0},
        {u"Sys_b33", DwordValue(0x80000000), R::SysFlag(33), 1.0},
        {u"Sys_b34", DwordValue(1), R::SysFlag(34), 0.0},
        {u"Sys_i1", DwordValue(9), R::SysInt(1), 2.0},
        {u"Sys_i10", DwordValue(0xFFFFFFFF), R::SysInt(10), -1.0},
        {u"LogBsp", StringValue(u"1234.5"), R::Value(0, kLogBsp), 1234.5},
        {u"LogBsp", StringValue(u"1234.5"), R::Value(0, kLogSog), kNoValue},
        {u"LogBsp", StringValue(u"1234.5"), R::Time(0, kLogSog), machine.clock.Days()},  // though without a value
    };
    for (const auto& [name, value, offset, stored] : rows) {
        Start(name, value);
        const bool isInt = name.starts_with(u"Sys_i"), isFlag = name.starts_with(u"Sys_b");
        EXPECT_EQ(stored, isInt    ? record.I32(offset)
                          : isFlag ? record.U8(offset)
                                   : record.F64(offset))
            << ToUtf8(name) << " at " << offset;
    }
}

TEST_F(AttachTest, SavedPathsCountByExistenceAndLength) {
    const std::u16string longFolder(300, u'x');
    const std::tuple<std::u16string_view, std::u16string_view, std::size_t, std::u16string> rows[] = {
        {u"DataFolder", u"/elsewhere", 1068, u"/elsewhere"},
        {u"DataFolder", u"/missing", 1068, suite},
        {u"DataFolder", longFolder, 1068, std::u16string(259, u'x')},
        {u"Database2", u"/no/such.file", 548, u"/no/such.file"},
        {u"MarksXml", u"/m.xml", 28, u"/m.xml"},
        {u"MarksXml", u"", 28, u""}};
    machine.files.folders = {u"/elsewhere", longFolder};
    for (const auto& [name, saved, offset, stored] : rows) {
        Start(name, StringValue(saved));
        EXPECT_EQ(stored, record.Text(offset)) << ToUtf8(name) << " of " << saved.size();
    }
}

}  // namespace
}  // namespace twr::testing
