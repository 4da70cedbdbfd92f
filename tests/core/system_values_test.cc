#include <limits>

#include "support/core_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;

class SystemValuesTest : public CoreTest {};

TEST_F(SystemValuesTest, ValuesAreStoredWithinTheirBounds) {
    const struct {
        std::uint32_t index;
        double value, stored;
    } rows[] = {
        {0, 0.5, 1.0}, {0, 30.0, 30.0}, {5, 0.001, 0.01}, {5, 20.0, 10.0},
        {5, 5.0, 5.0}, {1, -7.0, -7.0}, {92, 4.0, 4.0},   {7, kNoValue, kNoValue},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(core->SetSystemValue(row.index, row.value));
        EXPECT_EQ(row.stored, record.F64(R::SysValue(row.index))) << row.index << " set to " << row.value;
    }
    EXPECT_FALSE(core->SetSystemValue(93, 1.0));
    EXPECT_FALSE(core->SetSystemValue(0xFFFFFFFF, 1.0));
    EXPECT_EQ(0, record.I32(R::SysInt(0))) << "what stands behind the values is as it was";
}

TEST_F(SystemValuesTest, IntsAreStoredWithinTheirBounds) {
    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    const struct {
        std::uint32_t index;
        std::int32_t value, stored;
    } rows[] = {
        {0, -1, 0},   {0, 1000000, 1000000},
        {1, 9, 2},    {1, 2, 2},
        {2, 3, 2},    {3, 6, 5},
        {4, 5, 5},    {5, 2, 1},
        {6, 7, 6},    {6, -7, 0},
        {7, 99, 99},  {8, 4, 2},
        {9, 5, 4},    {10, -1, -1},
        {11, 77, 77}, {12, kLowest, kLowest},
    };
    for (const auto& row : rows) {
        core->SetSystemInt(row.index, row.value);
        EXPECT_EQ(row.stored, record.I32(R::SysInt(row.index))) << row.index << " set to " << row.value;
    }
    core->SetSystemInt(13, 1);
    EXPECT_EQ(0, record.U8(R::SysFlag(0))) << "what stands behind the ints is as it was";
}

TEST_F(SystemValuesTest, TheGunResetsTheStartOfTheOwnBoatOnly) {
    for (const BoatSlot boat : {0u, 1u}) Publish(kGunBlwLn, 0.25, boat);
    machine.clock.AdvanceMs(1000);
    EXPECT_TRUE(core->SetSystemValue(36, 46345.75));
    EXPECT_EQ(46345.75, record.F64(R::SysValue(36)));
    EXPECT_EQ(kNoValue, Own(kGunBlwLn));
    EXPECT_EQ(machine.clock.Days(), OwnTime(kGunBlwLn));
    EXPECT_EQ(machine.clock.Days(), Own(kTime));
    EXPECT_EQ(kNoValue, record.F64(R::Damped(0, kGunBlwLn)));
    EXPECT_EQ(0.25, record.F64(R::Value(1, kGunBlwLn)));
}

}  // namespace
}  // namespace twr::testing
