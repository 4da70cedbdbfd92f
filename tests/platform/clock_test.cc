#include "platform/clock.h"

#include <gtest/gtest.h>

#include <chrono>

#include "support/test_system.h"

namespace twr {
namespace {

std::int64_t ReferenceTicks() {
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch()).count() * 10;
}

TEST(Clock, CountsTicksOf100NanosecondsSince1970) {
    const testing::TestSystem test;
    constexpr std::int64_t kGrain = 160'000;  // of the coarsest clock of either system
    const std::int64_t before = ReferenceTicks();
    const std::int64_t ticks = test.system->Core().clock.Ticks();
    EXPECT_GE(ticks, before - kGrain);
    EXPECT_LE(ticks, ReferenceTicks() + kGrain);
}

}  // namespace
}  // namespace twr
