// SPDX-License-Identifier: MIT
#include "platform/linux/shared_object.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

namespace twr {

SharedObject::SharedObject(std::string name, int flags)
    : name_(std::move(name)), path_(ObjectPath(name_)), file_(shm_open(name_.c_str(), flags | O_RDWR | O_CLOEXEC, 0600)) {
    file_.KeepFromForks();
}

SharedObject::~SharedObject() {
    if (file_ && locked_) Leave();
}

bool SharedObject::Lock(short type, LockRange range) {
    struct flock lock {};
    lock.l_type = type;
    lock.l_start = range.start;
    lock.l_len = range.length;
    if (fcntl(file_.Get(), F_OFD_SETLK, &lock) != 0) return false;
    locked_ = type != F_UNLCK;
    return true;
}

bool SharedObject::HeldByOthers() const {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_start = kHolders.start;
    lock.l_len = kHolders.length;
    return fcntl(file_.Get(), F_OFD_GETLK, &lock) == 0 && lock.l_type == F_RDLCK;
}

bool SharedObject::IsNamed() const {
    const Descriptor now(shm_open(name_.c_str(), O_RDONLY | O_CLOEXEC, 0));
    if (!now) return false;
    errno = ENOENT;  // if another object has the name
    return SameFile(now, file_);
}

bool SharedObject::HasLostName() const {
    struct stat named {};
    struct stat own {};
    if (lstat(path_.c_str(), &named) != 0) return errno == ENOENT;
    return fstat(file_.Get(), &own) == 0 && (named.st_dev != own.st_dev || named.st_ino != own.st_ino);
}

bool SharedObject::HasSize(std::size_t size) const {
    struct stat status {};
    return fstat(file_.Get(), &status) == 0 && static_cast<std::uintmax_t>(status.st_size) == size;
}

MemoryFault SharedObject::Danger() const {
    struct stat status {};
    const bool known = fstat(file_.Get(), &status) == 0;
    if (known && status.st_uid != geteuid()) return OfAnotherUser(status.st_uid);
    if (!known || !S_ISREG(status.st_mode)) return {"it is not shared memory", "remove it: rm " + path_};
    if ((status.st_mode & 077) == 0) return {};
    char mode[8];
    std::snprintf(mode, sizeof mode, "%04o", status.st_mode & 07777u);
    return {std::string("other users have access by its mode ") + mode, "remove it: rm " + path_};
}

MemoryFault SharedObject::OfAnotherUser(uid_t user) const {
    return {"it belongs to another user, with uid " + std::to_string(user),
            "have that user end the programs of the suite, or an administrator remove it: rm " + path_};
}

int SharedObject::Fill(std::size_t size) {
    if (ftruncate(file_.Get(), 0) != 0) return errno;
    int error = EINTR;
    while (error == EINTR) error = posix_fallocate(file_.Get(), 0, static_cast<off_t>(size));
    return error;
}

void SharedObject::Leave() {
    // Two processes that leave together refuse each other the conversion; after unlocking, the second finds no other holder.
    const bool last = Lock(F_WRLCK, kWhole) || (Lock(F_UNLCK, kWhole) && Lock(F_WRLCK, kWhole));
    if (last && IsNamed()) shm_unlink(name_.c_str());
}

}  // namespace twr
