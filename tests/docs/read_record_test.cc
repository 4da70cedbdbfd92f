#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "base/wide_text.h"
#include "core/core.h"
#include "core/days.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

std::string ObjectName(const TestSystem& test) {
    return "/" + ToUtf8(TestRoots(test.name, test.folder.Text()).namePrefix) + "TwrCore_356_166784";
}

std::string Printed(const TestSystem& test) {
    const auto example =
        StartProgram((std::filesystem::path(OwnProgram()).parent_path() / "read_record").string(), {ObjectName(test)});
    const std::string line = example->ReadLine();
    EXPECT_EQ(line == "There is no record." ? 1 : 0, example->Wait());
    return line;
}

TEST(ReadRecord, PrintsBoatSpeedWithItsAge) {
    const TestSystem test;
    EXPECT_EQ("There is no record.", Printed(test));
    {
        CCore core(test.system->Core());
        EXPECT_EQ("BSP has no value.", Printed(test));
        core.SetChannel(kBsp, 0, 7.25, UtcNowDays(test.system->Core().clock) - 10.0);
        double speed = 0.0, age = 0.0;
        ASSERT_EQ(2, std::sscanf(Printed(test).c_str(), "BSP %lf kt, %lf s old", &speed, &age));
        EXPECT_EQ(7.25, speed);
        EXPECT_NEAR(10.0, age / kSecondsPerDay, 0.5) << "days";
        const std::string path = "/dev/shm" + ObjectName(test);
        chmod(path.c_str(), 0660);
        EXPECT_EQ("There is no record.", Printed(test)) << "others might cut it short";
        chmod(path.c_str(), 0600);
        EXPECT_NE(nullptr, CCore(test.system->Core(), Attachment::kOpenOnly).View()) << "the guest has left it in place";
    }
    EXPECT_EQ("There is no record.", Printed(test));
}

TEST(ReadRecord, TakesWhatAKilledProgramLeftForNoRecordAndTakesItAway) {
    const TestSystem test;
    const int object = shm_open(ObjectName(test).c_str(), O_RDWR | O_CREAT, 0600);
    ASSERT_EQ(0, ftruncate(object, sizeof(CoreRecord)));
    close(object);
    EXPECT_EQ("There is no record.", Printed(test));
    EXPECT_EQ(-1, shm_open(ObjectName(test).c_str(), O_RDWR, 0));
}

TEST(ReadRecord, StaysAwayFromABlockOfAnotherSize) {
    const TestSystem test;
    const auto block = test.system->Core().memory.CreateOrOpen(u"TwrCore_356_166784", 4096);
    EXPECT_EQ("There is no record.", Printed(test));
}

}  // namespace
}  // namespace twr::testing
