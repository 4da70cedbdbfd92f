// SPDX-License-Identifier: MIT
// What other programs see of a block from outside.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <barrier>
#include <cerrno>
#include <thread>

#include "base/wide_text.h"
#include "platform/linux/descriptor.h"
#include "support/test_system.h"

namespace twr {
namespace {

constexpr std::size_t kBlockSize = 166784;

// The tests' hand in each opening of an object by name. Openings are counted from 1.
std::function<void(int)> afterOpening;
int openings = 0, openingThatFails = 0;  // for want of a descriptor

struct SharedMemoryObjectTest : ::testing::Test {
    ~SharedMemoryObjectTest() override { Unlink(); }
    void Unlink() const { shm_unlink(ObjectName().c_str()); }

    std::string ObjectName() const {
        return "/" + ToUtf8(testing::TestRoots(test_.name, test_.folder.Text()).namePrefix) + "Block";
    }

    Descriptor Object(int flags = O_RDWR) const { return Descriptor(shm_open(ObjectName().c_str(), flags, 0600)); }

    testing::TestSystem test_;
    SharedMemory& memory_ = test_.system->Core().memory;
};

bool SetLock(const Descriptor& object, short type, off_t start, off_t length) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_start = start;
    lock.l_len = length;
    return fcntl(object.Get(), F_OFD_SETLK, &lock) == 0;
}

// What another than the owner of this descriptor has locked from `start` on: type, start and length.
std::string LockOfOthers(const Descriptor& object, off_t start) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_start = start;
    if (fcntl(object.Get(), F_OFD_GETLK, &lock) != 0 || lock.l_type == F_UNLCK) return "";
    return (lock.l_type == F_RDLCK ? "read " : "write ") + std::to_string(lock.l_start) + ' ' + std::to_string(lock.l_len);
}

TEST_F(SharedMemoryObjectTest, IsReadLockedAsAWholeAndGoneWithItsLastHolder) {
    auto creator = memory_.CreateOrOpen(u"Block", kBlockSize), other = memory_.CreateOrOpen(u"Block", kBlockSize);
    const Descriptor object = Object();
    struct stat status {};
    ASSERT_EQ(0, fstat(object.Get(), &status));
    EXPECT_EQ(0600u, status.st_mode & 07777);
    EXPECT_EQ(static_cast<off_t>(kBlockSize), status.st_size);
    EXPECT_EQ("read 0 0", LockOfOthers(object, 0));
    creator.reset();
    EXPECT_EQ("read 0 0", LockOfOthers(object, 0)) << "one that joined";
    EXPECT_TRUE(Object());
    other.reset();
    EXPECT_FALSE(Object());
    EXPECT_TRUE(Object(O_RDWR | O_CREAT)) << "as a killed holder leaves it";
    EXPECT_EQ(nullptr, memory_.OpenExisting(u"Block", kBlockSize));
    EXPECT_FALSE(Object());
}

// Others come, go and are killed between any two of its steps: here between its first opening of the object and its second look
// for the name.
TEST_F(SharedMemoryObjectTest, IsHadWhateverOthersDoMeanwhile) {
    constexpr off_t kLast = std::numeric_limits<off_t>::max();
    const std::string path = "/dev/shm" + ObjectName();
    Descriptor other;
    const auto lock = [&](short type, off_t start, off_t length) { EXPECT_TRUE(SetLock(other, type, start, length)); };
    bool ownLook = false, ownHold = false;  // locked by it at the second look
    const std::tuple<const char*, std::function<void()>, std::function<void()>, std::function<void()>, bool, bool> rows[] = {
        {"left in another size", [&] { EXPECT_EQ(0, ftruncate(other.Get(), 12)); }, [] {}, [] {}, false, true},
        {"the name is taken away", [] {}, [&] { shm_unlink(ObjectName().c_str()); }, [] {}, false, true},
        {"another takes the name", [] {}, [&] { Unlink(), Descriptor(creat(path.c_str(), 0600)); }, [] {}, false, true},
        {"held", [&] { lock(F_RDLCK, 0, 0); }, [] {}, [] {}, true, true},
        {"held, and left", [&] { lock(F_RDLCK, 0, 0); }, [] {}, [&] { lock(F_UNLCK, 0, 0); }, false, true},
        {"looked at", [&] { lock(F_RDLCK, 0, kLast); }, [] {}, [&] { lock(F_UNLCK, 0, 0); }, false, false},
        {"written", [&] { lock(F_WRLCK, kLast, 0); }, [] {}, [&] { lock(F_UNLCK, 0, 0); }, false, false}};
    for (const auto& [what, before, first, second, existed, looks] : rows) {
        SCOPED_TRACE(what);
        other = Object(O_RDWR | O_CREAT);
        ASSERT_EQ(0, ftruncate(other.Get(), kBlockSize));
        before();
        openings = 0;
        afterOpening = [&, &at = first, &then = second, held = existed](int opening) {
            if (opening == 1) at();
            if (opening != 2) return;
            ownLook = !LockOfOthers(other, 0).empty();
            ownHold = held && !LockOfOthers(other, kLast).empty();
            then();
        };
        const auto block = memory_.CreateOrOpen(u"Block", kBlockSize);
        afterOpening = nullptr;
        ASSERT_TRUE(block && block->Data());
        EXPECT_EQ(existed, block->Existed());
        EXPECT_EQ(looks, ownLook) << "it locks nothing before it has seen a holder";
        EXPECT_FALSE(ownHold) << "who only looks is no holder";
        EXPECT_NE(nullptr, memory_.OpenExisting(u"Block", kBlockSize)) << "its name leads to it";
        other.Close();
    }
}

