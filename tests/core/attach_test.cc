#include <utility>

#include "base/wide_text.h"
#include "platform/paths.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

class AttachTest : public CoreTest {};

TEST_F(AttachTest, ALaterProcessTakesTheRecordAsItFindsItAndTheLastHolderEndsIt) {
    Publish(kBsp, 7.5);
    auto second = std::make_unique<CCore>(machine.Services());
    core.reset();
    EXPECT_EQ(7.5, second->View()->fullBlocks[0].value[kBsp]);
    second.reset();
    core = std::make_unique<CCore>(machine.Services());
    EXPECT_EQ(kNoValue, core->View()->fullBlocks[0].value[kBsp]) << "created anew";
}

TEST_F(AttachTest, AGuestWaitsForTheEndOfTheFilling) {
    double& stamp = core->View()->fullBlocks[0].time[kTime];
    const double filled = std::exchange(stamp, 0.0);
    EXPECT_EQ(nullptr, CCore(machine.Services(), Attachment::kOpenOnly).View());
    stamp = filled;
    const std::uint8_t mark = std::exchange(core->View()->filledMark, 0);
    EXPECT_EQ(nullptr, CCore(machine.Services(), Attachment::kOpenOnly).View()) << "another has stamped it meanwhile";
    core->View()->filledMark = mark;
    EXPECT_EQ(core->View(), CCore(machine.Services(), Attachment::kOpenOnly).View());
}

// A machine whose shared memory fails.
class FailedAttachTest : public ::testing::TestWithParam<bool> {
protected:
    FailedAttachTest() { (GetParam() ? machine.memory.failCreate : machine.memory.failMap) = true; }

    FakeMachine machine;
};

INSTANTIATE_TEST_SUITE_P(CreateOrMap, FailedAttachTest, ::testing::Bool());

TEST_P(FailedAttachTest, IsReportedBeforeTheEnd) {
    bool quitAtTheBox = true;
    machine.desktop.answer = [&](const auto&) {
        quitAtTheBox = machine.desktop.quit;
        return BoxAnswer::kOk;
    };
    const CCore core(machine.Services());
    const std::string message = GetParam() ? "Unable to create shared memory map" : "Unable to map shared memory";
    ASSERT_EQ(1u, machine.desktop.boxes.size());
    EXPECT_EQ(message, ToUtf8(machine.desktop.boxes[0].text));
    EXPECT_FALSE(quitAtTheBox);
    EXPECT_TRUE(machine.desktop.quit);
    ASSERT_EQ(1u, machine.files.files.size());
    EXPECT_EQ(JoinPath(u"", u"log_system_19Nov2026.log"), machine.files.files[0].path);
    EXPECT_EQ("00:00:00 : " + message + std::string(kLineEnd), machine.files.files[0].bytes);
}

TEST_P(FailedAttachTest, LeavesEveryOperationHarmless) {
    machine.zone.state = ZoneState{-60, 0, false};
    CCore core(machine.Services());
    EXPECT_EQ(nullptr, core.View());
    EXPECT_FALSE(core.QuitRequested());
    EXPECT_FALSE(core.SetChannel(kBsp, 0, 1.0, 0.0));
    EXPECT_FALSE(core.SetOwnChannel(kBsp, 1.0, 0.0));
    EXPECT_FALSE(core.SetSystemValue(36, 1.0));
    core.SetSystemInt(1, 1);
    core.StampTime();
    core.SetMarksPath(u"x");
    core.CheckDatabasePath();
    core.LoadAlternatesFile();
    EXPECT_FALSE(core.LoadBoatsFile() || core.LoadChannelsFile());
    EXPECT_TRUE(core.GetDataFolder(u"config").empty());
    EXPECT_TRUE(core.GetDatabasePath().empty());
    core.LoadAlternatesFile();
    EXPECT_FALSE(core.LoadBoatsFile());
    EXPECT_FALSE(core.LoadChannelsFile());
    EXPECT_TRUE(machine.files.folders.empty());

    double value = 400.0;
    core.NormaliseValue(kTwd, value);
    EXPECT_EQ(kNoValue, value) << "no wrap without a record, but the range holds";
    EXPECT_FALSE(core.GetChannel(kBsp, value = 1.0, 0, false, true, true));
    EXPECT_EQ(kNoValue, value);
    EXPECT_FALSE(core.GetFreshChannel(kBsp, value = 1.0, 0, false, true, kNoValue));
    EXPECT_EQ(kNoValue, value);
    EXPECT_EQ(kNoValue, core.ApplyVariation(10.0, 0));
    EXPECT_EQ(10.0, core.ToDisplayUnits(kTwd, 10.0, 5.0));
    EXPECT_EQ(kBsp, core.ResolveAlternate(kBsp, true));
    EXPECT_EQ(kNoChannel, core.ResolveAlternate(kChannelCount, true));

    core.Calibrations()[2].active = true;
    core.Calibrations()[2].inputX = kHeel;
    core.Calibrations()[2].curves = {{0.0, true, {{0, 1}, {1, 2}}}};
    EXPECT_FALSE(core.CalibrationLookup(2, value = 1.0, 5.0));
    EXPECT_EQ(kNoValue, value);
    EXPECT_EQ(-5.0, core.ApplyCalibration(kBsp, -5.0));

    EXPECT_EQ("- -", ToUtf8(core.ChannelText(kBsp, 7.0)));
    EXPECT_EQ("", core.ChannelFormat(kBsp));
    EXPECT_EQ("VMG PC", ToUtf8(core.RemoteLabel(kVmgPct)));
    EXPECT_EQ("ALT 0", ToUtf8(core.RemoteLabel(kAlt0)));
    EXPECT_EQ("19-Nov-2026 12:00:00", ToUtf8(core.TimeText(46345.5))) << "no record says that local time is wanted";
}

}  // namespace
}  // namespace twr::testing
