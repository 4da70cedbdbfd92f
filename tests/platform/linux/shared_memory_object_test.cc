// What other programs see of a block from outside. "hold block" is a role of shared_memory_test.cc.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <barrier>
#include <cstdio>
#include <thread>

#include "base/wide_text.h"
#include "platform/linux/descriptor.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr {
namespace {

constexpr std::size_t kSize = 166784;

// Leaves itself no room to map the block.
const testing::Role unmapped("hold unmapped", [](const std::vector<std::string>& arguments) {
    const auto system = testing::SystemOf(arguments);
    const rlimit room{1, 1};
    setrlimit(RLIMIT_AS, &room);
    const auto block = system->Core().memory.CreateOrOpen(u"Block", kSize);
    std::puts(block && !block->Data() && !block->Existed() ? "unmapped, created" : "failed");
    std::fflush(stdout);
    std::getchar();
    return 0;
});

class SharedMemoryObjectTest : public ::testing::Test {
protected:
    ~SharedMemoryObjectTest() override { shm_unlink(ObjectName().c_str()); }

    std::string ObjectName() const {
        return "/" + ToUtf8(testing::TestRoots(test_.name, test_.folder.Text()).namePrefix) + "Block";
    }

    Descriptor Object(int flags = O_RDWR) const { return Descriptor(shm_open(ObjectName().c_str(), flags, 0600)); }

    std::unique_ptr<testing::ChildProcess> Start(const char* role) { return testing::StartRole(role, test_.Arguments()); }

    testing::TestSystem test_;
    SharedMemory& memory_ = test_.system->Core().memory;
};

bool IsReadLockedAsAWhole(const Descriptor& object) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    return fcntl(object.Get(), F_OFD_GETLK, &lock) == 0 && lock.l_type == F_RDLCK && lock.l_start == 0 && lock.l_len == 0;
}

TEST_F(SharedMemoryObjectTest, IsReadLockedAsAWholeAndGoneWithItsLastHolder) {
    auto creator = memory_.CreateOrOpen(u"Block", kSize);
    auto other = memory_.CreateOrOpen(u"Block", kSize);
    ASSERT_TRUE(creator && other);
    const Descriptor object = Object();
    ASSERT_TRUE(object);
    struct stat status {};
    ASSERT_EQ(0, fstat(object.Get(), &status));
    EXPECT_EQ(0600u, status.st_mode & 07777);
    EXPECT_EQ(static_cast<off_t>(kSize), status.st_size);
    EXPECT_TRUE(IsReadLockedAsAWhole(object));
    creator.reset();
    EXPECT_TRUE(IsReadLockedAsAWhole(object)) << "one that joined";
    EXPECT_TRUE(Object());
    other.reset();
    EXPECT_FALSE(Object());
}

TEST_F(SharedMemoryObjectTest, WhatAKilledHolderLeavesIsTakenAway) {
    const auto holder = Start("hold block");
    ASSERT_EQ("created 0", holder->ReadLine());
    holder->Kill();
    holder->Wait();
    ASSERT_TRUE(Object()) << "a killed holder takes nothing away itself";
    EXPECT_EQ(nullptr, memory_.OpenExisting(u"Block", kSize));
    EXPECT_FALSE(Object());
}

TEST_F(SharedMemoryObjectTest, AnObjectOfAnotherSizeThatNobodyHoldsIsNoObstacle) {
    ASSERT_EQ(0, ftruncate(Object(O_RDWR | O_CREAT).Get(), 12));
    const auto block = memory_.CreateOrOpen(u"Block", kSize);
    ASSERT_NE(nullptr, block);
    EXPECT_FALSE(block->Existed());
}

TEST_F(SharedMemoryObjectTest, ABlockOfAnotherSizeThatIsHeldIsRefusedAtTheFirstTry) {
    const auto block = memory_.CreateOrOpen(u"Block", kSize);
    const Descriptor watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    ASSERT_LE(0, inotify_add_watch(watch.Get(), ("/dev/shm" + ObjectName()).c_str(), IN_OPEN | IN_CLOSE_WRITE));
    EXPECT_EQ(nullptr, memory_.CreateOrOpen(u"Block", kSize * 2));
    int tries = 0;
    for (inotify_event event{}; read(watch.Get(), &event, sizeof event) == sizeof event;)
        tries += (event.mask & IN_CLOSE_WRITE) != 0;
    EXPECT_EQ(1, tries);
    EXPECT_TRUE(IsReadLockedAsAWhole(Object()));
}

TEST_F(SharedMemoryObjectTest, IsGoneAfterManyHaveLeftAtOnce) {
    for (int round = 0; round < 1000; ++round) {
        std::barrier together(2);
        const auto hold = [&](std::unique_ptr<SharedBlock> block) {
            together.arrive_and_wait();
            block.reset();
        };
        std::thread other(hold, memory_.CreateOrOpen(u"Block", kSize));
        hold(memory_.CreateOrOpen(u"Block", kSize));
        other.join();
        ASSERT_FALSE(Object()) << "round " << round;
    }
}

TEST_F(SharedMemoryObjectTest, ABlockThatCantBeMappedIsStillHeld) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer needs the room";
#endif
    const auto holder = Start("hold unmapped");
    ASSERT_EQ("unmapped, created", holder->ReadLine());
    const auto block = memory_.OpenExisting(u"Block", kSize);
    ASSERT_NE(nullptr, block);
    EXPECT_NE(nullptr, block->Data());
}

TEST_F(SharedMemoryObjectTest, ABlockWithoutMemoryBehindItIsNoBlock) {
    EXPECT_EQ(nullptr, memory_.CreateOrOpen(u"Block", std::size_t{1} << 62));
    EXPECT_FALSE(Object());
}

}  // namespace
}  // namespace twr
