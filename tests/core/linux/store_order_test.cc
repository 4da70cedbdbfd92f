// SPDX-License-Identifier: MIT
// The two stores of a publication come in their order. A page that can't be written stops the process at one of them, and what the
// other entry holds at that moment tells which came first.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>

#include <new>

#include "core/record_access.h"

namespace twr::testing {
namespace {

constexpr std::uintptr_t kPage = 4096;

void* guarded = nullptr;          // the page that can't be written
const double* watched = nullptr;  // the other entry
double watchedThen = 0.0;         // what it held when the store was stopped

void OnStoppedStore(int) {
    watchedThen = *watched;
    mprotect(guarded, kPage, PROT_READ | PROT_WRITE);  // and the store is tried again
}

TEST(StoreOrder, IsValueFirstForTheFirstTwoBoatsAndStampFirstForTheOthers) {
    void* const memory = mmap(nullptr, sizeof(CoreRecord), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(MAP_FAILED, memory);
    CoreRecord& record = *new (memory) CoreRecord;
    const auto former = signal(SIGSEGV, OnStoppedStore);
    const std::pair<ChannelId, BoatSlot> rows[] = {{kBsp, 0}, {kBsp, 1}, {kRudderS, 16}};  // whose entries stand on two pages
    for (const auto& [channel, boat] : rows) {
        const Entry entry = EntryOf(record, channel, boat);
        const double* const first = boat < 2 ? entry.value : entry.time;
        watched = boat < 2 ? entry.time : entry.value;
        watchedThen = -1.0;
        guarded = reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(first) / kPage * kPage);
        mprotect(guarded, kPage, PROT_READ);
        EXPECT_TRUE(Store(record, channel, boat, 7.5, 46000.25));
        EXPECT_EQ(0.0, watchedThen) << "boat " << boat << ": the other entry was still to come";
        EXPECT_TRUE(*entry.value == 7.5 && *entry.time == 46000.25) << boat;
    }
    signal(SIGSEGV, former);
    munmap(memory, sizeof(CoreRecord));
}

}  // namespace
}  // namespace twr::testing
