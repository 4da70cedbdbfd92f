// SPDX-License-Identifier: MIT
// The POSIX object behind a block of shared memory, and the locks that show whether it is held.
#pragma once
#include <sys/types.h>

#include <cstddef>
#include <limits>
#include <string>

#include "platform/linux/descriptor.h"
#include "platform/shared_memory.h"

namespace twr {

struct LockRange {
    off_t start, length;  // length 0: to the end
};
inline constexpr off_t kLastByte = std::numeric_limits<off_t>::max();
inline constexpr LockRange kWhole{0, 0};
inline constexpr LockRange kLook{0, kLastByte};
inline constexpr LockRange kHolders{kLastByte, 0};

// The file behind the object's name.
inline std::string ObjectPath(const std::string& name) { return "/dev/shm" + name; }

// An object while this process may have a lock on it. The destructor unlinks the name if it finds no other holder.
class SharedObject {
public:
    // Opens the object with O_CREAT or 0; sets errno on failure.
    SharedObject(std::string name, int flags);
    SharedObject(SharedObject&&) = default;
    ~SharedObject();

    explicit operator bool() const { return static_cast<bool>(file_); }
    int Get() const { return file_.Get(); }
    const std::string& Path() const { return path_; }

    // F_RDLCK, F_WRLCK or F_UNLCK, without waiting. False if a lock of another process prevents it.
    bool Lock(short type, LockRange range);

    // Whether there is a true holder. A process with the write lock, which creates the block or unlinks its name, is not one.
    bool HeldByOthers() const;

    // Whether the name still leads to this object, which can't change while a lock on it is held. False with an errno other than
    // ENOENT if that is unknown.
    bool IsNamed() const;

    // Whether the name is surely gone, or leads to another object. Opens nothing.
    bool HasLostName() const;

    bool HasSize(std::size_t size) const;

    // Why another user could read, change or shorten the object; nothing if none can.
    MemoryFault Danger() const;

    // What is wrong, and what to do, about one that belongs to another user.
    MemoryFault OfAnotherUser(uid_t user) const;

    // Sets the size, filled with zeros, and reserves memory for all of it: a later shortage would be a fatal signal. Returns an
    // error number, 0 for none.
    int Fill(std::size_t size);

private:
    void Leave();

    std::string name_;
    std::string path_;  // of the name, so that a look takes no memory
    Descriptor file_;
    bool locked_ = false;
};

}  // namespace twr
