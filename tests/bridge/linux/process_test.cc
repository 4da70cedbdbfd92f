// The whole program in processes of its own, without a terminal, under names of the test's own.
#include <gtest/gtest.h>

#include "bridge/application.h"
#include "bridge/settings.h"
#include "core/core.h"
#include "platform/wide_text.h"
#include "support/child_process.h"
#include "support/fakes.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

// Runs the program. The line that it prints first says that it holds the record.
const Role bridge("bridge", [](const std::vector<std::string>& arguments) {
    const auto system = MakeSystem(TestRoots(arguments[0], FromUtf8(arguments[1])));
    const CCore core(system->Core());
    std::puts("attached");
    std::fflush(stdout);
    CHalyrig32App(*system).InitInstance();
    return 0;
});

class ProcessTest : public ::testing::Test {
protected:
    std::unique_ptr<ChildProcess> Start() {
        auto child = StartRole("bridge", {test.name, ToUtf8(test.folder.Text())});
        EXPECT_EQ("attached", child->ReadLine());
        return child;
    }
    std::unique_ptr<CCore> Join() { return std::make_unique<CCore>(test.system->Core(), Attachment::kOpenOnly); }

    static void RequestQuit(const CCore& core) { core.View()->sysFlag[35] = 1; }

    TestSystem test;
};

TEST_F(ProcessTest, AQuitRequestSavesTheSettingsAndLeavesTheRecordToOthers) {
    const auto child = Start();
    auto guest = Join();
    ASSERT_NE(nullptr, guest->View());
    guest->View()->sysInt[3] = 4;
    RequestQuit(*guest);
    EXPECT_EQ(0, child->Wait());
    EXPECT_EQ(1u, DwordOf(test.system->Core().registry.Read(u"Software\\Tidewright\\Halyrig32\\settings", u"DfwDepth")));
    EXPECT_EQ(4, Join()->View()->sysInt[3]) << "the guest has kept the record";
    guest.reset();
    EXPECT_EQ(nullptr, Join()->View()) << "gone with its last holder";
}

TEST_F(ProcessTest, AKilledOneLeavesNothingForTheNext) {
    auto child = Start();
    Join()->View()->sysInt[3] = 4;
    child->Kill();
    child->Wait();
    EXPECT_EQ(nullptr, Join()->View());
    child = Start();
    const auto guest = Join();
    ASSERT_NE(nullptr, guest->View());
    EXPECT_EQ(0, guest->View()->sysInt[3]);
    RequestQuit(*guest);
    EXPECT_EQ(0, child->Wait());
}

}  // namespace
}  // namespace twr::testing
