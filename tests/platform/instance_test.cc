#include <gtest/gtest.h>

#include <cstdio>
#include <iostream>

#include "platform/wide_text.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr {
namespace {

const testing::Role claim("claim", [](const std::vector<std::string>& arguments) {
    const auto system = MakeSystem(testing::TestRoots(arguments[0], FromUtf8(arguments[1])));
    std::cout << (system->GetInstance().Claim(u"Halyrig") ? "claimed" : "refused") << std::endl;
    std::cin.get();
    return 0;
});

TEST(Instance, IsOneUntilItsProcessHasGone) {
    const testing::TestSystem test;
    const std::vector<std::string> arguments{test.name, ToUtf8(test.folder.Text())};
    const auto first = testing::StartRole("claim", arguments);
    ASSERT_EQ("claimed", first->ReadLine());
    EXPECT_EQ("refused", testing::StartRole("claim", arguments)->ReadLine());
    EXPECT_FALSE(test.system->GetInstance().Claim(u"Halyrig"));
    EXPECT_TRUE(test.system->GetInstance().Claim(u"Other"));
    first->Kill();
    first->Wait();
    EXPECT_EQ("claimed", testing::StartRole("claim", arguments)->ReadLine());
}

}  // namespace
}  // namespace twr
