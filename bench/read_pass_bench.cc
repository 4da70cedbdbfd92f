// What a tick's read pass costs over as many rows as there are channels.
#include <benchmark/benchmark.h>

#include "bench_bridge.h"
#include "bridge/controls.h"
#include "core/record_access.h"

namespace twr {
namespace {

constexpr int kRows = 414;

void ReadPass(benchmark::State& state, bool changing) {
    BenchMachine machine(kRows, 0);
    const CCore other(machine.Core());
    Put(other.View()->sysInt[6], 3);  // positions come from Deckman, so no row is left out
    InstantDeckman::changing = changing;
    machine.host.script = [&] {
        for (auto _ : state) machine.host.Tick();
    };
    CHalyrig32Dlg dialog(machine);
    machine.host.RunDialog(kMainTemplate, dialog);
}

void ReadPassAllChanged(benchmark::State& state) { ReadPass(state, true); }
BENCHMARK(ReadPassAllChanged)->Unit(benchmark::kMicrosecond);

void ReadPassAllQuiet(benchmark::State& state) { ReadPass(state, false); }
BENCHMARK(ReadPassAllQuiet)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace twr
