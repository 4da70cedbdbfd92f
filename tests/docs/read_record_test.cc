// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "base/wide_text.h"
#include "core/core.h"
#include "core/days.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

constexpr const char* kNone = "There is no record.";

// Runs the example of the documents.
struct ReadRecordTest : ::testing::Test {
    std::string Printed() {
        const auto example = StartProgram((std::filesystem::path(OwnProgram()).parent_path() / "read_record").string(), {name});
        std::string line = example->ReadLine();
        EXPECT_EQ(line == kNone ? 1 : 0, example->Wait());
        return line;
    }

    TestSystem test;
    const std::string name = "/" + ToUtf8(TestRoots(test.name, test.folder.Text()).namePrefix) + "TwrCore_356_166784";
};

TEST_F(ReadRecordTest, PrintsBoatSpeedWithItsAge) {
    {
        CCore core(test.system->Core());
        EXPECT_EQ("BSP has no value.", Printed());
        core.SetChannel(kBsp, 0, 7.25, UtcNowDays(test.system->Core().clock) - 10.0);
        double speed = 0.0, age = 0.0;
        ASSERT_EQ(2, std::sscanf(Printed().c_str(), "BSP %lf kt, %lf s old", &speed, &age));
        EXPECT_EQ(7.25, speed);
        EXPECT_NEAR(10.0, age / kSecondsPerDay, 0.5) << "days";
        const std::string path = "/dev/shm" + name;
        chmod(path.c_str(), 0660);
        EXPECT_EQ(kNone, Printed()) << "others might cut it short";
        chmod(path.c_str(), 0600);
        EXPECT_NE(nullptr, CCore(test.system->Core(), Attachment::kOpenOnly).View()) << "the guest has left it in place";
    }
    EXPECT_EQ(kNone, Printed());
}

TEST_F(ReadRecordTest, TakesAwayWhatAKilledProgramLeftAndLeavesAnotherSizeAlone) {
    const int object = shm_open(name.c_str(), O_RDWR | O_CREAT, 0600);
    ASSERT_EQ(0, ftruncate(object, sizeof(CoreRecord)));
    close(object);
    EXPECT_EQ(kNone, Printed());
    EXPECT_EQ(-1, shm_open(name.c_str(), O_RDWR, 0));
    const auto block = test.system->Core().memory.CreateOrOpen(u"TwrCore_356_166784", 4096);
    EXPECT_EQ(kNone, Printed());
}

}  // namespace
}  // namespace twr::testing
