#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <vector>

#include "base/wide_text.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"
#include "platform/paths.h"

namespace twr {
namespace {

class LockFile final : public Instance {
public:
    explicit LockFile(const Roots& roots) : roots_(roots) {}

    bool Claim(std::u16string_view name) override {
        Descriptor file = OpenPlainFile(PathOf(name), O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
        struct stat status {};
        // In a folder for all users somebody else's file says nothing about this user's programs.
        if (!file || fstat(file.Get(), &status) != 0 || status.st_uid != geteuid()) return true;
        struct flock whole {};
        whole.l_type = F_WRLCK;
        if (fcntl(file.Get(), F_OFD_SETLK, &whole) != 0) return errno != EAGAIN && errno != EACCES;
        held_.push_back(std::move(file));
        return true;
    }

    void RaiseOther(std::u16string_view caption) override {
        std::fprintf(stderr, "%s is already running.\n", ToUtf8(caption).c_str());
    }

private:
    std::string PathOf(std::u16string_view name) const {
        std::u16string file(name);
        std::ranges::transform(file, file.begin(), [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c; });
        return NativePath(JoinPath(roots_.runtime, roots_.namePrefix + file + roots_.lockTag + u".lock"));
    }

    const Roots roots_;
    std::vector<Descriptor> held_;
};

}  // namespace

std::unique_ptr<Instance> MakeInstance(const Roots& roots) { return std::make_unique<LockFile>(roots); }

}  // namespace twr
