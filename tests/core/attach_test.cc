#include "support/core_fixture.h"

namespace twr::testing {
namespace {

using R = RecordBytes;

class AttachTest : public CoreTest {};

TEST_F(AttachTest, ALaterProcessTakesTheRecordAsItFindsIt) {
    Publish(kBsp, 7.5);
    record.Set<std::int32_t>(R::SysInt(1), 2);
    const CCore second(machine.Services());
    ASSERT_EQ(core->View(), second.View());
    EXPECT_EQ(7.5, Own(kBsp));
    EXPECT_EQ(2, record.I32(R::SysInt(1)));
}

TEST_F(AttachTest, TheRecordLivesAsLongAsItsLastHolder) {
    auto second = std::make_unique<CCore>(machine.Services());
    Publish(kBsp, 7.5);
    core.reset();
    EXPECT_EQ(7.5, second->View()->fullBlocks[0].value[kBsp]);
    core = std::make_unique<CCore>(machine.Services());
    EXPECT_EQ(7.5, core->View()->fullBlocks[0].value[kBsp]) << "the second holder has kept it";
    second.reset();
    core.reset();
    core = std::make_unique<CCore>(machine.Services());
    EXPECT_EQ(kNoValue, core->View()->fullBlocks[0].value[kBsp]) << "created anew";
}

TEST(Attach, AFailureQuitsAndLeavesEveryOperationHarmless) {
    for (const bool mapping : {false, true}) {
        FakeMachine machine;
        (mapping ? machine.memory.failMap : machine.memory.failCreate) = true;
        CCore core(machine.Services());
        EXPECT_TRUE(machine.desktop.quit);
        EXPECT_EQ(nullptr, core.View());
        EXPECT_FALSE(core.QuitRequested());
        EXPECT_FALSE(core.SetChannel(kBsp, 0, 1.0, 0.0));
        EXPECT_FALSE(core.SetOwnChannel(kBsp, 1.0, 0.0));
        EXPECT_FALSE(core.SetSystemValue(36, 1.0));
        core.SetSystemInt(1, 1);
        core.StampTime();
        core.SetMarksPath(u"x");
        core.CheckDatabasePath();
        double value = 400.0;
        core.NormaliseValue(kTwd, value);
        EXPECT_EQ(kNoValue, value) << "no wrap without a record, but the range holds";
        EXPECT_TRUE(core.GetDataFolder(u"config").empty());
        EXPECT_TRUE(core.GetDatabasePath().empty());
        EXPECT_TRUE(machine.files.folders.empty());
    }
}

}  // namespace
}  // namespace twr::testing
