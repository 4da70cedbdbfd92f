// SPDX-License-Identifier: MIT
// What the first program of the suite pays at its start, beside the least that the system asks for a record: a block of shared
// memory that is made, filled and removed.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "core/core.h"
#include "support/test_system.h"

namespace twr {
namespace {

// Of the system alone, without a line of this project.
void BareRecord(benchmark::State& state) {
    constexpr const char* kName = "/halyrig_bench";
    for (auto _ : state) {
        const int block = shm_open(kName, O_RDWR | O_CREAT, 0600);
        if (ftruncate(block, sizeof(CoreRecord)) != 0) state.SkipWithError("no shared memory");
        void* const data = mmap(nullptr, sizeof(CoreRecord), PROT_READ | PROT_WRITE, MAP_SHARED, block, 0);
        std::memset(data, 1, sizeof(CoreRecord));
        munmap(data, sizeof(CoreRecord));
        close(block);
        shm_unlink(kName);
    }
}
BENCHMARK(BareRecord)->Unit(benchmark::kMicrosecond);

void Attach(benchmark::State& state, const testing::TestSystem& test) {
    state.SetLabel("BareRecord");
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
