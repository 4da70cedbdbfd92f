// SPDX-License-Identifier: MIT
// A block is a POSIX object on which every holder keeps a read lock, which the kernel drops with the process. The write lock,
// available only while no process holds the block, is the right to create it and the right to unlink its name.
//
// A process that checks whether it may join locks all but the last byte. So only true holders lock the last byte, and two processes
// that check what a killed holder left can't mistake each other for one.

#include "platform/shared_memory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <optional>
#include <thread>
#include <vector>

#include "base/wide_text.h"
#include "platform/linux/services.h"
#include "platform/linux/shared_object.h"
#include "platform/linux/standard_error.h"

namespace twr {
namespace {

using Steady = std::chrono::steady_clock;

constexpr auto kTimeout = std::chrono::seconds(3);  // for processes that are starting, leaving, or stopped while doing so
constexpr auto kPause = std::chrono::microseconds(100);

constexpr int kDescriptors = 16;  // that a program of the suite has open at most

const MemoryFault kOtherSize = {"a program that holds it created it with another size", "end that program"};

MemoryFault BySystem(const std::string& cause, int error) {
    MemoryFault fault{cause + ": " + std::strerror(error)};
    if (error == ENOSPC || error == ENOMEM) fault.todo = "make room in /dev/shm";
    if (error == EMFILE || error == ENFILE) fault.todo = "allow more open files: 'ulimit -n 256' before the start does";
    if (error == EACCES || error == EPERM) fault.todo = "have an administrator see to the rights of /dev/shm";
    return fault;
}

MemoryFault NotOpened(const SharedObject& object, int error) {
    struct stat status {};
    const bool foreign = error == EACCES && lstat(object.Path().c_str(), &status) == 0 && status.st_uid != geteuid();
    return foreign ? object.OfAnotherUser(status.st_uid) : BySystem("it can't be opened", error);
}

// Tried without a name, so that nobody sees it.
MemoryFault NoRoomFor(std::size_t size) {
    const Descriptor trial(open("/dev/shm", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (!trial) return errno == EOPNOTSUPP || errno == EISDIR ? MemoryFault() : BySystem("it can't be made", errno);
    if (const int error = posix_fallocate(trial.Get(), 0, static_cast<off_t>(size)))
        return BySystem("there is no room for it", error);
    std::vector<Descriptor> more;
    while (more.size() < kDescriptors) {
        if (!more.emplace_back(fcntl(trial.Get(), F_DUPFD_CLOEXEC, 0)))
            return BySystem("its program could not open its files", errno);
    }
    return {};
}

class Block final : public SharedBlock {
public:
    Block(SharedObject object, std::size_t size, bool existed, std::function<void()> tellLost)
        : object_(std::move(object)),
          size_(size),
          existed_(existed),
          tellLost_(std::move(tellLost)),
          data_(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, object_.Get(), 0)) {}
    ~Block() override {
        if (Data()) munmap(data_, size_);
    }

    void* Data() const override { return data_ == MAP_FAILED ? nullptr : data_; }
    bool Existed() const override { return existed_; }
    bool IsLost() override {
        if (!lost_ && object_.HasLostName()) {
            lost_ = true;
            tellLost_();
        }
        return lost_;
    }

private:
    const SharedObject object_;
    const std::size_t size_;
    const bool existed_;
    const std::function<void()> tellLost_;
    bool lost_ = false;
    void* const data_;
};

// The result of one attempt: nullopt if it must be repeated, nullptr if no block is available.
using Attempt = std::optional<std::unique_ptr<SharedBlock>>;

class PosixSharedMemory final : public SharedMemory {
public:
    PosixSharedMemory(const std::u16string& prefix, std::function<void(const std::string&)> tell)
        : prefix_("/" + ToUtf8(prefix)), tell_(std::move(tell)) {}

    std::unique_ptr<SharedBlock> CreateOrOpen(std::u16string_view name, std::size_t size) override {
        return Acquire(prefix_ + ToUtf8(name), size, true);
    }

    std::unique_ptr<SharedBlock> OpenExisting(std::u16string_view name, std::size_t size) override {
        return Acquire(prefix_ + ToUtf8(name), size, false);
    }

    MemoryFault FaultOf(std::u16string_view name, std::size_t size) const override {
        const SharedObject object(prefix_ + ToUtf8(name), 0);
        MemoryFault fault;
        if (object) {
            fault = object.Danger();
            if (fault.what.empty() && object.HeldByOthers() && !object.HasSize(size)) fault = kOtherSize;
        } else {
            const int error = errno;
            fault = error == ENOENT ? NoRoomFor(size) : NotOpened(object, error);
        }
        if (!fault.what.empty()) fault.what = "shared memory " + object.Path() + ": " + fault.what;
        return fault;
    }

    bool HasName(std::u16string_view name) const override {
        struct stat status {};
        return lstat(ObjectPath(prefix_ + ToUtf8(name)).c_str(), &status) == 0 || errno != ENOENT;
    }

private:
    std::unique_ptr<SharedBlock> Acquire(const std::string& name, std::size_t size, bool mayCreate) const {
        const auto end = Steady::now() + kTimeout;
        do {
            if (Attempt attempt = Try(name, size, mayCreate)) {
                if (*attempt && !(*attempt)->Data()) Refuse(name, mayCreate, BySystem("it can't be mapped", errno));
                return std::move(*attempt);
            }
            std::this_thread::sleep_for(kPause);
        } while (Steady::now() < end);
        Refuse(name, mayCreate,
               {"another program has been creating or releasing it for 3 seconds", "end that program if it is stopped"});
        return nullptr;
    }

    Attempt Try(const std::string& name, std::size_t size, bool mayCreate) const {
        SharedObject object(name, mayCreate ? O_CREAT : 0);
        if (!object) {
            const int error = errno;
            return mayCreate || error != ENOENT ? Refuse(name, mayCreate, NotOpened(object, error)) : nullptr;
        }
        if (const MemoryFault danger = object.Danger(); !danger.what.empty()) return Refuse(name, mayCreate, danger);
        if (!object.Lock(F_WRLCK, kWhole)) return Join(std::move(object), name, size, mayCreate);
        if (!mayCreate) return nullptr;
        return Create(std::move(object), name, size);
    }

    Attempt Create(SharedObject object, const std::string& name, std::size_t size) const {
        if (!object.IsNamed()) return Missed(name, true);
        if (const int error = object.Fill(size)) return Refuse(name, true, BySystem("there is no room for it", error));
        if (!object.Lock(F_RDLCK, kWhole)) return Refuse(name, true, BySystem("it can't be locked", errno));
        return Held(std::move(object), name, size, false);
    }

    // Joins the processes that hold the block. The first check takes no lock: many processes that find what a killed holder left
    // could otherwise keep refusing each other the write lock. The size is set before the creator becomes a holder, so a different
    // size is final.
    Attempt Join(SharedObject object, const std::string& name, std::size_t size, bool told) const {
        if (!object.HeldByOthers() || !object.Lock(F_RDLCK, kLook)) return std::nullopt;
        if (!object.IsNamed()) return Missed(name, told);
        if (!object.HeldByOthers()) return std::nullopt;
        if (!object.HasSize(size)) return Refuse(name, told, kOtherSize);
        if (!object.Lock(F_RDLCK, kWhole)) return std::nullopt;
        return Held(std::move(object), name, size, true);
    }

    std::unique_ptr<SharedBlock> Held(SharedObject object, const std::string& name, std::size_t size, bool existed) const {
        const auto tellLost = [tell = tell_, path = ObjectPath(name)] {
            tell("shared memory " + path +
                 ": its name has been removed, so no other program finds it. The system does that when "
                 "a user's last session ends, unless 'loginctl enable-linger' is set for the user. Start the programs of the suite "
                 "again.");
        };
        return std::make_unique<Block>(std::move(object), size, existed, tellLost);
    }

    Attempt Missed(const std::string& name, bool told) const {
        if (errno != ENOENT) return Refuse(name, told, BySystem("it can't be opened", errno));
        return std::nullopt;
    }

    // Who only looks for a block asks for the fault where it matters.
    std::unique_ptr<SharedBlock> Refuse(const std::string& name, bool told, const MemoryFault& fault) const {
        if (told) tell_("shared memory " + ObjectPath(name) + ": " + fault.what + (fault.todo.empty() ? "" : "; " + fault.todo));
        return nullptr;
    }

    const std::string prefix_;
    const std::function<void(const std::string&)> tell_;
};

}  // namespace

std::unique_ptr<SharedMemory> MakeSharedMemory(const Roots& roots, std::function<void()> failed) {
    return std::make_unique<PosixSharedMemory>(roots.namePrefix, [failed = std::move(failed)](const std::string& cause) {
        TellUser(cause);
        failed();
    });
}

}  // namespace twr
