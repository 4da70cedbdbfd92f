#include "platform/linux/descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "base/wide_text.h"

namespace twr {

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    if (this != &other) {
        Close();
        number_ = other.Release();
    }
    return *this;
}

Descriptor::~Descriptor() { Close(); }

int Descriptor::Release() { return std::exchange(number_, -1); }

bool Descriptor::Close() { return number_ < 0 || close(Release()) == 0; }

std::string NativePath(std::u16string_view path) { return ToUtf8(path); }

Descriptor OpenPlainFile(const std::string& path, int flags, unsigned mode) {
    Descriptor file(open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode));
    struct stat status {};
    if (file && (fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode))) {
        file.Close();
        errno = EINVAL;
    }
    return file;
}

bool SameFile(const Descriptor& left, const Descriptor& right) {
    struct stat a {};
    struct stat b {};
    return fstat(left.Get(), &a) == 0 && fstat(right.Get(), &b) == 0 && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool WriteAll(const Descriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file.Get(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

void MakeFolders(const std::string& path) {
    for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        mkdir(path.substr(0, end).c_str(), 0700);
    }
    mkdir(path.c_str(), 0700);
}

}  // namespace twr
