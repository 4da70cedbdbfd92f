// SPDX-License-Identifier: MIT
// What a publication costs, beside the least that it could cost: one reading of the clock and two 8-byte stores.
#include <benchmark/benchmark.h>
#include <time.h>

#include "core/core.h"
#include "core/record_access.h"
#include "support/test_system.h"

namespace twr {
namespace {

struct Suite {
    testing::TestSystem test;
    CCore core{test.system->Core()};
};

volatile double leastValue;
volatile std::int64_t leastTime;

// Of the system alone, without a line of this project.
void PhysicalLimit(benchmark::State& state) {
    double value = 0.0;
    for (auto _ : state) {
        timespec now;
        clock_gettime(CLOCK_REALTIME, &now);
        leastValue = value += 0.5;
        leastTime = now.tv_sec * 1000000000 + now.tv_nsec;
    }
}
BENCHMARK(PhysicalLimit);

void PublishOwnBoat(benchmark::State& state) {
    Suite suite;
    double value = 0.0;
    for (auto _ : state) suite.core.SetChannel(kBsp, 0, value += 0.5, 0.0);
}
BENCHMARK(PublishOwnBoat);

void PublishOverAllChannels(benchmark::State& state) {
    Suite suite;
    ChannelId channel = 0;
    double value = 1.0;
    for (auto _ : state) {
        if (++channel == kChannelCount) {
            channel = 1;
            value = value < 2.0 ? value + 0.01 : 1.0;
        }
        suite.core.SetChannel(channel, 0, value, 0.0);
    }
}
BENCHMARK(PublishOverAllChannels);

void PublishWithDerivation(benchmark::State& state) {
    Suite suite;
    Put(suite.core.View()->sysFlag[kFlagDeriveRot], std::uint8_t{1});
    double heading = 0.0;
    for (auto _ : state) suite.core.SetChannel(kHdg, 0, heading = heading < 359.0 ? heading + 0.5 : 0.0, 0.0);
}
BENCHMARK(PublishWithDerivation);

void PublishInAFleetOf100(benchmark::State& state) {
    Suite suite;
    suite.core.SetChannel(kBsp, kBoatCount - 1, 5.0, 0.0);
    double value = 0.0;
    for (auto _ : state) suite.core.SetChannel(kBsp, 0, value += 0.5, 0.0);
}
BENCHMARK(PublishInAFleetOf100);

void PublishBlocked(benchmark::State& state) {
    Suite suite;
    Put(suite.core.View()->channels[kBsp].blocked, std::uint8_t{1});
    double value = 0.0;
    for (auto _ : state) suite.core.SetChannel(kBsp, 0, value += 0.5, 0.0);
}
BENCHMARK(PublishBlocked);

}  // namespace
}  // namespace twr
