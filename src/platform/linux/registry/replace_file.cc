#include "platform/linux/registry/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/linux/descriptor.h"

namespace twr {
namespace {

std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

// The file to which the links at `path` lead.
std::string Target(const std::string& path) {
    char* real = realpath(path.c_str(), nullptr);
    std::string target = real ? real : path;
    std::free(real);
    return target;
}

bool Write(Descriptor& file, std::string_view bytes, mode_t mode) {
    return fchmod(file.Get(), mode) == 0 && WriteAll(file, bytes) && fsync(file.Get()) == 0 && file.Close();
}

bool Fail(int error) {
    errno = error;
    return false;
}

}  // namespace

bool ReplaceFile(const std::string& path, std::string_view bytes) {
    if (!path.starts_with('/')) return Fail(EINVAL);
    MakeFolders(FolderOf(path));
    const std::string target = Target(path);
    mode_t mode = 0600;
    struct stat old {};
    if (stat(target.c_str(), &old) == 0) {
        if (!S_ISREG(old.st_mode)) return Fail(EINVAL);
        if (access(target.c_str(), W_OK) != 0) return false;
        mode = old.st_mode & 0777;
    } else if (errno != ENOENT) {
        return false;
    }
    std::string temporary = target + ".XXXXXX";
    Descriptor file(mkostemp(temporary.data(), O_CLOEXEC));
    if (!file) return false;
    if (!Write(file, bytes, mode) || rename(temporary.c_str(), target.c_str()) != 0) {
        const int error = errno;
        unlink(temporary.c_str());
        return Fail(error);
    }
    const Descriptor folder(open(FolderOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) fsync(folder.Get());
    return true;
}

}  // namespace twr
