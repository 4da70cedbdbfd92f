// SPDX-License-Identifier: MIT
// Libraries that are loaded while the program runs. Their functions have the linkage TWR_EXPORT_CALL, which the build defines for
// each system.
#pragma once
#include <memory>
#include <string>
#include <string_view>

namespace twr {

// A loaded library, released with the object. On Linux its code stays mapped, on Windows it is freed.
class Library {
public:
    virtual ~Library() = default;

    // nullptr if the library has no such export.
    virtual void* Find(const char* name) const = 0;
};

class Libraries {
public:
    virtual ~Libraries() = default;

    // nullptr if there is no library at the path or it can't be loaded.
    virtual std::unique_ptr<Library> Load(std::u16string_view path) = 0;
};

// The folder of the program or library that holds `address`; empty if it is unknown.
std::u16string ModuleFolder(const void* address);

}  // namespace twr
