// SPDX-License-Identifier: MIT
// Files and folders. Paths are absolute and use the system's own separator.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/byte_source.h"

namespace twr {

// A file that grows at its end.
class FileWriter {
public:
    virtual ~FileWriter() = default;

    // False if not all could be written: the disk is full, or has gone.
    virtual bool Write(std::string_view bytes) = 0;

    // Waits until what was written is on the disk, so that it outlives a power cut. False if that failed.
    virtual bool Flush() = 0;

    // Whether its name still leads to it: false once it was removed, renamed or replaced.
    virtual bool HasItsName() const = 0;
};

// Keeps other processes from having the same lock while it lives; a killed one has none.
class FileLock {
public:
    virtual ~FileLock() = default;
};

// Why a file that is there can't be read, where no more is known.
inline constexpr std::u16string_view kNotOpened = u"it is not a plain file, or this user may not read it";

// What this user may not read, or not enter on the way to it.
struct Denial {
    std::u16string path;
    bool isFolder = false, isOwn = false;
    std::string owner, mode;  // as "root" and "0600"
};

class Files {
public:
    virtual ~Files() = default;

    virtual bool Exists(std::u16string_view path) const = 0;

    // The first denial on the way to what is there, itself included; nullopt if there is none, or the system can't say.
    virtual std::optional<Denial> DeniedAt(std::u16string_view /*path*/) const { return std::nullopt; }

    // What is in the same folder under a name that differs from the path's in letter case alone; empty if nothing is, and where
    // letter case does not matter.
    virtual std::u16string InOtherCase(std::u16string_view /*path*/) const { return {}; }

    // When a file or folder last changed, in ticks as a Clock gives them; nullopt if there is none.
    virtual std::optional<std::int64_t> ChangedAt(std::u16string_view path) const = 0;

    // Makes one folder level. On failure the folder does not exist afterwards.
    virtual void MakeFolder(std::u16string_view path) = 0;

    // Opens a plain file for reading while others read, write or remove it; nullptr on failure.
    virtual std::unique_ptr<ByteSource> Open(std::u16string_view path) = 0;

    // Appends to a file, creating it if missing, while others use it too. False if not all could be written.
    virtual bool Append(std::u16string_view path, std::string_view bytes) = 0;

    // Makes a new plain file, which others may read while it grows; nullptr on failure, and if there is anything of that name.
    virtual std::unique_ptr<FileWriter> Create(std::u16string_view path) = 0;

    // Copies a file, replacing an older one. False on failure.
    virtual bool Copy(std::u16string_view from, std::u16string_view to) = 0;

    // The file to which a link leads, whether it is there or not; `path` itself if that is no link.
    virtual std::u16string Target(std::u16string_view path) const = 0;

    // Takes the lock of those who change this file; it changes nothing for anybody else. nullptr while another process has it.
    // Where there are no locks, everybody gets one.
    virtual std::unique_ptr<FileLock> Lock(std::u16string_view path) = 0;

    // Writes a new file beside `path`, named "<path>.<characters that no other has>.new", and waits until it is on the disk. It
    // gets the owner and the rights of the file `like`, if that is there. Its path; empty on failure, which leaves none, and if
    // `like` is write-protected.
    virtual std::u16string WriteBeside(std::u16string_view path, std::string_view bytes, std::u16string_view like) = 0;

    // Renames a file within its folder, replacing an older file of that name, and waits until that is on the disk. Needs no disk
    // space. False on failure.
    virtual bool Rename(std::u16string_view from, std::u16string_view to) = 0;

    virtual void Remove(std::u16string_view path) = 0;

    // Full paths of the files, folders left out, in `folder` whose name matches `pattern` ("*" stands for any characters, "?" for
    // one; letter case is ignored), in the order in which the file system gives them.
    virtual std::vector<std::u16string> List(std::u16string_view folder, std::u16string_view pattern) const = 0;

    // The folder for data that all users of the machine share; empty if it is unknown.
    virtual std::u16string ProgramDataFolder() const = 0;

    // The bytes of a file; nullopt if there is none.
    virtual std::optional<std::uint64_t> SizeOf(std::u16string_view path) const = 0;

    // The bytes that this user can still write to the disk of a folder; nullopt if it is not there.
    virtual std::optional<std::uint64_t> RoomIn(std::u16string_view folder) const = 0;
};

// The bytes of a whole file, empty if there is none; nullopt if it can't be opened, or not be read to its end or to kLargestFile.
std::optional<std::string> ReadWhole(Files& files, std::u16string_view path);

extern const char16_t kPathSeparator;
extern const std::u16string_view kLibrarySuffix;  // of a loadable library's file name, dot included
extern const std::string_view kLineEnd;           // of the lines of a text file for users

// `folder`, the separator and `name`.
std::u16string JoinPath(std::u16string_view folder, std::u16string_view name);

}  // namespace twr
