// SPDX-License-Identifier: MIT
#include "platform/files.h"

#include <io.h>
#include <wchar.h>

#include <cstddef>
#include <iterator>

#include "platform/services.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"

namespace twr {
namespace {

class WindowsFiles final : public Files {
public:
    explicit WindowsFiles(std::u16string programData) : programData_(std::move(programData)) {}
    bool Exists(std::u16string_view path) const override;
    std::optional<std::int64_t> ChangedAt(std::u16string_view path) const override;
    std::optional<std::uint64_t> SizeOf(std::u16string_view path) const override;
    std::optional<std::uint64_t> RoomIn(std::u16string_view folder) const override;
    void MakeFolder(std::u16string_view path) override;
    std::unique_ptr<ByteSource> Open(std::u16string_view path) override;
    bool Append(std::u16string_view path, std::string_view bytes) override;
    std::unique_ptr<FileWriter> Create(std::u16string_view path) override;
    bool Copy(std::u16string_view from, std::u16string_view to) override;
    std::u16string Target(std::u16string_view path) const override;
    std::unique_ptr<FileLock> Lock(std::u16string_view path) override;
    std::u16string WriteBeside(std::u16string_view path, std::string_view bytes, std::u16string_view like) override;
    bool Rename(std::u16string_view from, std::u16string_view to) override;
    void Remove(std::u16string_view path) override;
    std::vector<std::u16string> List(std::u16string_view folder, std::u16string_view pattern) const override;
    std::u16string ProgramDataFolder() const override { return programData_; }

private:
    std::u16string programData_;
};

constexpr DWORD kSharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class FileSource : public ByteSource {
public:
    explicit FileSource(UniqueHandle file) : file_(std::move(file)) {}

    std::size_t Read(char* to, std::size_t room) override {
        DWORD got = 0;
        const bool read = ReadFile(file_.get(), to, static_cast<DWORD>(room), &got, nullptr) != 0;
        failure_ = read ? "" : "Windows reports error " + std::to_string(GetLastError());
        return read ? got : 0;
    }
    std::string Failure() const override { return failure_; }

private:
    UniqueHandle file_;
    std::string failure_;
};

class WindowsWriter final : public FileWriter {
public:
    WindowsWriter(UniqueHandle file, std::wstring path) : file_(std::move(file)), path_(std::move(path)) {}

