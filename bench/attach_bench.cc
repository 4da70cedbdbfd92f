// What the first program of the suite pays at its start.
#include <benchmark/benchmark.h>

#include "core/core.h"
#include "support/test_system.h"

namespace twr {
namespace {

void AttachAndInitialise(benchmark::State& state) {
    const testing::TestSystem test;
    for (auto _ : state) {
        const CCore core(test.system->Core());
        benchmark::DoNotOptimize(core.View());
    }
}
BENCHMARK(AttachAndInitialise)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace twr
