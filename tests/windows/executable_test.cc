#include <gtest/gtest.h>

#include "platform/system.h"

namespace twr {
namespace {

// The test program carries the product's resources.
TEST(Executable, TellsTheVersionOfItsOwnFile) {
    const auto version = MakeSystem({})->GetExecutable().FileVersion();
    ASSERT_TRUE(version);
    const auto text = std::to_string((*version)[0]) + '.' + std::to_string((*version)[1]) + '.' + std::to_string((*version)[2]);
    EXPECT_EQ(HALYRIG_VERSION, text);
    EXPECT_EQ(0, (*version)[3]);
}

}  // namespace
}  // namespace twr
