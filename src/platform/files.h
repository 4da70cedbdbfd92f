// Files and folders. Paths are absolute and use the system's own separator (paths.h).
#pragma once
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/byte_source.h"

namespace twr {

class Files {
public:
    virtual ~Files() = default;

    virtual bool Exists(std::u16string_view path) const = 0;

    // Makes one folder level. A failure shows by the folder not being there.
    virtual void MakeFolder(std::u16string_view path) = 0;

    // Opens a plain file for reading while others read, write or remove it as they like; nullptr when it can't.
    virtual std::unique_ptr<ByteSource> Open(std::u16string_view path) = 0;

    // Appends to a file, creating it when missing, while others use it too. False when not all could be written.
    virtual bool Append(std::u16string_view path, std::string_view bytes) = 0;

    // Copies over an older file. False when it can't.
    virtual bool Copy(std::u16string_view from, std::u16string_view to) = 0;

    // Gives a file another name in its folder, over an older file of that name. Takes no room on the disk. False when it can't.
    virtual bool Rename(std::u16string_view from, std::u16string_view to) = 0;

    virtual void Remove(std::u16string_view path) = 0;

    // Full paths of the files, folders left out, in `folder` whose name fits `pattern` ("*" stands for any characters, "?" for one;
    // case of letters plays no part), in the order in which the file system gives them.
    virtual std::vector<std::u16string> List(std::u16string_view folder, std::u16string_view pattern) const = 0;

    // The folder for data that all users of the machine share; empty when it can't be told.
    virtual std::u16string ProgramDataFolder() const = 0;
};

}  // namespace twr
