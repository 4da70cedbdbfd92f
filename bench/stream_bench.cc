// SPDX-License-Identifier: MIT
// What a look at the record costs, and what the formats make of it, with every channel changed and with none.
#include <benchmark/benchmark.h>

#include "streams/follower.h"
#include "streams/stream_format.h"
#include "support/test_system.h"

namespace twr {
namespace {

struct Followed {
    void PublishAll() {
        value = value < 2.0 ? value + 0.01 : 1.0;
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) core.SetChannel(channel, 0, value, 0.0);
    }

    testing::TestSystem test;
    CCore core{test.system->Core()};
    Follower follower{core, test.system->Core().clock, {}};
    double value = 1.0;
};

void CountChannels(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * (kChannelCount - 1)); }

// Looks, and passes on what has changed; the publication of all channels in between is not counted.
template <class Use>
void Looks(benchmark::State& state, Use use) {
    Followed followed;
    std::string out;
    for (auto _ : state) {
        state.PauseTiming();
        followed.PublishAll();
        out.clear();
        state.ResumeTiming();
        use(followed, followed.follower.Look(), out);
        benchmark::DoNotOptimize(out.data());
    }
    CountChannels(state);
}

void LookAllChanged(benchmark::State& state) {
    Looks(state, [](Followed&, std::span<const Change>, std::string&) {});
}
BENCHMARK(LookAllChanged)->Unit(benchmark::kMicrosecond);

void LookQuiet(benchmark::State& state) {
    Followed followed;
    followed.PublishAll();
    for (auto _ : state) benchmark::DoNotOptimize(followed.follower.Look().size());
    CountChannels(state);
}
BENCHMARK(LookQuiet)->Unit(benchmark::kMicrosecond)->Iterations(20000);  // before the values go stale

void LookAndTell(benchmark::State& state, const char* format) {
    const std::unique_ptr<StreamFormat> told = StreamFormatOf(format).make();
    Looks(state, [&](Followed& followed, std::span<const Change> changes, std::string& out) {
        told->Append(out, changes, followed.follower);
    });
}
BENCHMARK_CAPTURE(LookAndTell, json, "json")->Name("LookAndJsonLines")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(LookAndTell, signalk, "signalk")->Name("LookAndSignalK")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(LookAndTell, nmea, "nmea")->Name("LookAndSentences")->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace twr
