// SPDX-License-Identifier: MIT
#include "platform/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/wide_text.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"
#include "platform/linux/signal_queue.h"

namespace twr {
namespace {

class FileSource final : public ByteSource {
public:
    explicit FileSource(Descriptor file) : file_(std::move(file)) {}

    std::size_t Read(char* to, std::size_t room) override {
        if (read_ > kUninterrupted && CloseSignalPending()) return 0;
        ssize_t got = 0;
        do {
            got = read(file_.Get(), to, room);
        } while (got < 0 && errno == EINTR);
        failure_ = got < 0 ? std::strerror(errno) : "";
        if (got <= 0) return 0;
        read_ += static_cast<std::size_t>(got);
        return static_cast<std::size_t>(got);
    }
    std::string Failure() const override { return failure_; }

private:
    // No ordinary file is larger, and one that is must not delay a program that has been asked to end.
    static constexpr std::size_t kUninterrupted = 1 << 20;  // bytes

    const Descriptor file_;
    std::size_t read_ = 0;  // bytes
    std::string failure_;
};

class PosixWriter final : public FileWriter {
public:
    PosixWriter(Descriptor file, std::string path) : file_(std::move(file)), path_(std::move(path)) {}

    bool Write(std::string_view bytes) override { return WriteAll(file_, bytes); }
    bool Flush() override { return fdatasync(file_.Get()) == 0; }
    bool HasItsName() const override {
        struct stat own {
        }, named{};
        if (fstat(file_.Get(), &own) != 0) return true;  // not known
        if (stat(path_.c_str(), &named) != 0) return errno != ENOENT && errno != ENOTDIR;
        return own.st_dev == named.st_dev && own.st_ino == named.st_ino;
    }

private:
    const Descriptor file_;
    const std::string path_;
};

Descriptor OpenFolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    return Descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// The name of a new file outlives a power cut only once its folder is on the disk too.
void FlushFolderOf(const std::string& path) {
    const Descriptor folder = OpenFolderOf(path);
    if (folder) fsync(folder.Get());
}

// On the folder of the file: so there is no file to be left over, or to be removed while another process takes its lock.
class FolderLock final : public FileLock {
public:
    explicit FolderLock(const std::string& path) : folder_(OpenFolderOf(path)) {
        held_ = folder_ && flock(folder_.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    }
    bool HeldByAnother() const { return held_; }

private:
    const Descriptor folder_;
    bool held_ = false;
};

constexpr std::string_view kNew = ".new";

// False if they can't be kept: others could read the file then, or its owner no longer write it.
bool TakeRights(const Descriptor& file, const std::string& like) {
    struct stat old {};
    struct stat own {};
    if (stat(like.c_str(), &old) != 0) {
        const mode_t mask = umask(0);
        umask(mask);
        return errno == ENOENT && fchmod(file.Get(), 0666 & ~mask) == 0;
    }
    if (access(like.c_str(), W_OK) != 0 || fstat(file.Get(), &own) != 0) return false;
    const bool same = old.st_uid == own.st_uid && old.st_gid == own.st_gid;
    return (same || fchown(file.Get(), old.st_uid, old.st_gid) == 0) && fchmod(file.Get(), old.st_mode & 07777) == 0;
}

// Whether a name matches a pattern of "*" and "?". fnmatch has more special characters, and its "?" matches one byte only.
bool Fits(std::u16string_view name, std::u16string_view pattern) {
    std::size_t n = 0, p = 0, starName = 0, star = pattern.npos;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            star = p++;
            starName = n;
        } else if (p < pattern.size() && (pattern[p] == u'?' || EqualsIgnoringCase(name.substr(n, 1), pattern.substr(p, 1)))) {
            ++n, ++p;
        } else if (star != pattern.npos) {
            n = ++starName;
            p = star + 1;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(u'*', p) == pattern.npos;
}

bool IsPlainFile(const std::u16string& path) {
    struct stat status {};
    return stat(NativePath(path).c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

Denial DenialOf(const std::string& path, const struct stat& status) {
    const passwd* const owner = getpwuid(status.st_uid);
    char mode[8];
    std::snprintf(mode, sizeof mode, "%04o", status.st_mode & 07777u);
    return {.path = FromUtf8(path),
            .isFolder = S_ISDIR(status.st_mode),
            .isOwn = status.st_uid == geteuid(),
            .owner = owner ? owner->pw_name : "the user with uid " + std::to_string(status.st_uid),
            .mode = mode};
}

class PosixFiles final : public Files {
public:
    explicit PosixFiles(const std::u16string& programData) : programData_(programData) {}

    bool Exists(std::u16string_view path) const override { return access(NativePath(path).c_str(), F_OK) == 0; }

    std::optional<Denial> DeniedAt(std::u16string_view path) const override {
        const std::string whole = NativePath(path);
        for (std::size_t end = whole.find('/', 1);; end = whole.find('/', end + 1)) {
            const std::string level = whole.substr(0, end);
            struct stat status {};
            if (level.empty() || stat(level.c_str(), &status) != 0) return std::nullopt;
            const bool folder = S_ISDIR(status.st_mode);
            const int needed = end != whole.npos ? X_OK : folder ? R_OK | X_OK : R_OK;
            if (faccessat(AT_FDCWD, level.c_str(), needed, AT_EACCESS) != 0 && errno == EACCES) return DenialOf(level, status);
            if (end == whole.npos) return std::nullopt;
        }
    }

    std::u16string InOtherCase(std::u16string_view path) const override {
        const std::filesystem::path whole = NativePath(path);
        const std::u16string name = FromUtf8(whole.filename().native());
        std::error_code error;
        for (std::filesystem::directory_iterator entry(whole.parent_path(), error), end; !error && entry != end;
             entry.increment(error)) {
            const std::u16string other = FromUtf8(entry->path().filename().native());
            if (other != name && EqualsIgnoringCase(other, name)) return FromUtf8(entry->path().native());
        }
        return {};
    }

    std::optional<std::int64_t> ChangedAt(std::u16string_view path) const override {
        struct stat status {};
        if (stat(NativePath(path).c_str(), &status) != 0) return std::nullopt;
        return std::int64_t{status.st_mtim.tv_sec} * 10'000'000 + status.st_mtim.tv_nsec / 100;
    }

    std::optional<std::uint64_t> SizeOf(std::u16string_view path) const override {
        struct stat status {};
        if (stat(NativePath(path).c_str(), &status) != 0) return std::nullopt;
        return static_cast<std::uint64_t>(status.st_size);
    }

    std::optional<std::uint64_t> RoomIn(std::u16string_view folder) const override {
        struct statvfs disk {};
        if (statvfs(NativePath(folder).c_str(), &disk) != 0) return std::nullopt;
        return std::uint64_t{disk.f_bavail} * disk.f_frsize;
    }

    // On Windows the system makes the folder for data that all share; here the program does, if it can, with the first one in it.
    void MakeFolder(std::u16string_view path) override {
        if (!programData_.empty() && path.substr(0, path.rfind(kPathSeparator)) == programData_)
            MakeFolders(NativePath(programData_));
        mkdir(NativePath(path).c_str(), 0700);
    }

    std::unique_ptr<ByteSource> Open(std::u16string_view path) override {
        Descriptor file = OpenPlainFile(NativePath(path), O_RDONLY);
        if (!file) return nullptr;
        return std::make_unique<FileSource>(std::move(file));
    }

    bool Append(std::u16string_view path, std::string_view bytes) override {
        Descriptor file = OpenPlainFile(NativePath(path), O_WRONLY | O_APPEND | O_CREAT);
        return file && WriteAll(file, bytes) && file.Close();
    }

    std::unique_ptr<FileWriter> Create(std::u16string_view path) override {
        const std::string native = NativePath(path);
        Descriptor file = OpenPlainFile(native, O_WRONLY | O_APPEND | O_CREAT | O_EXCL);
        if (!file) return nullptr;
        FlushFolderOf(native);
        return std::make_unique<PosixWriter>(std::move(file), native);
    }

    bool Copy(std::u16string_view from, std::u16string_view to) override {
        const Descriptor source = OpenPlainFile(NativePath(from), O_RDONLY);
        if (!source) return false;
        Descriptor target = OpenPlainFile(NativePath(to), O_WRONLY | O_CREAT);
        if (!target || SameFile(source, target) || ftruncate(target.Get(), 0) != 0) return false;
        char chunk[16384];
        for (;;) {
            const ssize_t got = read(source.Get(), chunk, sizeof chunk);
            if (got < 0 && errno == EINTR) continue;
            if (got < 0 || !WriteAll(target, {chunk, static_cast<std::size_t>(got)})) return false;
            if (got == 0) return target.Close();
        }
    }

    bool Rename(std::u16string_view from, std::u16string_view to) override {
        if (rename(NativePath(from).c_str(), NativePath(to).c_str()) != 0) return false;
        FlushFolderOf(NativePath(to));
        return true;
    }

    std::u16string Target(std::u16string_view path) const override {
        constexpr int kMostLinks = 40;  // as the system follows them
        std::filesystem::path target = NativePath(path);
        std::error_code none;
        for (int i = 0; i < kMostLinks; ++i) {
            const std::filesystem::path next = std::filesystem::read_symlink(target, none);
            if (none) break;
            target = target.parent_path() / next;
        }
        return FromUtf8(target.native());
    }

    std::unique_ptr<FileLock> Lock(std::u16string_view path) override {
        auto lock = std::make_unique<FolderLock>(NativePath(Target(path)));
        return lock->HeldByAnother() ? nullptr : std::move(lock);
    }

    std::u16string WriteBeside(std::u16string_view path, std::string_view bytes, std::u16string_view like) override {
        std::string name = NativePath(path).append(".XXXXXX").append(kNew);
        Descriptor file(mkostemps(name.data(), kNew.size(), O_CLOEXEC));
        if (!file) return {};
        if (TakeRights(file, NativePath(like)) && WriteAll(file, bytes) && fsync(file.Get()) == 0 && file.Close())
            return FromUtf8(name);
        unlink(name.c_str());
        return {};
    }

    void Remove(std::u16string_view path) override { unlink(NativePath(path).c_str()); }

    std::vector<std::u16string> List(std::u16string_view folder, std::u16string_view pattern) const override {
        std::vector<std::u16string> paths;
        DIR* entries = opendir(NativePath(folder).c_str());
        if (!entries) return paths;
        while (const dirent* entry = readdir(entries)) {
            const std::u16string name = FromUtf8(entry->d_name);
            std::u16string path = JoinPath(folder, name);
            if (Fits(name, pattern) && IsPlainFile(path)) paths.push_back(std::move(path));
        }
        closedir(entries);
        return paths;
    }

    std::u16string ProgramDataFolder() const override { return programData_; }

private:
    const std::u16string programData_;
};

}  // namespace

std::unique_ptr<Files> MakeFiles(const std::u16string& programData) { return std::make_unique<PosixFiles>(programData); }

}  // namespace twr
