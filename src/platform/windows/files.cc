#include "platform/files.h"

#include <io.h>
#include <wchar.h>

#include "platform/paths.h"
#include "platform/windows/file_time.h"
#include "platform/windows/services.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/wide.h"

namespace twr {
namespace {

class WindowsFiles final : public Files {
public:
    explicit WindowsFiles(std::u16string programData) : programData_(std::move(programData)) {}
    bool Exists(std::u16string_view path) const override;
    std::optional<std::int64_t> ChangedAt(std::u16string_view path) const override;
    void MakeFolder(std::u16string_view path) override;
    std::unique_ptr<ByteSource> Open(std::u16string_view path) override;
    bool Append(std::u16string_view path, std::string_view bytes) override;
    std::unique_ptr<FileWriter> Create(std::u16string_view path) override;
    bool Copy(std::u16string_view from, std::u16string_view to) override;
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
    explicit WindowsWriter(UniqueHandle file) : file_(std::move(file)) {}

    bool Write(std::string_view bytes) override {
        DWORD written = 0;
        return WriteFile(file_.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) && written == bytes.size();
    }
    bool Flush() override { return FlushFileBuffers(file_.get()) != 0; }

private:
    const UniqueHandle file_;
};

}  // namespace

bool WindowsFiles::Exists(std::u16string_view path) const { return _waccess(ToWide(path).c_str(), 0) == 0; }

std::optional<std::int64_t> WindowsFiles::ChangedAt(std::u16string_view path) const {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(ToWide(path).c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
    return TicksOf(data.ftLastWriteTime);
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
    UniqueHandle file(NullIfInvalid(
        CreateFileW(ToWide(path).c_str(), GENERIC_WRITE, kSharedWithAll, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)));
    if (!file || GetFileType(file.get()) != FILE_TYPE_DISK) return nullptr;
    return std::make_unique<WindowsWriter>(std::move(file));
}

bool WindowsFiles::Copy(std::u16string_view from, std::u16string_view to) {
    return CopyFileW(ToWide(from).c_str(), ToWide(to).c_str(), FALSE);
}

bool WindowsFiles::Rename(std::u16string_view from, std::u16string_view to) {
    return MoveFileExW(ToWide(from).c_str(), ToWide(to).c_str(), MOVEFILE_REPLACE_EXISTING);
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
