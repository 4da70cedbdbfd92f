#include "platform/shared_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <iostream>

#include "platform/wide_text.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr {
namespace {

constexpr std::size_t kSize = 166784;
constexpr std::u16string_view kName = u"Block";

using Arguments = std::vector<std::string>;

std::unique_ptr<System> SystemOf(const Arguments& arguments) {
    return MakeSystem(testing::TestRoots(arguments[0], FromUtf8(arguments[1])));
}

std::atomic_ref<std::int32_t> Number(const SharedBlock& block, std::size_t index) {
    return std::atomic_ref(static_cast<std::int32_t*>(block.Data())[index]);
}

bool AllZero(const SharedBlock& block) {
    const char* bytes = static_cast<const char*>(block.Data());
    return std::all_of(bytes, bytes + kSize, [](char byte) { return byte == 0; });
}

// Holds the block, tells how it was had, and writes the numbers it is given in place of the first one, until its input ends.
const testing::Role hold("hold block", [](const Arguments& arguments) {
    const auto system = SystemOf(arguments);
    const auto block = system->Core().memory.CreateOrOpen(kName, kSize);
    if (!block || !block->Data()) return 1;
    std::cout << (block->Existed() ? "existed " : "created ") << Number(*block, 0) << std::endl;
    for (int number = 0; std::cin >> number;) {
        if (number < 0) return 0;
        Number(*block, 0) = number;
        std::cout << "written" << std::endl;
    }
    return 0;
});

// Starts and leaves again and again, and gives up at the first block that is not what it says. The creator puts a mark of its own
// into the block, and as long as a block is held its name leads to that mark.
const testing::Role storm("storm block", [](const Arguments& arguments) {
    constexpr std::size_t kSmall = 4096;
    constexpr std::u16string_view kStorm = u"Storm";
    const auto system = SystemOf(arguments);
    SharedMemory& memory = system->Core().memory;
    const std::int32_t first = std::stoi(arguments[2]);
    const std::int32_t rounds = std::stoi(arguments[3]);
    std::cout << "ready" << std::endl;
    std::cin.get();
    for (std::int32_t round = 0; round < rounds; ++round) {
        const auto block = memory.CreateOrOpen(kStorm, kSmall);
        if (!block || !block->Data()) return 2;
        auto mark = Number(*block, 0);
        if (!block->Existed() && mark.exchange(first + round) != 0) return 3;
        while (mark == 0) continue;  // the creator is about to set it
        const std::int32_t mine = mark;
        const auto again = memory.OpenExisting(kStorm, kSmall);
        if (!again || !again->Data()) return 4;
        if (Number(*again, 0) != mine || mark != mine) return 5;
    }
    return 0;
});

// The same without a look at anything, to be killed at any moment.
const testing::Role doomed("doomed block", [](const Arguments& arguments) {
    const auto system = SystemOf(arguments);
    std::cout << "running" << std::endl;
    for (;;) {
        const auto block = system->Core().memory.CreateOrOpen(kName, kSize);
        if (block && block->Data()) Number(*block, kSize / 8) = 1;
    }
    return 0;
});

class SharedMemoryTest : public ::testing::Test {
protected:
    // Looking for a block clears away what a killed holder has left of it.
    ~SharedMemoryTest() override { memory_.OpenExisting(kName, kSize); }

    std::unique_ptr<testing::ChildProcess> Start(const std::string& role, const Arguments& more = {}) {
        Arguments arguments{test_.name, ToUtf8(test_.folder.Text())};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return testing::StartRole(role, arguments);
    }

    testing::TestSystem test_;
    SharedMemory& memory_ = test_.system->Core().memory;
};

TEST_F(SharedMemoryTest, TheFirstCreatesZerosAndLaterOnesFindThem) {
    auto block = memory_.CreateOrOpen(kName, kSize);
    ASSERT_NE(nullptr, block);
    ASSERT_NE(nullptr, block->Data());
    EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(block->Data()) % 4096);
    EXPECT_FALSE(block->Existed());
    EXPECT_TRUE(AllZero(*block));
    Number(*block, 0) = 17;

    const auto other = Start("hold block");
    EXPECT_EQ("existed 17", other->ReadLine());
    other->WriteLine("18");
    EXPECT_EQ("written", other->ReadLine());
    EXPECT_EQ(18, Number(*block, 0));

    block.reset();  // the other still holds it
    EXPECT_EQ("existed 18", Start("hold block")->ReadLine());
    other->WriteLine("-1");
    EXPECT_EQ(0, other->Wait());
    block = memory_.CreateOrOpen(kName, kSize);
    ASSERT_NE(nullptr, block);
    EXPECT_FALSE(block->Existed());
    EXPECT_TRUE(AllZero(*block));
}

TEST_F(SharedMemoryTest, AKilledHolderLeavesNothing) {
    const auto holder = Start("hold block");
    ASSERT_EQ("created 0", holder->ReadLine());
    holder->WriteLine("18");
    ASSERT_EQ("written", holder->ReadLine());
    holder->Kill();
    holder->Wait();
    EXPECT_EQ(nullptr, memory_.OpenExisting(kName, kSize));
    EXPECT_EQ("created 0", Start("hold block")->ReadLine());
}

TEST_F(SharedMemoryTest, OpensOnlyWhatAnotherHolds) {
    EXPECT_EQ(nullptr, memory_.OpenExisting(kName, kSize));
    const auto holder = Start("hold block");
    ASSERT_EQ("created 0", holder->ReadLine());
    auto block = memory_.OpenExisting(kName, kSize);
    ASSERT_NE(nullptr, block);
    EXPECT_TRUE(block->Existed());
    holder->WriteLine("18");
    ASSERT_EQ("written", holder->ReadLine());
    EXPECT_EQ(18, Number(*block, 0));
    EXPECT_EQ(nullptr, memory_.OpenExisting(kName, kSize * 2));

    holder->WriteLine("-1");
    holder->Wait();
    EXPECT_EQ("existed 18", Start("hold block")->ReadLine()) << "who has opened it holds it too";
}

TEST_F(SharedMemoryTest, OfManyThatStartAndLeaveAtOnceExactlyOneCreates) {
    constexpr int kProcesses = 4;
    constexpr int kRounds = 1000;
    std::vector<std::unique_ptr<testing::ChildProcess>> children;
    for (int i = 0; i < kProcesses; ++i) {
        children.push_back(Start("storm block", {std::to_string(1 + i * kRounds), std::to_string(kRounds)}));
    }
    for (const auto& child : children) ASSERT_EQ("ready", child->ReadLine());
    for (const auto& child : children) child->WriteLine("go");
    for (const auto& child : children) EXPECT_EQ(0, child->Wait());
}

TEST_F(SharedMemoryTest, NothingIsLeftOfManyThatAreKilledAtAnyMoment) {
    for (int round = 0; round < 10; ++round) {
        std::vector<std::unique_ptr<testing::ChildProcess>> children;
        for (int i = 0; i < 4; ++i) children.push_back(Start("doomed block"));
        for (const auto& child : children) ASSERT_EQ("running", child->ReadLine());
        for (const auto& child : children) child->Kill();
        for (const auto& child : children) child->Wait();
        const auto block = memory_.CreateOrOpen(kName, kSize);
        ASSERT_NE(nullptr, block);
        EXPECT_FALSE(block->Existed());
        EXPECT_TRUE(AllZero(*block));
    }
}

}  // namespace
}  // namespace twr
