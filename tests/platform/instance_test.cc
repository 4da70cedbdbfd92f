#include <gtest/gtest.h>

#include <cstdio>
#include <iostream>

#include "support/child_process.h"
#include "support/test_system.h"

namespace twr {
namespace {

const testing::Role claim("claim", [](const std::vector<std::string>& arguments) {
    const auto system = testing::SystemOf(arguments);
    std::cout << (system->GetInstance().Claim(u"Halyrig") ? "claimed" : "refused") << std::endl;
    std::cin.get();
    return 0;
});

TEST(Instance, IsOneUntilItsProcessHasGone) {
    const testing::TestSystem test;
    const auto first = testing::StartRole("claim", test.Arguments());
    ASSERT_EQ("claimed", first->ReadLine());
    EXPECT_EQ("refused", testing::StartRole("claim", test.Arguments())->ReadLine());
    EXPECT_FALSE(test.system->GetInstance().Claim(u"Halyrig"));
    EXPECT_TRUE(test.system->GetInstance().Claim(u"Other"));
    first->Kill();
    first->Wait();
    EXPECT_EQ("claimed", testing::StartRole("claim", test.Arguments())->ReadLine());
}

}  // namespace
}  // namespace twr
