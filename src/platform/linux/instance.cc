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
#include "platform/paths.h"

namespace twr {
namespace {

// Opens a lock file of this user; returns why it can't be used, or an empty text.
std::string Open(const std::string& path, Descriptor& file) {
    file = OpenPlainFile(path, O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    struct stat status {};
    if (!file && errno == ELOOP) return "it is a link";
    if (!file || fstat(file.Get(), &status) != 0) return std::strerror(errno);
    return status.st_uid == geteuid() ? "" : "it belongs to another user";
}

class LockFiles final : public Instance {
public:
    explicit LockFiles(const Roots& roots) : roots_(roots) {}

    // A file that can't be locked does not show whether another instance runs, and must not prevent a start.
    bool Claim(std::u16string_view name) override {
        std::vector<Descriptor> locked;
        for (const LockPlace& place : roots_.locks) {
            const std::string path = PathOf(place, name);
            Descriptor file;
            std::string fault = Open(path, file);
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

    void RaiseOther(std::u16string_view caption) override {
        std::fprintf(stderr, "%s is already running.\n", ToUtf8(caption).c_str());
    }

private:
    std::string PathOf(const LockPlace& place, std::u16string_view name) const {
        std::u16string file(name);
        std::ranges::transform(file, file.begin(), [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c; });
        return NativePath(JoinPath(place.folder, roots_.namePrefix + file + place.tag + u".lock"));
    }

    const Roots roots_;
    std::vector<Descriptor> held_;
};

}  // namespace

std::unique_ptr<Instance> MakeInstance(const Roots& roots) { return std::make_unique<LockFiles>(roots); }

}  // namespace twr
