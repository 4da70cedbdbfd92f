// What the first program of the suite pays at its start.
#include <benchmark/benchmark.h>

#include <string>

#include "core/core.h"
#include "support/test_system.h"

namespace twr {
namespace {

void Attach(benchmark::State& state, const testing::TestSystem& test) {
    for (auto _ : state) {
        const CCore core(test.system->Core());
        benchmark::DoNotOptimize(core.View());
    }
}

void AttachAndInitialise(benchmark::State& state) { Attach(state, testing::TestSystem()); }
BENCHMARK(AttachAndInitialise)->Unit(benchmark::kMicrosecond);

// With the configuration of every channel, every boat and every alternating channel.
void AttachWithFullFiles(benchmark::State& state) {
    const testing::TestSystem test;
    std::string channels = "<channels>", boats = "<boats>", alternates;
    for (int i = 0; i < 414; ++i) {
        channels +=
            "<channel id='" + std::to_string(i) + "' log='true' damp='5' prec='2' type='12' user='A channel of the user'/>\n";
    }
    for (int i = 0; i < 100; ++i) {
        boats += "<boat id='" + std::to_string(i) + "' name='A boat of the fleet' mmsi='211000000' r='1' g='2' b='3'/>\n";
    }
    for (int i = 0; i < 10; ++i) alternates += std::to_string(i) + ",1,2,3,4,5,6,7,8,9\n";
    const std::string config = "ProgramData/Tidewright/config/";
    test.folder.Write(config + "channels.xml", channels + "</channels>");
    test.folder.Write(config + "boats.xml", boats + "</boats>");
    test.folder.Write(config + "alternate.csv", alternates);
    Attach(state, test);
}
BENCHMARK(AttachWithFullFiles)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace twr
