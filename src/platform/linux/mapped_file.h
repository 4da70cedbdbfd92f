// SPDX-License-Identifier: MIT
// The file whose code or data is mapped at an address, found without memory or locks, so in a signal's handler too.
#pragma once
#include <array>
#include <cstdint>
#include <string_view>

namespace twr {

class MappedFile {
public:
    // Looks into the kernel's list. An empty path if the address is in no file.
    explicit MappedFile(std::uintptr_t address);

    std::string_view Path() const { return {path_.data(), size_}; }
    std::uintptr_t Offset() const { return offset_; }  // from where the file is mapped

private:
    std::array<char, 1024> path_;
    std::size_t size_ = 0;
    std::uintptr_t offset_ = 0;
};

}  // namespace twr
