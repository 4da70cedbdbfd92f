// SPDX-License-Identifier: MIT
#include "platform/linux/mapped_file.h"

#include <fcntl.h>
#include <unistd.h>

namespace twr {
namespace {

// A file read byte by byte.
class Bytes {
public:
    explicit Bytes(const char* path) : file_(open(path, O_RDONLY | O_CLOEXEC)) {}
    ~Bytes() {
        if (file_ >= 0) close(file_);
    }
    Bytes(const Bytes&) = delete;
    Bytes& operator=(const Bytes&) = delete;

    // '\0' at the end.
    char Next() {
        if (at_ == size_) {
            const ssize_t got = read(file_, bytes_.data(), bytes_.size());
            if (got <= 0) return '\0';
            size_ = static_cast<std::size_t>(got);
            at_ = 0;
        }
        return bytes_[at_++];
    }

    // A number and the character behind it.
    std::uintptr_t NextHex() {
        std::uintptr_t number = 0;
        for (;;) {
            const char c = Next();
            if (c >= '0' && c <= '9') {
                number = number * 16 + static_cast<std::uintptr_t>(c - '0');
            } else if (c >= 'a' && c <= 'f') {
                number = number * 16 + static_cast<std::uintptr_t>(c - 'a' + 10);
            } else {
                return number;
            }
        }
    }

    void SkipTo(char end) {
        for (char c = Next(); c != end && c != '\0'; c = Next()) continue;
    }

private:
    const int file_;
    std::array<char, 4096> bytes_;
    std::size_t at_ = 0, size_ = 0;
};

}  // namespace

// A line: "7f1200001000-7f1200002000 r-xp 00001000 08:01 1234    /usr/lib/x.so". A file's first part is mapped first.
MappedFile::MappedFile(std::uintptr_t address) {
    Bytes maps("/proc/self/maps");
    std::uintptr_t base = 0;
    for (;;) {
        const std::uintptr_t start = maps.NextHex(), end = maps.NextHex();
        if (end == 0) return;
        maps.SkipTo(' ');
        if (maps.NextHex() == 0) base = start;
        if (address >= start && address < end) break;
        maps.SkipTo('\n');
    }
    maps.SkipTo(' ');
    maps.SkipTo(' ');
    char c = maps.Next();
    while (c == ' ') c = maps.Next();
    for (; c != '\n' && c != '\0' && size_ < path_.size(); c = maps.Next()) path_[size_++] = c;
    offset_ = address - base;
}

}  // namespace twr