    bool Write(std::string_view bytes) override {
        DWORD written = 0;
        return WriteFile(file_.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) && written == bytes.size();
    }
    bool Flush() override { return FlushFileBuffers(file_.get()) != 0; }
    // The system lets nobody remove or rename it meanwhile, but on a disk of another machine it can go.
    bool HasItsName() const override { return _waccess(path_.c_str(), 0) == 0; }

private:
    const UniqueHandle file_;
    const std::wstring path_;
};

// A file that nobody else may open, and that the system removes when it is closed.
class LockFile final : public FileLock {
public:
    explicit LockFile(UniqueHandle file) : file_(std::move(file)) {}

private:
    const UniqueHandle file_;
};

// The list of who may do what; of the attributes only those that a user sets.
bool TakeRights(const std::wstring& file, const std::wstring& like) {
    const DWORD attributes = GetFileAttributesW(like.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return true;
    if (attributes & FILE_ATTRIBUTE_READONLY) return false;
    DWORD size = 0;
    GetFileSecurityW(like.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<std::byte> rights(size);
    constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;
    return GetFileSecurityW(like.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size) &&
           SetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, rights.data()) &&
           ((attributes & kKept) == 0 || SetFileAttributesW(file.c_str(), attributes & kKept));
}

}  // namespace

bool WindowsFiles::Exists(std::u16string_view path) const { return _waccess(ToWide(path).c_str(), 0) == 0; }

std::optional<std::int64_t> WindowsFiles::ChangedAt(std::u16string_view path) const {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(ToWide(path).c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
    return TicksOf(data.ftLastWriteTime);
}

std::optional<std::uint64_t> WindowsFiles::SizeOf(std::u16string_view path) const {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(ToWide(path).c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
    return static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
}

std::optional<std::uint64_t> WindowsFiles::RoomIn(std::u16string_view folder) const {
    ULARGE_INTEGER room;
    if (!GetDiskFreeSpaceExW(ToWide(folder).c_str(), &room, nullptr, nullptr)) return std::nullopt;
    return room.QuadPart;
}

void WindowsFiles::MakeFolder(std::u16string_view path) { _wmkdir(ToWide(path).c_str()); }

std::unique_ptr<ByteSource> WindowsFiles::Open(std::u16string_view path) {
    UniqueHandle file(NullIfInvalid(CreateFileW(ToWide(path).c_str(), GENERIC_READ, kSharedWithAll, nullptr, OPEN_EXISTING,
                                                FILE_FLAG_SEQUENTIAL_SCAN, nullptr)));
    // A pipe or a device under the name could keep the program waiting.
    if (!file || GetFileType(file.get()) != FILE_TYPE_DISK) return nullptr;
    return std::make_unique<FileSource>(std::move(file));
}

bool WindowsFiles::Append(std::u16string_view path, std::string_view bytes) {
    const UniqueHandle file(NullIfInvalid(
        CreateFileW(ToWide(path).c_str(), FILE_APPEND_DATA, kSharedWithAll, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)));
    DWORD written = 0;
    return file && WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size();
}

std::unique_ptr<FileWriter> WindowsFiles::Create(std::u16string_view path) {
    const std::wstring wide = ToWide(path);
    UniqueHandle file(NullIfInvalid(
        CreateFileW(wide.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)));
    if (!file || GetFileType(file.get()) != FILE_TYPE_DISK) return nullptr;
    return std::make_unique<WindowsWriter>(std::move(file), wide);
}

bool WindowsFiles::Copy(std::u16string_view from, std::u16string_view to) {
    return CopyFileW(ToWide(from).c_str(), ToWide(to).c_str(), FALSE);
}

bool WindowsFiles::Rename(std::u16string_view from, std::u16string_view to) {
    return MoveFileExW(ToWide(from).c_str(), ToWide(to).c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

std::u16string WindowsFiles::Target(std::u16string_view path) const {
    const std::wstring name = ToWide(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return std::u16string(path);
    const UniqueHandle file(NullIfInvalid(CreateFileW(name.c_str(), 0, kSharedWithAll, nullptr, OPEN_EXISTING, 0, nullptr)));
    std::wstring target(32768, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file.get(), target.data(), static_cast<DWORD>(target.size()), 0);
    return length > 0 && length < target.size() ? FromWide(target.substr(0, length)) : std::u16string(path);
}

std::unique_ptr<FileLock> WindowsFiles::Lock(std::u16string_view path) {
    const std::wstring name = ToWide(Target(path) + u".lock");
    UniqueHandle file(NullIfInvalid(CreateFileW(name.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS,
                                                FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr)));
    const DWORD error = file ? ERROR_SUCCESS : GetLastError();
    if (error == ERROR_SHARING_VIOLATION) return nullptr;
    // One that is just being removed, unless it is the folder that can't be written.
    if (error == ERROR_ACCESS_DENIED && (GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES || GetLastError() == error))
        return nullptr;
    return std::make_unique<LockFile>(std::move(file));
}

std::u16string WindowsFiles::WriteBeside(std::u16string_view path, std::string_view bytes, std::u16string_view like) {
    std::u16string name;
    std::unique_ptr<FileWriter> writer;
    for (DWORD i = 0; i < 100 && !writer; ++i) {
        wchar_t own[32];
        swprintf(own, std::size(own), L".%04lx%02lx.new", GetCurrentProcessId() & 0xFFFF, (GetTickCount() + i) & 0xFF);
        name = std::u16string(path) + FromWide(own);
        writer = Create(name);
    }
    if (!writer) return {};
    const bool written = writer->Write(bytes) && writer->Flush();
    writer.reset();
    if (written && TakeRights(ToWide(name), ToWide(like))) return name;
    Remove(name);
    return {};
}

void WindowsFiles::Remove(std::u16string_view path) { _wremove(ToWide(path).c_str()); }

std::vector<std::u16string> WindowsFiles::List(std::u16string_view folder, std::u16string_view pattern) const {
    std::vector<std::u16string> paths;
    WIN32_FIND_DATAW found;
    const UniqueFind search(NullIfInvalid(FindFirstFileW(ToWide(JoinPath(folder, pattern)).c_str(), &found)));
    if (!search) return paths;
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) paths.push_back(JoinPath(folder, FromWide(found.cFileName)));
    } while (FindNextFileW(search.get(), &found));
    return paths;
}

std::unique_ptr<Files> MakeFiles(const std::u16string& programData) { return std::make_unique<WindowsFiles>(programData); }

}  // namespace twr