TEST_F(SharedMemoryObjectTest, WhyItCantBeHadIsToldAndMakesTheProgramFail) {
    constexpr std::size_t kVast = std::size_t{1} << 62;
    std::unique_ptr<SharedBlock> held;
    Descriptor holder;
    const auto opened = [&](mode_t mode) { return [this, mode] { fchmod(Object(O_RDWR | O_CREAT).Get(), mode); }; };
    const std::tuple<const char*, std::function<void()>, std::string> rows[] = {
        {"too large", [] {}, "there is no room for it: "},
        {"open to its group", opened(0640), "other users have access by its mode 0640; remove it"},
        {"open to others", opened(0666), "other users have access by its mode 0666; remove it"},
        {"another user's", [&] { EXPECT_TRUE(geteuid() != 0 || fchown(Object(O_RDWR | O_CREAT).Get(), 12345, 12345) == 0); },
         geteuid() == 0 ? "it belongs to another user, with uid 12345; have that user" : ""},
        {"a link", [&] { EXPECT_EQ(0, symlink("/dev/null", ("/dev/shm" + ObjectName()).c_str())); }, "it can't be opened: "},
        {"a pipe", [&] { EXPECT_EQ(0, mkfifo(("/dev/shm" + ObjectName()).c_str(), 0600)); }, "it is not shared memory; remove it"},
        {"no descriptor left", [] { openingThatFails = 1; }, "it can't be opened: Too many open files"},
        {"one descriptor left", [] { openingThatFails = 2; }, "it can't be opened: Too many open files"},
        {"no room to map it",
         [&] {
             holder = Object(O_RDWR | O_CREAT);
             EXPECT_TRUE(ftruncate(holder.Get(), kVast) == 0 && SetLock(holder, F_RDLCK, 0, 0));
         },
         "it can't be mapped: Cannot allocate memory"},
        {"held in another size", [&] { held = memory_.CreateOrOpen(u"Block", kBlockSize / 2); },
         "a program that holds it created it with another size; end that program"}};
    for (const auto& [what, plant, why] : rows) {
        if (why.empty()) {
            testing::LeaveOut(what, "only root can plant it");
            continue;
        }
        SCOPED_TRACE(what);
        shm_unlink(ObjectName().c_str());
        plant();
        const bool canBeMapped = !why.starts_with("it can't be mapped"), canBeSeen = canBeMapped && openingThatFails == 0;
        const std::size_t size = canBeMapped && !why.starts_with("there is no room") ? kBlockSize : kVast;
        const auto system = testing::SystemOf(test_.Arguments());
        const MemoryFault seen = system->Core().memory.FaultOf(u"Block", size);
        EXPECT_EQ(canBeSeen, (seen.what + "; " + seen.todo).find(why) != std::string::npos) << seen.what;
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(0, system->ExitStatus());
        openings = 0;
        const auto block = system->Core().memory.CreateOrOpen(u"Block", size);
        EXPECT_TRUE(!block || !block->Data());
        EXPECT_GE(3, openings) << "it is not tried again";
        openingThatFails = 0;
        holder.Close();
        EXPECT_NE(0, system->ExitStatus());
        EXPECT_EQ(block != nullptr, memory_.OpenExisting(u"Block", size) != nullptr) << "what can't be mapped is held";
        const std::string told = ::testing::internal::GetCapturedStderr();
        EXPECT_TRUE(told.find("/dev/shm" + ObjectName() + ": " + why) != told.npos) << told;
    }
    EXPECT_EQ("read 0 0", LockOfOthers(Object(), 0)) << "who holds it is left alone";
}

// As a system does that ends a user's last session.
TEST_F(SharedMemoryObjectTest, ANameThatIsTakenFromItIsNoticedAndTold) {
    for (const bool another : {false, true}) {
        const auto system = testing::SystemOf(test_.Arguments());
        auto block = system->Core().memory.CreateOrOpen(u"Block", kBlockSize);
        ::testing::internal::CaptureStderr();
        EXPECT_FALSE(block->IsLost());
        EXPECT_TRUE(memory_.HasName(u"Block"));
        shm_unlink(ObjectName().c_str());
        EXPECT_FALSE(memory_.HasName(u"Block"));
        const auto next = another ? memory_.CreateOrOpen(u"Block", kBlockSize) : nullptr;
        EXPECT_TRUE(block->IsLost() && block->IsLost());
        const std::string told = ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(1, std::ranges::count(told, '\n')) << told;
        EXPECT_NE(std::string::npos, told.find("/dev/shm" + ObjectName() + ": its name has been removed")) << told;
        EXPECT_NE(0, system->ExitStatus());
        block.reset();
        EXPECT_EQ(another, memory_.HasName(u"Block")) << "what others have made stays";
    }
}

TEST_F(SharedMemoryObjectTest, IsGoneAfterManyHaveLeftAtOnce) {
    for (int round = 0; round < 1000; ++round) {
        std::barrier together(2);
        const auto keep = [&](std::unique_ptr<SharedBlock> block) {
            together.arrive_and_wait();
            block.reset();
        };
        std::thread other(keep, memory_.CreateOrOpen(u"Block", kBlockSize));
        keep(memory_.CreateOrOpen(u"Block", kBlockSize));
        other.join();
        ASSERT_FALSE(Object()) << "round " << round;
    }
}

}  // namespace
}  // namespace twr

// In place of the C library's, for this program.
extern "C" int shm_open(const char* name, int flags, mode_t mode) {
    ++twr::openings;
    if (twr::openings == twr::openingThatFails) {
        errno = EMFILE;
        return -1;
    }
    const int object = open(("/dev/shm" + std::string(name)).c_str(), flags | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, mode);
    const int error = errno;
    if (twr::afterOpening) twr::afterOpening(twr::openings);
    errno = error;
    return object;
}
