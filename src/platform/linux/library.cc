// SPDX-License-Identifier: MIT
#include "platform/library.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>
#include <vector>

#include "base/wide_text.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"
#include "platform/linux/signal_queue.h"

namespace twr {
namespace {

bool ReadAt(const Descriptor& file, void* to, std::size_t size, std::uint64_t offset) {
    return pread(file.Get(), to, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
}

// The loader maps what the headers name without checking the file's size, and a truncated library would end the process by a
// signal.
bool IsWhole(const std::string& path, struct stat& status) {
    const Descriptor file = OpenPlainFile(path, O_RDONLY);
    ElfW(Ehdr) header{};
    if (!file || fstat(file.Get(), &status) != 0 || !ReadAt(file, &header, sizeof header, 0)) return false;
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_phentsize != sizeof(ElfW(Phdr))) return false;
    std::vector<ElfW(Phdr)> segments(header.e_phnum);
    if (!ReadAt(file, segments.data(), segments.size() * sizeof segments[0], header.e_phoff)) return false;
    const auto size = static_cast<std::uint64_t>(status.st_size);
    for (const auto& segment : segments) {
        if (segment.p_offset > size || segment.p_filesz > size - segment.p_offset) return false;
    }
    return true;
}

bool SameInode(const struct stat& a, const struct stat& b) { return a.st_dev == b.st_dev && a.st_ino == b.st_ino; }

bool SameContents(const struct stat& a, const struct stat& b) {
    const auto same = [](const timespec& left, const timespec& right) {
        return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
    };
    return a.st_size == b.st_size && same(a.st_mtim, b.st_mtim) && same(a.st_ctim, b.st_ctim);
}

// What was loaded stays mapped when it is released, since a thread of its own may run on in it.
class KeptLibrary {
public:
    // Loads it afresh if the file is another one by now.
    void* Load(const std::string& path, const struct stat& status) {
        if (handle_ && !SameInode(status, status_)) {
            // The loader would know it by its path.
            again_ += "./";
            handle_ = nullptr;
        } else if (handle_ && !SameContents(status, status_)) {
            // Its code was overwritten where it is mapped, so nothing of it could run on.
            dlclose(std::exchange(handle_, nullptr));
        }
        if (!handle_)
            handle_ = dlopen((path.substr(0, path.rfind('/') + 1) + again_ + path.substr(path.rfind('/') + 1)).c_str(),
                             RTLD_NOW | RTLD_LOCAL);
        status_ = status;
        return handle_;
    }

private:
    void* handle_ = nullptr;
    struct stat status_ {};
    std::string again_;
};

class LoadedLibrary final : public Library {
public:
    explicit LoadedLibrary(void* handle) : handle_(handle) {}

    void* Find(const char* name) const override { return dlsym(handle_, name); }

private:
    void* const handle_;
};

class SystemLibraries final : public Libraries {
public:
    std::unique_ptr<Library> Load(std::u16string_view path) override {
        const std::string file = NativePath(path);
        struct stat status {};
        if (!file.starts_with('/') || !IsWhole(file, status)) return nullptr;  // without a slash the loader would search the system
        static std::map<std::string, KeptLibrary> kept;                        // as the loader's own list, for all of the process
        void* const handle = kept[file].Load(file, status);
        ExpectOtherHandlers();
        if (!handle) return nullptr;
        return std::make_unique<LoadedLibrary>(handle);
    }
};

}  // namespace

std::unique_ptr<Libraries> MakeLibraries() { return std::make_unique<SystemLibraries>(); }

std::u16string ModuleFolder(const void* address) {
    Dl_info info{};
    void* extra = nullptr;
    if (!dladdr1(address, &info, &extra, RTLD_DL_LINKMAP) || !extra) return {};
    // The program itself has no name here; the loader knows it only by the name by which it was called.
    const char* name = static_cast<link_map*>(extra)->l_name;
    char* real = realpath(name && *name ? name : "/proc/self/exe", nullptr);
    const std::string path = real ? real : "";
    std::free(real);
    return FromUtf8(path.substr(0, path.rfind('/') == path.npos ? 0 : path.rfind('/')));
}

}  // namespace twr
