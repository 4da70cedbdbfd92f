// What a tick's remote pass costs over as many rows as there are channels, without a variable to read.
#include <benchmark/benchmark.h>

#include "bench_bridge.h"
#include "bridge/controls.h"
#include "core/record_access.h"

namespace twr {
namespace {

constexpr int kRows = 414;

void PublishAll(CCore& core, double value) {
    for (ChannelId channel = 1; channel < kChannelCount; ++channel) core.SetChannel(channel, 0, value, 0.0);
}

// All channels have a value before; between two ticks each of them changes when asked.
void RemotePass(benchmark::State& state, bool changing) {
    BenchMachine machine(0, kRows);
    CCore other(machine.Core());
    machine.host.script = [&] {
        double value = 1.0;
        PublishAll(other, value);
        machine.host.Tick();
        for (auto _ : state) {
            if (changing) {
                state.PauseTiming();
                PublishAll(other, value = value < 2.0 ? value + 0.01 : 1.0);
                state.ResumeTiming();
            }
            machine.host.Tick();
        }
    };
    CHalyrig32Dlg dialog(machine);
    machine.host.RunDialog(kMainTemplate, dialog);
}

void RemotePassAllChanged(benchmark::State& state) { RemotePass(state, true); }
BENCHMARK(RemotePassAllChanged)->Unit(benchmark::kMicrosecond);

// Fewer iterations than the 10 s after which the values would go stale.
void RemotePassAllQuiet(benchmark::State& state) { RemotePass(state, false); }
BENCHMARK(RemotePassAllQuiet)->Unit(benchmark::kMicrosecond)->Iterations(20000);

}  // namespace
}  // namespace twr
