#include "platform/paths.h"
#include "support/core_fixture.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

using R = RecordBytes;

class SystemValuesTest : public CoreTest {};

TEST_F(SystemValuesTest, AreStoredWithinTheirBounds) {
    const struct {
        std::uint32_t index;
        double value, stored;
    } values[] = {{0, 0.5, 1.0}, {0, 30.0, 30.0}, {5, 0.001, 0.01}, {5, 20.0, 10.0},
                  {5, 5.0, 5.0}, {1, -7.0, -7.0}, {92, 4.0, 4.0},   {7, kNoValue, kNoValue}};
    for (const auto& row : values) {
        EXPECT_TRUE(core->SetSystemValue(row.index, row.value));
        EXPECT_EQ(row.stored, record.F64(R::SysValue(row.index))) << row.index << " set to " << row.value;
    }
    EXPECT_FALSE(core->SetSystemValue(93, 1.0));
    EXPECT_FALSE(core->SetSystemValue(0xFFFFFFFF, 1.0));
    EXPECT_EQ(0, record.I32(R::SysInt(0))) << "what stands behind the values is as it was";

    const struct {
        std::uint32_t index;
        std::int32_t value, stored;
    } ints[] = {
        {0, -1, 0}, {0, 99, 99}, {1, 9, 2},   {1, 2, 2}, {2, 3, 2}, {3, 6, 5},    {4, 5, 5},    {5, 2, 1},
        {6, 7, 6},  {6, -7, 0},  {7, 99, 99}, {8, 4, 2}, {9, 5, 4}, {10, -1, -1}, {12, -9, -9},
    };
    for (const auto& row : ints) {
        core->SetSystemInt(row.index, row.value);
        EXPECT_EQ(row.stored, record.I32(R::SysInt(row.index))) << row.index << " set to " << row.value;
    }
    core->SetSystemInt(13, 1);
    EXPECT_EQ(0, record.U8(R::SysFlag(0))) << "what stands behind the ints is as it was";
}

TEST_F(SystemValuesTest, TheGunResetsTheStartOfTheOwnBoatOnly) {
    for (const BoatSlot boat : {0u, 1u}) Publish(kGunBlwLn, 0.25, boat);
    record.Set(R::Damped(0, kGunBlwLn), 0.25), record.Set(R::Aux(0, kGunBlwLn), 0.25);
    machine.clock.AdvanceMs(1000);
    EXPECT_TRUE(core->SetSystemValue(36, 46345.75));
    EXPECT_EQ(46345.75, record.F64(R::SysValue(36)));
    for (const std::size_t place : {R::Value(0, kGunBlwLn), R::Aux(0, kGunBlwLn), R::Damped(0, kGunBlwLn)}) {
        EXPECT_EQ(kNoValue, record.F64(place)) << place;
    }
    EXPECT_EQ(machine.clock.Days(), OwnTime(kGunBlwLn));
    EXPECT_EQ(machine.clock.Days(), Own(kTime));
    EXPECT_EQ(0.25, record.F64(R::Value(1, kGunBlwLn)));
}

// A record that is created by each test, after the system's real registry has been filled.
class SavedSettingsTest : public ::testing::Test {
protected:
    // An empty registry with this value.
    void Save(std::u16string_view name, const RegistryValue& value) {
        core.reset();
        test = std::make_unique<TestSystem>();
        ASSERT_TRUE(test->system->Core().registry.Write(u"Software\\Tidewright\\core", name, value));
    }

    RecordBytes Start() { return StartWith(test->system->Core().registry); }
    RecordBytes StartWith(Registry& registry) {
        const CoreServices fakes = machine.Services();
        core = std::make_unique<CCore>(
            CoreServices{fakes.clock, fakes.zone, fakes.memory, registry, fakes.files, fakes.xml, fakes.desktop});
        return RecordBytes(core->View());
    }

    std::unique_ptr<TestSystem> test;
    FakeMachine machine;
    std::unique_ptr<CCore> core;
    const std::u16string suite = JoinPath(u"/data", u"Tidewright");
};

TEST_F(SavedSettingsTest, WithoutAKeyItIsCreatedAndTheDefaultsHold) {
    const RecordBytes record = StartWith(machine.registry);
    EXPECT_TRUE(machine.registry.keys.contains(u"software\\tidewright\\core"));
    EXPECT_EQ(6, record.I32(R::SysInt(6))) << "the initial 7 is above its bound";
    EXPECT_EQ(1, record.I32(R::SysInt(4)));
    EXPECT_EQ(suite, record.Text(1068));
    EXPECT_EQ(JoinPath(JoinPath(suite, u"database"), u"Tidewright.db"), record.Text(548));
    EXPECT_EQ(JoinPath(suite, u"marks.xml"), record.Text(28));
    EXPECT_TRUE(machine.files.Exists(suite));
    EXPECT_TRUE(machine.files.Exists(JoinPath(suite, u"database")));
}

