// SPDX-License-Identifier: MIT
#include "platform/shared_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <iostream>
#include <random>

#include "support/child_process.h"
#include "support/test_system.h"

namespace twr {
namespace {

constexpr std::size_t kSize = 166784;
constexpr std::u16string_view kName = u"Block";

using Arguments = std::vector<std::string>;

std::atomic_ref<std::int32_t> Number(const SharedBlock& block, std::size_t index) {
    return std::atomic_ref(static_cast<std::int32_t*>(block.Data())[index]);
}

// Holds the block, tells how it was had, and writes the numbers it is given in place of the first one, until its input ends.
const testing::Role hold("hold block", [](const Arguments& arguments) {
    const auto system = testing::SystemOf(arguments);
    const auto block = system->Core().memory.CreateOrOpen(kName, kSize);
    if (!block || !block->Data()) return 1;
    std::cout << (block->Existed() ? "existed " : "created ") << Number(*block, 0) << std::endl;
    for (int number = 0; std::cin >> number;) {
        Number(*block, 0) = number;
        std::cout << "written" << std::endl;
    }
    return 0;
});

// Starts and leaves again and again, and gives up at the first block that is not what it says. The creator puts a mark of its own
// into the block, and as long as a block is held its name leads to that mark.
const testing::Role storm("storm block", [](const Arguments& arguments) {
    const auto system = testing::SystemOf(arguments);
    SharedMemory& memory = system->Core().memory;
    std::random_device random;
    std::cout << "ready" << std::endl;
    std::cin.get();
    for (int round = 0; round < 1000; ++round) {
        if (round == 1) std::cout << "going" << std::endl;
        const auto block = memory.CreateOrOpen(kName, kSize);
        if (!block || !block->Data()) return 2;
        auto mark = Number(*block, 0);
        if (!block->Existed() && mark.exchange(static_cast<std::int32_t>(random() | 1u)) != 0) return 3;
        while (mark == 0) continue;  // the creator is about to set it
        const std::int32_t mine = mark;
        const auto again = memory.OpenExisting(kName, kSize);
        if (!again || !again->Data()) return 4;
        if (Number(*again, 0) != mine || mark != mine) return 5;
    }
    return 0;
});

struct SharedMemoryTest : ::testing::Test {
    // Looking for a block clears away what a killed holder has left of it.
    ~SharedMemoryTest() override { memory_.OpenExisting(kName, kSize); }

    std::unique_ptr<testing::ChildProcess> Start(const std::string& role) { return testing::StartRole(role, test_.Arguments()); }

    // Four that start and leave.
    std::vector<std::unique_ptr<testing::ChildProcess>> StartFour() {
        std::vector<std::unique_ptr<testing::ChildProcess>> children;
        while (children.size() < 4) children.push_back(Start("storm block"));
        for (const auto& child : children) EXPECT_EQ("ready", child->ReadLine());
        for (const auto& child : children) child->WriteLine("go");
        return children;
    }

    void ExpectNewBlock() {
        const auto block = memory_.CreateOrOpen(kName, kSize);
        ASSERT_NE(nullptr, block);
        EXPECT_FALSE(block->Existed());
        const char* bytes = static_cast<const char*>(block->Data());
        EXPECT_TRUE(std::all_of(bytes, bytes + kSize, [](char byte) { return byte == 0; }));
    }

    testing::TestSystem test_;
    SharedMemory& memory_ = test_.system->Core().memory;
};

TEST_F(SharedMemoryTest, IsCreatedByTheFirstFoundByLaterOnesAndGoneWithTheLast) {
    EXPECT_EQ(nullptr, memory_.OpenExisting(kName, kSize));
    const auto creator = Start("hold block");
    ASSERT_EQ("created 0", creator->ReadLine());
    auto block = memory_.OpenExisting(kName, kSize);
    ASSERT_TRUE(block && block->Data());
    EXPECT_TRUE(block->Existed());
    EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(block->Data()) % 4096);
    creator->WriteLine("17");
    ASSERT_EQ("written", creator->ReadLine());
    EXPECT_EQ(17, Number(*block, 0));
    EXPECT_EQ(nullptr, memory_.OpenExisting(kName, kSize * 2));

    creator->Kill();
    creator->Wait();
    Number(*block, 0) = 18;
    EXPECT_EQ("existed 18", Start("hold block")->ReadLine()) << "who has opened it holds it too";
    block.reset();
    EXPECT_EQ(nullptr, memory_.OpenExisting(kName, kSize));
    ExpectNewBlock();
}

TEST_F(SharedMemoryTest, OfManyThatStartAndLeaveAtOnceExactlyOneCreates) {
    for (const auto& child : StartFour()) EXPECT_EQ(0, child->Wait());
}

TEST_F(SharedMemoryTest, NothingIsLeftOfManyThatAreKilledAtAnyMoment) {
    for (int round = 0; round < 10; ++round) {
        const auto children = StartFour();
        EXPECT_EQ("going", children[0]->ReadLine());
        for (const auto& child : children) child->Kill();
        for (const auto& child : children) child->Wait();
        ExpectNewBlock();
    }
}

}  // namespace
}  // namespace twr
