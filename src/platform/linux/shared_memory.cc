// A block is a POSIX object on which every holder keeps a read lock, which the kernel drops with the process. The write lock, to be
// had only where nobody holds the block, is the right to create it and the right to take its name away.
//
// A process that only looks whether it may join locks all but the last byte. So the last byte is locked by true holders alone, and
// two processes that look at what a killed holder left can't take each other for one.

#include "platform/shared_memory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <thread>

#include "base/wide_text.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"

namespace twr {
namespace {

using Steady = std::chrono::steady_clock;

constexpr off_t kLastByte = std::numeric_limits<off_t>::max();
constexpr auto kPatience = std::chrono::seconds(3);  // with others that start, leave or are stopped in the middle of it
constexpr auto kPause = std::chrono::microseconds(100);

struct Range {
    off_t start, length;  // length 0: to the end
};
constexpr Range kWhole{0, 0};
constexpr Range kLook{0, kLastByte};
constexpr Range kHolders{kLastByte, 0};

// An object while this process may have a lock on it. Whoever lets go and finds no other holder takes the name away.
class Object {
public:
    Object(std::string name, int flags)
        : name_(std::move(name)), file_(shm_open(name_.c_str(), flags | O_RDWR | O_CLOEXEC, 0600)) {}
    Object(Object&&) = default;
    ~Object() {
        if (file_ && locked_) Leave();
    }

    explicit operator bool() const { return static_cast<bool>(file_); }
    int Get() const { return file_.Get(); }

    bool Lock(short type, Range range) {
        struct flock lock {};
        lock.l_type = type;
        lock.l_start = range.start;
        lock.l_len = range.length;
        if (fcntl(file_.Get(), F_OFD_SETLK, &lock) != 0) return false;
        locked_ = type != F_UNLCK;
        return true;
    }

    // A true holder is there. A writer, who is creating the block or taking its name away, is none.
    bool HeldByOthers() const {
        struct flock lock {};
        lock.l_type = F_WRLCK;
        lock.l_start = kHolders.start;
        lock.l_len = kHolders.length;
        return fcntl(file_.Get(), F_OFD_GETLK, &lock) == 0 && lock.l_type == F_RDLCK;
    }

    // The name still leads to this object. It stays so as long as a lock on it is held.
    bool IsNamed() const {
        const Descriptor now(shm_open(name_.c_str(), O_RDONLY | O_CLOEXEC, 0));
        struct stat mine {};
        struct stat named {};
        return now && fstat(now.Get(), &named) == 0 && fstat(file_.Get(), &mine) == 0 && mine.st_ino == named.st_ino &&
               mine.st_dev == named.st_dev;
    }

    bool HasSize(std::size_t size) const {
        struct stat status {};
        return fstat(file_.Get(), &status) == 0 && static_cast<std::uintmax_t>(status.st_size) == size;
    }

    // Zeros of this size, with memory behind each of them: a later lack of it could only show as a fatal signal.
    bool Fill(std::size_t size) {
        if (ftruncate(file_.Get(), 0) != 0) return false;
        int error = EINTR;
        while (error == EINTR) error = posix_fallocate(file_.Get(), 0, static_cast<off_t>(size));
        return error == 0;
    }

private:
    void Leave() {
        // Two that leave together refuse each other the conversion; unlocked, the second of them finds nobody.
        const bool last = Lock(F_WRLCK, kWhole) || (Lock(F_UNLCK, kWhole) && Lock(F_WRLCK, kWhole));
        if (last && IsNamed()) shm_unlink(name_.c_str());
    }

    std::string name_;
    Descriptor file_;
    bool locked_ = false;
};

class Block final : public SharedBlock {
public:
    Block(Object object, std::size_t size, bool existed)
        : object_(std::move(object)),
          size_(size),
          existed_(existed),
          data_(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, object_.Get(), 0)) {}
    ~Block() override {
        if (Data()) munmap(data_, size_);
    }

    void* Data() const override { return data_ == MAP_FAILED ? nullptr : data_; }
    bool Existed() const override { return existed_; }

private:
    const Object object_;
    const std::size_t size_;
    const bool existed_;
    void* const data_;
};

// What one attempt came to: nothing when it must begin anew, nullptr when there is no block to be had.
using Attempt = std::optional<std::unique_ptr<SharedBlock>>;

Attempt Create(Object object, std::size_t size) {
    if (!object.IsNamed()) return std::nullopt;
    if (!object.Fill(size) || !object.Lock(F_RDLCK, kWhole)) return nullptr;
    return std::make_unique<Block>(std::move(object), size, false);
}

// Joins the others who hold the block. The first look is taken without a lock: over what a killed holder left many could otherwise
// go on refusing each other the write lock. The size stands before the creator becomes a holder, so another one is final.
Attempt Join(Object object, std::size_t size) {
    if (!object.HeldByOthers() || !object.Lock(F_RDLCK, kLook)) return std::nullopt;
    if (!object.IsNamed() || !object.HeldByOthers()) return std::nullopt;
    if (!object.HasSize(size)) return nullptr;
    if (!object.Lock(F_RDLCK, kWhole)) return std::nullopt;
    return std::make_unique<Block>(std::move(object), size, true);
}

class PosixSharedMemory final : public SharedMemory {
public:
    explicit PosixSharedMemory(const std::u16string& prefix) : prefix_("/" + ToUtf8(prefix)) {}

    std::unique_ptr<SharedBlock> CreateOrOpen(std::u16string_view name, std::size_t size) override {
        return Acquire(name, size, true);
    }

    std::unique_ptr<SharedBlock> OpenExisting(std::u16string_view name, std::size_t size) override {
        return Acquire(name, size, false);
    }

private:
    std::unique_ptr<SharedBlock> Acquire(std::u16string_view name, std::size_t size, bool mayCreate) const {
        const auto end = Steady::now() + kPatience;
        do {
            if (Attempt attempt = Try(name, size, mayCreate)) return std::move(*attempt);
            std::this_thread::sleep_for(kPause);
        } while (Steady::now() < end);
        return nullptr;
    }

    Attempt Try(std::u16string_view name, std::size_t size, bool mayCreate) const {
        Object object(prefix_ + ToUtf8(name), mayCreate ? O_CREAT : 0);
        if (!object) return nullptr;
        if (!object.Lock(F_WRLCK, kWhole)) return Join(std::move(object), size);
        if (!mayCreate) return nullptr;
        return Create(std::move(object), size);
    }

    const std::string prefix_;
};

}  // namespace

std::unique_ptr<SharedMemory> MakeSharedMemory(const std::u16string& namePrefix) {
    return std::make_unique<PosixSharedMemory>(namePrefix);
}

}  // namespace twr
