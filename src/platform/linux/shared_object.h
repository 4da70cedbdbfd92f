// The POSIX object behind a block of shared memory, and the locks that tell who holds it.
#pragma once
#include <sys/types.h>

#include <cstddef>
#include <limits>
#include <string>

#include "platform/linux/descriptor.h"

namespace twr {

struct LockRange {
    off_t start, length;  // length 0: to the end
};
inline constexpr off_t kLastByte = std::numeric_limits<off_t>::max();
inline constexpr LockRange kWhole{0, 0};
inline constexpr LockRange kLook{0, kLastByte};
inline constexpr LockRange kHolders{kLastByte, 0};

// An object while this process may have a lock on it. Whoever lets go and finds no other holder takes the name away.
class SharedObject {
public:
    // Opens the object with O_CREAT or 0; errno says why it can't.
    SharedObject(std::string name, int flags);
    SharedObject(SharedObject&&) = default;
    ~SharedObject();

    explicit operator bool() const { return static_cast<bool>(file_); }
    int Get() const { return file_.Get(); }

    // F_RDLCK, F_WRLCK or F_UNLCK, without waiting. False when another process is in the way.
    bool Lock(short type, LockRange range);

    // A true holder is there. A writer, who is creating the block or taking its name away, is none.
    bool HeldByOthers() const;

    // The name still leads to this object. It stays so as long as a lock on it is held. False with another errno than ENOENT where
    // that can't be told.
    bool IsNamed() const;

    bool HasSize(std::size_t size) const;

    // Why another user could read, change or shorten the object; empty when none can.
    std::string Danger() const;

    // Zeros of this size, with memory behind each of them: a later lack of it could only show as a fatal signal. Gives an error
    // number, 0 for none.
    int Fill(std::size_t size);

private:
    void Leave();

    std::string name_;
    Descriptor file_;
    bool locked_ = false;
};

}  // namespace twr