TEST_F(SavedSettingsTest, NumbersCountByTypeFormAndBound) {
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
        {u"Sys_v1", {kRegistryString, {'5', 0}}, R::SysValue(1), 15.8},     // not terminated
        {u"Sys_v1", {kRegistryString, {'5', 0, 0}}, R::SysValue(1), 15.8},  // no whole character
        {u"Sys_v1", {kRegistryExpandString, {'5', 0, 0, 0}}, R::SysValue(1), 5.0},
        {u"Sys_v1", StringValue(std::u16string(512, u'1')), R::SysValue(1), 15.8},
        {u"Sys_v15", StringValue(u"-1e3"), R::SysValue(15), -1000.0},
        {u"Sys_v16", StringValue(u"1"), R::SysValue(16), kNoValue},
        {u"Sys_b3", StringValue(u"0"), R::SysFlag(3), 1.0},
        {u"Sys_b3", DwordValue(0), R::SysFlag(3), 0.0},
        {u"Sys_b33", DwordValue(0x80000000), R::SysFlag(33), 1.0},
        {u"Sys_b24", {kRegistryDword, {1, 0}}, R::SysFlag(24), 0.0},
        {u"Sys_b34", DwordValue(1), R::SysFlag(34), 0.0},
        {u"Sys_i1", DwordValue(9), R::SysInt(1), 2.0},
        {u"Sys_i2", DwordValue(0xFFFFFFFF), R::SysInt(2), 0.0},
        {u"Sys_i6", DwordValue(3), R::SysInt(6), 3.0},
        {u"Sys_i10", DwordValue(0xFFFFFFFF), R::SysInt(10), -1.0},
        {u"Sys_i11", DwordValue(5), R::SysInt(11), 0.0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << "offset " << row.offset << " to be " << row.stored);
        Save(row.name, row.value);
        const RecordBytes record = Start();
        const double stored = row.offset < R::SysInt(0)    ? record.F64(row.offset)
                              : row.offset < R::SysFlag(0) ? record.I32(row.offset)
                                                           : record.U8(row.offset);
        EXPECT_EQ(row.stored, stored);
    }
}

TEST_F(SavedSettingsTest, PathsCountByExistenceAndLength) {
    const std::u16string longFolder(300, u'x');
    machine.files.folders = {u"/elsewhere", longFolder};
    const struct {
        std::u16string_view name, saved;
        std::size_t offset;
        std::u16string stored;
    } rows[] = {
        {u"DataFolder", u"/elsewhere", 1068, u"/elsewhere"},
        {u"DataFolder", u"/missing", 1068, suite},
        {u"DataFolder", u"", 1068, suite},
        {u"DataFolder", longFolder, 1068, std::u16string(259, u'x')},
        {u"Database2", u"/no/such.file", 548, u"/no/such.file"},
        {u"Database2", u"", 548, u""},
        {u"MarksXml", u"/m.xml", 28, u"/m.xml"},
        {u"MarksXml", u"", 28, u""},
    };
    for (const auto& row : rows) {
        Save(row.name, StringValue(row.saved));
        EXPECT_TRUE(row.stored == Start().Text(row.offset)) << "offset " << row.offset << ", text of " << row.saved.size();
        EXPECT_FALSE(machine.files.Exists(u"/missing"));
    }
}

TEST_F(SavedSettingsTest, TheLogsArePublished) {
    Save(u"LogBsp", StringValue(u"1234.5"));
    const RecordBytes record = Start();
    EXPECT_EQ(1234.5, record.F64(R::Value(0, kLogBsp)));
    EXPECT_EQ(1, record.U8(R::Channel(kLogBsp) + 2));
    EXPECT_EQ(kNoValue, record.F64(R::Value(0, kLogSog)));
    EXPECT_EQ(machine.clock.Days(), record.F64(R::Time(0, kLogSog))) << "stamped, though without a value";
    EXPECT_EQ(0, record.U8(R::Channel(kLogSog) + 2));
}

TEST_F(SavedSettingsTest, WithoutARegistryNothingIsLoaded) {
    machine.registry.unavailable = true;
    const RecordBytes record = StartWith(machine.registry);
    EXPECT_EQ(7, record.I32(R::SysInt(6)));
    EXPECT_EQ(0, record.I32(R::SysInt(4)));
    EXPECT_EQ(u"", record.Text(548));
    EXPECT_EQ(u"", record.Text(28));
    EXPECT_EQ(0.0, record.F64(R::Time(0, kLogBsp)));
    EXPECT_EQ(suite, record.Text(1068)) << "the configuration files have asked for it";
}

}  // namespace
}  // namespace twr::testing
