// SPDX-License-Identifier: MIT
// A program's status is a file that it maps and keeps locked: a lock shows that what is there is not left by a program that was
// killed. Each run makes a file of its own, so that nothing else that has an earlier one, a forked child with its lock included,
// has anything to do with it.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>

#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"

namespace twr {
namespace {

// A file of status, mapped.
class StatusFile : public SharedBlock {
public:
    StatusFile(Descriptor file, std::size_t size, int rights)
        : file_(std::move(file)), size_(size), data_(mmap(nullptr, size, rights, MAP_SHARED, file_.Get(), 0)) {}
    ~StatusFile() override {
        if (Data()) munmap(data_, size_);
    }

    void* Data() const override { return data_ == MAP_FAILED ? nullptr : data_; }
    bool Existed() const override { return true; }

protected:
    const Descriptor file_;

private:
    const std::size_t size_;
    void* const data_;
};

// That of this program.
class OwnStatusFile final : public StatusFile {
public:
    OwnStatusFile(Descriptor file, std::size_t size, std::string path)
        : StatusFile(std::move(file), size, PROT_READ | PROT_WRITE), path_(std::move(path)) {}
    ~OwnStatusFile() override {
        if (SameFile(OpenPlainFile(path_, O_RDONLY | O_NOFOLLOW), file_)) unlink(path_.c_str());
    }
    bool Existed() const override { return false; }

private:
    const std::string path_;
};

// Locks it and reserves memory for all of it: a later shortage would be a fatal signal.
bool Prepare(const Descriptor& file, std::size_t size) {
    struct flock whole {};
    whole.l_type = F_WRLCK;
    return fcntl(file.Get(), F_OFD_SETLK, &whole) == 0 && posix_fallocate(file.Get(), 0, static_cast<off_t>(size)) == 0;
}

bool IsOfARunningProgram(const Descriptor& file, std::size_t size) {
    struct stat status {};
    struct flock whole {};
    whole.l_type = F_WRLCK;
    return fstat(file.Get(), &status) == 0 && status.st_uid == geteuid() && static_cast<std::uintmax_t>(status.st_size) == size &&
           fcntl(file.Get(), F_OFD_GETLK, &whole) == 0 && whole.l_type != F_UNLCK;
}

class StatusFiles final : public StatusBoard {
public:
    explicit StatusFiles(const Roots& roots) : roots_(roots) {}

    std::unique_ptr<SharedBlock> Post(std::u16string_view program, std::size_t size) override {
        for (const FilePlace& place : roots_.status) {
            const std::string path = PathOf(place, program);
            unlink(path.c_str());
            Descriptor file = OpenPlainFile(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, 0600);
            if (!file) continue;
            const bool ready = Prepare(file, size);
            auto own = std::make_unique<OwnStatusFile>(std::move(file), size, path);
            if (ready && own->Data()) return own;
        }
        return nullptr;
    }

    std::unique_ptr<SharedBlock> See(std::u16string_view program, std::size_t size) const override {
        for (const FilePlace& place : roots_.status) {
            Descriptor file = OpenPlainFile(PathOf(place, program), O_RDONLY | O_NOFOLLOW);
            if (!file || !IsOfARunningProgram(file, size)) continue;
            auto seen = std::make_unique<StatusFile>(std::move(file), size, PROT_READ);
            if (seen->Data()) return seen;
        }
        return nullptr;
    }

private:
    std::string PathOf(const FilePlace& place, std::u16string_view program) const {
        return FileIn(place, roots_.namePrefix, program, u"-status" + place.tag);
    }

    const Roots roots_;
};

}  // namespace

std::unique_ptr<StatusBoard> MakeStatusBoard(const Roots& roots) { return std::make_unique<StatusFiles>(roots); }

}  // namespace twr
