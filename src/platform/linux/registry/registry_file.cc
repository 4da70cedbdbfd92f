// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <set>
#include <thread>

#include "base/wide_text.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/registry/registry_text.h"
#include "platform/linux/services.h"
#include "platform/linux/signal_queue.h"
#include "platform/linux/standard_error.h"

namespace twr {
namespace {

std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

// The file to which the links at `path` lead.
std::string Target(const std::string& path) {
    char* real = realpath(path.c_str(), nullptr);
    std::string target = real ? real : path;
    std::free(real);
    return target;
}

bool Write(Descriptor& file, std::string_view bytes, mode_t mode) {
    return fchmod(file.Get(), mode) == 0 && WriteAll(file, bytes) && fsync(file.Get()) == 0 && file.Close();
}

bool Fail(int error) {
    errno = error;
    return false;
}

// Replaces a file as a whole, so that it is at every moment either the old one or the new one. Makes missing folders, writes a
// temporary beside the file, flushes it to the disk and moves it into place. A file without write permission is not replaced; a
// link stays a link. On failure returns false, sets errno, and leaves the old file.
bool ReplaceFile(const std::string& path, std::string_view bytes) {
    if (!path.starts_with('/')) return Fail(EINVAL);
    MakeFolders(FolderOf(path));
    const std::string target = Target(path);
    mode_t mode = 0600;
    struct stat old {};
    if (stat(target.c_str(), &old) == 0) {
        if (!S_ISREG(old.st_mode)) return Fail(EINVAL);
        if (access(target.c_str(), W_OK) != 0) return false;
        mode = old.st_mode & 0777;
    } else if (errno != ENOENT) {
        return false;
    }
    std::string temporary = target + ".XXXXXX";
    Descriptor file(mkostemp(temporary.data(), O_CLOEXEC));
    if (!file) return false;
    if (!Write(file, bytes, mode) || rename(temporary.c_str(), target.c_str()) != 0) {
        const int error = errno;
        unlink(temporary.c_str());
        return Fail(error);
    }
    const Descriptor folder(open(FolderOf(target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) fsync(folder.Get());
    return true;
}

constexpr std::u16string_view kUserRoot = u"HKEY_CURRENT_USER";

std::u16string FullKey(std::u16string_view key) { return (std::u16string(kUserRoot) += u'\\') += key; }

// A larger file is not one that the suite wrote, and must not delay a program that has been asked to end.
constexpr off_t kUninterrupted = 1 << 20;  // bytes

bool ReadAll(const Descriptor& file, std::string& bytes) {
    char chunk[16384];
    for (;;) {
        const ssize_t got = read(file.Get(), chunk, sizeof chunk);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return false;
        if (got == 0) return true;
        bytes.append(chunk, static_cast<std::size_t>(got));
    }
}

bool HasTooLongLine(std::string_view bytes) {
    while (bytes.size() > kLongestLine) {
        const std::size_t end = bytes.substr(0, kLongestLine + 1).rfind('\n');
        if (end == bytes.npos) return true;
        bytes.remove_prefix(end + 1);
    }
    return false;
}

// Keeps other programs of the suite from changing the file between reading and writing it. A stopped one can't block this for long:
// settings are then written without the lock.
class RegistryLock {
public:
    explicit RegistryLock(const std::string& folder) : folder_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        for (int i = 0; i < 100 && folder_ && flock(folder_.Get(), LOCK_EX | LOCK_NB) != 0; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }

private:
    const Descriptor folder_;
};

class RegistryFile final : public Registry {
public:
    explicit RegistryFile(const std::u16string& path) : path_(NativePath(path)) {}

    bool OpenOrCreate(std::u16string_view key) override {
        const RegistryLock lock = Lock();
        RegistryText* text = Current();
        if (!text) return false;
        if (text->HasKey(FullKey(key))) return true;
        text->AddKey(FullKey(key));
        return Save("a new key");
    }

    std::optional<RegistryValue> Read(std::u16string_view key, std::u16string_view name) const override {
        const RegistryText* text = Current();
        if (!text) return std::nullopt;
        if (const auto line = text->DamagedLine(FullKey(key), name)) {
            TellUnread(":" + std::to_string(*line) + ": the value of " + ToUtf8(name) + " can't be read and is ignored");
        }
        return text->Find(FullKey(key), name);
    }

    bool Write(std::u16string_view key, std::u16string_view name, const RegistryValue& value) override {
        const RegistryLock lock = Lock();
        RegistryText* text = Current();
        if (!text) return false;
        if (text->Find(FullKey(key), name) == value) return true;
        text->Set(FullKey(key), name, value);
        return Save("the settings");
    }

    std::vector<std::u16string> Names(std::u16string_view key) const override {
        const RegistryText* text = Current();
        return text ? text->Names(FullKey(key)) : std::vector<std::u16string>();
    }

    RegistryPlace PlaceOf(std::u16string_view key, std::u16string_view name) const override {
        const RegistryText* text = Current();
        return {FromUtf8(path_), text ? text->LineOf(FullKey(key), name) : 0};
    }

    void Check(Findings& findings) const override {
        checked_ = true;
        const std::u16string path = FromUtf8(path_);
        const Place file{&findings, path};
        if (const RegistryText* text = Current()) {
            text->Check(kUserRoot, file);
        } else {
            file.Report(Flaw::kStoreNotRead, FromUtf8(cause_));
        }
    }

private:
    // Identifies a state of the file.
    struct Stamp {
        ino_t number = 0;
        off_t size = 0;
        std::int64_t seconds = 0, nanoseconds = 0;
        bool operator==(const Stamp&) const = default;
    };

    RegistryLock Lock() const {
        const std::string folder = path_.substr(0, path_.rfind('/') + 1);
        if (folder.starts_with('/')) MakeFolders(folder);
        return RegistryLock(folder);
    }

    // The current text of the file, a new one if there is no file; nullptr if the file can't be read.
    RegistryText* Current() const {
        const Descriptor file = OpenPlainFile(path_, O_RDONLY);
        if (!file) {
            if (errno != ENOENT) return Refuse(errno == EINVAL ? "it is not a plain file" : std::strerror(errno));
            stamp_.reset();
            return &text_.emplace(std::string_view());
        }
        struct stat status {};
        if (fstat(file.Get(), &status) != 0) return Refuse(std::strerror(errno));
        if (status.st_size > static_cast<off_t>(kLargestFile)) return Refuse("it is larger than 64 MiB");
        if (status.st_size > kUninterrupted && CloseSignalPending()) return nullptr;
        const Stamp stamp{status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
        if (text_ && stamp_ == stamp) return &*text_;
        std::string bytes;
        bytes.reserve(static_cast<std::size_t>(status.st_size));
        if (!ReadAll(file, bytes)) return Refuse(std::strerror(errno));
        if (HasTooLongLine(bytes)) return Refuse("it has a line longer than 1 MiB");
        if (text_.emplace(bytes, CloseSignalPending).Stopped()) {
            text_.reset();
            return nullptr;
        }
        stamp_ = stamp;
        return &*text_;
    }

    RegistryText* Refuse(const std::string& cause) const {
        TellUnread(": the settings can't be read: " + cause);
        cause_ = cause;
        return nullptr;
    }

    bool Save(const std::string& what) {
        stamp_.reset();  // read again next time, whether or not it could be written
        if (ReplaceFile(path_, text_->Bytes())) {
            told_.clear();
            return true;
        }
        const int error = errno;
        Tell(": " + what + " can't be saved: " + (error == EINVAL ? "it is not a plain file" : std::strerror(error)));
        return false;
    }

    // Unless someone has asked for it.
    void TellUnread(const std::string& text) const {
        if (!checked_) Tell(text);
    }

    // Once, however many values are affected. Without a folder for settings there is no file to name.
    void Tell(const std::string& text) const {
        const bool named = path_.starts_with('/');
        const std::string line = named ? path_ + text : "there is no folder for the settings: set HOME or XDG_CONFIG_HOME";
        if (told_.insert(line).second) TellUser(line);
    }

    const std::string path_;
    mutable std::optional<RegistryText> text_;
    mutable std::optional<Stamp> stamp_;
    mutable std::set<std::string> told_;
    mutable std::string cause_;     // why the file could not be read the last time that it couldn't
    mutable bool checked_ = false;  // what can't be read is reported to findings
};

}  // namespace

std::unique_ptr<Registry> MakeRegistry(const std::u16string& file) { return std::make_unique<RegistryFile>(file); }

}  // namespace twr
