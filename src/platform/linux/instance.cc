// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <vector>

#include "base/wide_text.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"
#include "platform/linux/standard_error.h"

namespace twr {
namespace {

// Opens a lock file of this user; returns why it can't be used, or an empty text.
std::string Open(const std::string& path, int flags, Descriptor& file) {
    file = OpenPlainFile(path, flags | O_NOFOLLOW, 0600);
    struct stat status {};
    if (!file && errno == ELOOP) return "it is a link";
    if (!file && (errno == EINVAL || errno == EISDIR)) return "it is not a plain file";
    if (!file || fstat(file.Get(), &status) != 0) return std::strerror(errno);
    return status.st_uid == geteuid() ? "" : "it belongs to another user";
}

class LockFiles final : public Instance {
public:
    explicit LockFiles(const Roots& roots) : roots_(roots) {}

    // A file that can't be locked does not show whether another instance runs, and must not prevent a start.
    bool Claim(std::u16string_view name) override {
        std::vector<Descriptor> locked;
        for (const FilePlace& place : roots_.locks) {
            const std::string path = PathOf(place, name);
            Descriptor file;
            std::string fault = Open(path, O_RDWR | O_CREAT, file);
            if (fault.empty()) {
                if (std::ranges::any_of(locked, [&](const Descriptor& other) { return SameFile(file, other); })) continue;
                struct flock whole {};
                whole.l_type = F_WRLCK;
                if (fcntl(file.Get(), F_OFD_SETLK, &whole) == 0) {
                    locked.push_back(std::move(file));
                    continue;
                }
                if (errno == EAGAIN || errno == EACCES) return false;
                fault = std::strerror(errno);
            }
            TellUser(path + " can't be locked: " + fault + ". A second start may not be noticed; remove the file.");
        }
        for (const Descriptor& file : locked) file.KeepFromForks();
        std::ranges::move(locked, std::back_inserter(held_));
        return true;
    }

    // One lock is enough; one that can't be seen may be the only one that a program in another environment has.
    NameLook Look(std::u16string_view name) const override {
        NameLook look;
        for (const FilePlace& place : roots_.locks) {
            const std::string path = PathOf(place, name);
            Descriptor file;
            std::string fault = Open(path, O_RDONLY, file);
            struct flock whole {};
            whole.l_type = F_WRLCK;
            if (!file && errno == ENOENT) continue;
            if (fault.empty() && fcntl(file.Get(), F_OFD_GETLK, &whole) != 0) fault = std::strerror(errno);
            if (fault.empty() && whole.l_type != F_UNLCK) return {NameLook::kTaken};
            if (!fault.empty()) look = {NameLook::kUnknown, path + " can't be looked at: " + fault + "; remove the file"};
        }
        return look;
    }

    void RaiseOther(std::u16string_view caption) override {
        std::fprintf(stderr, "%s is already running.\n", ToUtf8(caption).c_str());
    }

private:
    std::string PathOf(const FilePlace& place, std::u16string_view name) const {
        return FileIn(place, roots_.namePrefix, name, place.tag + u".lock");
    }

    const Roots roots_;
    std::vector<Descriptor> held_;
};

}  // namespace

std::unique_ptr<Instance> MakeInstance(const Roots& roots) { return std::make_unique<LockFiles>(roots); }

}  // namespace twr
