// SPDX-License-Identifier: MIT
#include "platform/linux/descriptor.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <utility>

#include "base/wide_text.h"

namespace twr {
namespace {

std::array<std::atomic<bool>, 1024> notForForks;  // as many as a process usually may have

bool IsMarkable(int number) { return number >= 0 && static_cast<std::size_t>(number) < notForForks.size(); }

void CloseInFork() {
    for (std::size_t number = 0; number < notForForks.size(); ++number) {
        if (notForForks[number]) close(static_cast<int>(number));
    }
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    if (this != &other) {
        Close();
        number_ = std::exchange(other.number_, -1);
    }
    return *this;
}

Descriptor::~Descriptor() { Close(); }

int Descriptor::Release() {
    if (IsMarkable(number_)) notForForks[static_cast<std::size_t>(number_)] = false;
    return std::exchange(number_, -1);
}

void Descriptor::KeepFromForks() const {
    [[maybe_unused]] static const int once = pthread_atfork(nullptr, nullptr, CloseInFork);
    if (IsMarkable(number_)) notForForks[static_cast<std::size_t>(number_)] = true;
}

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
