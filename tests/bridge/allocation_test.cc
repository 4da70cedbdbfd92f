// A tick on which nothing changes takes no memory from the heap. This program counts every request.
#include <atomic>
#include <cstdlib>
#include <new>

#include "bridge_fixture.h"

namespace {

std::atomic<int> allocations = 0;

void* Allocate(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace twr::testing {
namespace {

class AllocationTest : public BridgeTest {};

TEST_F(AllocationTest, AQuietTickTakesNoMemory) {
    std::string variables, elements;
    for (int i = 1; i < 414; ++i) {
        const std::string number = std::to_string(i);
        variables += number + " V" + number + "\n";
        elements += "<var twr='" + number + "' dfw='" + number + "'/><remote remote='" + number + "' twr='" + number + "'/>";
    }
    Variables(variables);
    MappingXml(elements);
    Run([&] {
        host.Tick(2);
        ASSERT_GT(deckman.sent.size(), 300u);
        deckman.reads.clear();
        deckman.reads.reserve(10000);
        deckman.sent.clear();
        const int before = allocations;
        host.Tick(15);
        EXPECT_EQ(0, allocations - before) << "with values repeated after a second";
        EXPECT_GT(deckman.reads.size(), 5000u);
        EXPECT_TRUE(deckman.sent.empty());
    });
}

}  // namespace
}  // namespace twr::testing
