#include <gtest/gtest.h>

#include <filesystem>

#include "core/core.h"
#include "core/days.h"
#include "platform/wide_text.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

std::string Printed(const TestSystem& test) {
    const std::string object = "/" + ToUtf8(TestRoots(test.name, test.folder.Text()).namePrefix) + "TwrCore_356_166784";
    return StartProgram((std::filesystem::path(OwnProgram()).parent_path() / "read_record").string(), {object})->ReadLine();
}

TEST(ReadRecord, PrintsBoatSpeedWithItsAge) {
    const TestSystem test;
    EXPECT_EQ("There is no record.", Printed(test));
    {
        CCore core(test.system->Core());
        EXPECT_EQ("BSP has no value.", Printed(test));
        core.SetChannel(kBsp, 0, 7.25, UtcNowDays(test.system->Core().clock) - 600.0 / kSecondsPerDay);
        EXPECT_EQ("BSP 7.25 kt, 600.0 s old", Printed(test).replace(17, 1, "0")) << "give or take a tenth";
        EXPECT_NE(nullptr, CCore(test.system->Core(), Attachment::kOpenOnly).View()) << "the guest has left it in place";
    }
    EXPECT_EQ("There is no record.", Printed(test));
}

}  // namespace
}  // namespace twr::testing
