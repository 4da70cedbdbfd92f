// A double of the record is never seen half written, not even by a 32-bit process.
#include <gtest/gtest.h>

#include <iostream>

#include "core/core.h"
#include "core/record_access.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

// Both halves differ, so that any mixture is neither.
constexpr double kFirst = 1.2345678901234567, kSecond = -9.8765432109876543e+200;

const Role writer("hammer", [](const std::vector<std::string>& arguments) {
    const auto system = SystemOf(arguments);
    const CCore core(system->Core());
    double& entry = core.View()->fullBlocks[0].value[kBsp];
    std::cout << "hammering" << std::endl;
    // Until the other process has seen enough.
    while (!core.QuitRequested()) {
        for (int i = 0; i < 1000; ++i) Put(entry, i % 2 == 0 ? kFirst : kSecond);
    }
    return 0;
});

TEST(TornDouble, IsNeverSeen) {
    const TestSystem test;
    const auto child = StartRole("hammer", test.Arguments());
    ASSERT_EQ("hammering", child->ReadLine());
    const CCore guest(test.system->Core(), Attachment::kOpenOnly);
    const double& entry = guest.View()->fullBlocks[0].value[kBsp];
    while (Load(entry) == kNoValue) continue;
    int seen[2] = {};
    for (int i = 0; i < 2000000000 && (i < 200000000 || seen[0] == 0 || seen[1] == 0); ++i) {
        const double value = Load(entry);
        if (value != kFirst && value != kSecond) FAIL() << value << " is a mixture";
        ++seen[value == kFirst];
    }
    Put(guest.View()->sysFlag[kFlagQuitRequest], std::uint8_t{1});
    EXPECT_EQ(0, child->Wait());
    EXPECT_TRUE(seen[0] > 0 && seen[1] > 0) << "both values have been seen";
}

}  // namespace
}  // namespace twr::testing
