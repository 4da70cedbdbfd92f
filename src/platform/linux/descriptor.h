// SPDX-License-Identifier: MIT
// Open file descriptors and common operations on them.
#pragma once
#include <string>
#include <string_view>
#include <utility>

namespace twr {

// Owns a descriptor; -1 is none.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();

    explicit operator bool() const { return number_ >= 0; }
    int Get() const { return number_; }
    int Release();

    // Closes it at once in whatever this process forks off, such as a helper of a library, which would else hold its locks.
    void KeepFromForks() const;

    // False also if the system reports that written data was lost.
    bool Close();

private:
    int number_;
};

// A path in the form that the system takes.
std::string NativePath(std::u16string_view path);

// Opens a plain file with the flags of open(2), without ever waiting for a pipe or a device; those and folders are refused.
Descriptor OpenPlainFile(const std::string& path, int flags, unsigned mode = 0666);

// Whether both refer to the same file, whatever its names.
bool SameFile(const Descriptor& left, const Descriptor& right);

bool WriteAll(const Descriptor& file, std::string_view bytes);

// Makes every missing level of a folder for its owner alone.
void MakeFolders(const std::string& path);

}  // namespace twr
