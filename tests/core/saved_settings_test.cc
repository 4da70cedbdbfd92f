#include "core/days.h"
#include "platform/paths.h"
#include "support/core_fixture.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

using R = RecordBytes;
constexpr std::u16string_view kKey = u"Software\\Tidewright\\core";

// A machine whose record is created by each test after its registry, the system's real one, has been filled.
class SavedSettingsTest : public ::testing::Test {
protected:
    void Save(std::u16string_view name, const RegistryValue& value) { ASSERT_TRUE(Registry().Write(kKey, name, value)); }
    void SaveText(std::u16string_view name, std::u16string_view text) { Save(name, StringValue(text)); }

    // An empty registry, and no record.
    void Clear() {
        core.reset();
        test = std::make_unique<TestSystem>();
    }

    RecordBytes Start() {
        const CoreServices fakes = machine.Services();
        core = std::make_unique<CCore>(
            CoreServices{fakes.clock, fakes.zone, fakes.memory, Registry(), fakes.files, fakes.xml, fakes.desktop});
        return RecordBytes(core->View());
    }

    twr::Registry& Registry() { return test->system->Core().registry; }

    std::unique_ptr<TestSystem> test = std::make_unique<TestSystem>();
    FakeMachine machine;
    std::unique_ptr<CCore> core;
    const std::u16string suite = JoinPath(u"/data", u"Tidewright");
};

TEST_F(SavedSettingsTest, WithoutAKeyTheDefaultsHold) {
    const RecordBytes record = Start();
    EXPECT_EQ(6, record.I32(R::SysInt(6))) << "the initial 7 is above its bound";
    EXPECT_EQ(1, record.I32(R::SysInt(4)));
    EXPECT_EQ(60, record.I32(R::SysInt(10)));
    EXPECT_EQ(15.85, record.F64(R::SysValue(0)));
    EXPECT_EQ(1, record.U8(R::SysFlag(3)));
    EXPECT_EQ(suite, record.Text(1068));
    EXPECT_EQ(JoinPath(JoinPath(suite, u"database"), u"Tidewright.db"), record.Text(548));
    EXPECT_EQ(JoinPath(suite, u"marks.xml"), record.Text(28));
    EXPECT_TRUE(machine.files.Exists(suite));
    EXPECT_TRUE(machine.files.Exists(JoinPath(suite, u"database")));
}

TEST_F(SavedSettingsTest, NumbersCountByTypeFormAndBound) {
    const RegistryValue cut = {kRegistryString, {'5', 0}};     // not terminated
    const RegistryValue odd = {kRegistryString, {'5', 0, 0}};  // no whole character
    const RegistryValue expandable = {kRegistryExpandString, {'5', 0, 0, 0}};
    const RegistryValue shortDword = {kRegistryDword, {1, 0}};
    const struct {
        std::u16string_view name;
        RegistryValue value;
        std::size_t offset;
        double stored;
    } rows[] = {
        {u"Sys_v0", StringValue(u"0.5"), R::SysValue(0), 1.0},
        {u"Sys_v0", StringValue(u" 12.25 m"), R::SysValue(0), 12.25},
        {u"Sys_v1", StringValue(u"abc"), R::SysValue(1), 15.8},
        {u"Sys_v1", StringValue(u""), R::SysValue(1), 15.8},
        {u"Sys_v1", DwordValue(3), R::SysValue(1), 15.8},
        {u"Sys_v1", cut, R::SysValue(1), 15.8},
        {u"Sys_v1", odd, R::SysValue(1), 15.8},
        {u"Sys_v1", expandable, R::SysValue(1), 5.0},
        {u"Sys_v1", StringValue(std::u16string(512, u'1')), R::SysValue(1), 15.8},
        {u"Sys_v15", StringValue(u"-1e3"), R::SysValue(15), -1000.0},
        {u"Sys_v16", StringValue(u"1"), R::SysValue(16), kNoValue},
        {u"Sys_b3", StringValue(u"0"), R::SysFlag(3), 1.0},
        {u"Sys_b3", DwordValue(0), R::SysFlag(3), 0.0},
        {u"Sys_b33", DwordValue(0x80000000), R::SysFlag(33), 1.0},
        {u"Sys_b24", shortDword, R::SysFlag(24), 0.0},
        {u"Sys_b34", DwordValue(1), R::SysFlag(34), 0.0},
        {u"Sys_b35", DwordValue(1), R::SysFlag(35), 0.0},
        {u"Sys_i1", DwordValue(2), R::SysInt(1), 2.0},
        {u"Sys_i1", DwordValue(9), R::SysInt(1), 2.0},
        {u"Sys_i2", DwordValue(0xFFFFFFFF), R::SysInt(2), 0.0},
        {u"Sys_i6", DwordValue(3), R::SysInt(6), 3.0},
        {u"Sys_i10", DwordValue(0xFFFFFFFF), R::SysInt(10), -1.0},
        {u"Sys_i11", DwordValue(5), R::SysInt(11), 0.0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "offset " << row.offset << " to be " << row.stored);
        Clear();
        Save(row.name, row.value);
        const RecordBytes record = Start();
        const double stored = row.offset < R::SysInt(0)    ? record.F64(row.offset)
                              : row.offset < R::SysFlag(0) ? record.I32(row.offset)
                                                           : record.U8(row.offset);
        EXPECT_EQ(row.stored, stored);
    }
}

