// What the two passes of a tick cost over as many rows as there are channels, with a Deckman that answers at once.
#include <benchmark/benchmark.h>

#include "bridge/instrument_pass.h"
#include "bridge/remote_pass.h"
#include "core/record_access.h"
#include "support/test_system.h"

namespace twr {
namespace {

constexpr ChannelId kRows = kChannelCount;

float step = 0.0f;

void TWR_EXPORT_CALL Read(std::int32_t variable, float* value) { *value = static_cast<float>(variable % 90) + step; }
void TWR_EXPORT_CALL GetPosition(float* latitude, float* longitude) { *latitude = *longitude = 10.0f; }
void TWR_EXPORT_CALL Show(std::uint32_t*, std::int32_t, const char*) {}

struct Bridge {
    Bridge() {
        library.fnRead = Read;
        library.fnGetPosition = GetPosition;
        library.fnSetISData = library.fnSetISName = Show;
        Put(core.View()->sysInt[kIntPositionSource], 3);  // Deckman, so no row is left out
        for (ChannelId row = 1; row <= kRows; ++row) {
            const auto number = static_cast<std::int32_t>(row), channel = row < kChannelCount ? number : 1;
            variables.emplace_back().channel = remotes.emplace_back().channel = channel;
            variables.back().dfwId = remotes.back().remote = number;
        }
    }

    void PublishAll(double value) {
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) core.SetChannel(channel, 0, value, 0.0);
    }

    testing::TestSystem test;
    CCore core{test.system->Core()};
    DeckmanLibrary library{test.system->GetLibraries()};
    std::vector<MappingVar> variables;
    std::vector<MappingRemote> remotes;
    Settings settings;
};

void ReadPass(benchmark::State& state, bool changing) {
    Bridge bridge;
    InstrumentPass pass(bridge.core, bridge.test.system->Core().clock);
    for (auto _ : state) {
        if (changing) step = step < 1.0f ? step + 0.001f : 0.0f;
        pass.Run(bridge.library, bridge.variables, -1, bridge.settings);
    }
}

void ReadPassAllChanged(benchmark::State& state) { ReadPass(state, true); }
BENCHMARK(ReadPassAllChanged)->Unit(benchmark::kMicrosecond);

void ReadPassAllQuiet(benchmark::State& state) { ReadPass(state, false); }
BENCHMARK(ReadPassAllQuiet)->Unit(benchmark::kMicrosecond);

// All channels have a value before; between two passes each of them changes when asked.
void ShowPass(benchmark::State& state, bool changing) {
    Bridge bridge;
    const RemotePass pass(bridge.core);
    double value = 1.0;
    bridge.PublishAll(value);
    pass.Run(bridge.library, bridge.remotes, bridge.settings);
    for (auto _ : state) {
        if (changing) {
            state.PauseTiming();
            bridge.PublishAll(value = value < 2.0 ? value + 0.01 : 1.0);
            state.ResumeTiming();
        }
        pass.Run(bridge.library, bridge.remotes, bridge.settings);
    }
}

void RemotePassAllChanged(benchmark::State& state) { ShowPass(state, true); }
BENCHMARK(RemotePassAllChanged)->Unit(benchmark::kMicrosecond);

// Fewer iterations than the 10 s after which the values would go stale.
void RemotePassAllQuiet(benchmark::State& state) { ShowPass(state, false); }
BENCHMARK(RemotePassAllQuiet)->Unit(benchmark::kMicrosecond)->Iterations(20000);

}  // namespace
}  // namespace twr
