// SPDX-License-Identifier: MIT
// What a tick and its two passes cost, with a Deckman that answers at once; and how the cost grows with the rows and the boats.
#include <benchmark/benchmark.h>

#include "bridge.h"
#include "support/test_system.h"

namespace twr {
namespace {

constexpr ChannelId kRows = kChannelCount;

struct Running {
    explicit Running(ChannelId rows = kRows, BoatSlot boats = 1)
        : bridge(test.system->Core(), test.system->GetLibraries(), rows, boats) {}

    testing::TestSystem test;
    Bridge bridge;
};

void CountRows(benchmark::State& state, std::int64_t rows = kRows) { state.SetItemsProcessed(state.iterations() * rows); }

void ReadPassAllChanged(benchmark::State& state) {
    Running running;
    for (auto _ : state) {
        Bridge::Change();
        running.bridge.ReadPass();
    }
    CountRows(state);
}
BENCHMARK(ReadPassAllChanged)->Unit(benchmark::kMicrosecond);

void ReadPassAllQuiet(benchmark::State& state) {
    Running running;
    for (auto _ : state) running.bridge.ReadPass();
    CountRows(state);
}
BENCHMARK(ReadPassAllQuiet)->Unit(benchmark::kMicrosecond);

// All channels have a value before; between two passes each of them changes.
void RemotePassAllChanged(benchmark::State& state) {
    Running running;
    for (auto _ : state) {
        state.PauseTiming();
        running.bridge.PublishAll();
        state.ResumeTiming();
        running.bridge.ShowPass();
    }
    CountRows(state);
}
BENCHMARK(RemotePassAllChanged)->Unit(benchmark::kMicrosecond);

// Fewer iterations than the 10 s after which the values would go stale.
void RemotePassAllQuiet(benchmark::State& state) {
    Running running;
    running.bridge.PublishAll();
    running.bridge.ShowPass();
    for (auto _ : state) running.bridge.ShowPass();
    CountRows(state);
}
BENCHMARK(RemotePassAllQuiet)->Unit(benchmark::kMicrosecond)->Iterations(20000);

void Grow(benchmark::internal::Benchmark* tick) {
    tick->ArgNames({"rows", "boats"})->Unit(benchmark::kMicrosecond);
    for (const int rows : {1, 50, 100, 150, 200, 250, 300, 350, 414}) tick->Args({rows, 1});
    for (const int boats : {2, 3, 10, 25, 50, 75, 100}) tick->Args({kRows, boats});
}

void Tick(benchmark::State& state, bool changing) {
    const std::int64_t rows = state.range(0);
    Running running(static_cast<ChannelId>(rows), static_cast<BoatSlot>(state.range(1)));
    for (auto _ : state) {
        if (changing) Bridge::Change();
        running.bridge.Tick();
    }
    CountRows(state, rows);
}

void TickAllChanged(benchmark::State& state) { Tick(state, true); }
BENCHMARK(TickAllChanged)->Apply(Grow);

void TickAllQuiet(benchmark::State& state) { Tick(state, false); }
BENCHMARK(TickAllQuiet)->Apply(Grow);

}  // namespace
}  // namespace twr
