#include <gtest/gtest.h>

#include "platform/system.h"
#include "support/child_process.h"

namespace twr::testing {
namespace {

constexpr int kGivenUp = 7;

// More than any pipe takes, to a reader who does not read.
const Role kUnread("unread", [](const std::vector<std::string>&) {
    int asked = 0;
    const auto system = MakeSystem({});
    const Output output = system->GetConsole().Write(std::string(1 << 20, 'x'), [&] { return ++asked < 2; });
    return output == Output::kGivenUp && asked == 2 ? kGivenUp : 1;
});

TEST(Console, GivesUpOnOutputThatNobodyTakesAndTheProcessEnds) { EXPECT_EQ(kGivenUp, StartRole("unread", {})->Wait()); }

}  // namespace
}  // namespace twr::testing
