#include "platform/clock.h"

#include <gtest/gtest.h>

#include <chrono>

#include "support/test_system.h"

namespace twr {
namespace {

TEST(Clock, CountsTicksOf100NanosecondsSince1970) {
    const testing::TestSystem test;
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    constexpr std::chrono::milliseconds kGrain(16);  // of the coarsest clock of either system
    const auto before = std::chrono::system_clock::now();
    const Ticks ticks(test.system->Core().clock.Ticks());
    EXPECT_GE(ticks, before.time_since_epoch() - kGrain);
    EXPECT_LE(ticks, std::chrono::system_clock::now().time_since_epoch() + kGrain);
}

}  // namespace
}  // namespace twr