TEST_F(SavedSettingsTest, PathsCountByExistenceAndLength) {
    machine.files.folders = {u"/elsewhere", std::u16string(300, u'x')};
    const struct {
        std::u16string_view name, saved;
        std::size_t offset;
        std::u16string stored;
    } rows[] = {
        {u"DataFolder", u"/elsewhere", 1068, u"/elsewhere"},
        {u"DataFolder", u"/missing", 1068, suite},
        {u"DataFolder", u"", 1068, suite},
        {u"DataFolder", machine.files.folders[1], 1068, std::u16string(259, u'x')},
        {u"Database2", u"/no/such.file", 548, u"/no/such.file"},
        {u"Database2", u"", 548, u""},
        {u"MarksXml", u"/m.xml", 28, u"/m.xml"},
        {u"MarksXml", u"", 28, u""},
    };
    const auto folders = machine.files.folders;
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "offset " << row.offset << ", saved text of " << row.saved.size());
        Clear();
        machine.files.folders = folders;
        SaveText(row.name, row.saved);
        EXPECT_TRUE(row.stored == Start().Text(row.offset));
        EXPECT_FALSE(machine.files.Exists(u"/missing"));
    }
}

TEST_F(SavedSettingsTest, TheLogsArePublished) {
    SaveText(u"LogBsp", u"1234.5");
    const RecordBytes record = Start();
    EXPECT_EQ(1234.5, record.F64(R::Value(0, kLogBsp)));
    EXPECT_EQ(1, record.U8(R::Channel(kLogBsp) + 2));
    EXPECT_EQ(kNoValue, record.F64(R::Value(0, kLogSog)));
    EXPECT_EQ(machine.clock.Days(), record.F64(R::Time(0, kLogSog))) << "stamped, though without a value";
    EXPECT_EQ(0, record.U8(R::Channel(kLogSog) + 2));
}

TEST(SavedSettings, WithoutAKeyOneIsCreated) {
    FakeMachine machine;
    const CCore core(machine.Services());
    EXPECT_TRUE(machine.registry.keys.contains(u"software\\tidewright\\core"));
}

TEST(SavedSettings, WithoutARegistryNothingIsLoaded) {
    FakeMachine machine;
    machine.registry.unavailable = true;
    const CCore core(machine.Services());
    const RecordBytes record(core.View());
    EXPECT_EQ(7, record.I32(R::SysInt(6)));
    EXPECT_EQ(0, record.I32(R::SysInt(4)));
    EXPECT_EQ(u"", record.Text(548));
    EXPECT_EQ(u"", record.Text(28));
    EXPECT_EQ(0.0, record.F64(R::Time(0, kLogBsp)));
    EXPECT_EQ(JoinPath(u"/data", u"Tidewright"), record.Text(1068)) << "the configuration files have asked for it";
}

}  // namespace
}  // namespace twr::testing
