// SPDX-License-Identifier: MIT
// The real files on a disk of which something is wrong.
#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "support/fakes.h"

namespace twr::testing {

// The disk is full, or the machine stops, at one of the operations that change something.
class FailingFiles : public Files {
public:
    explicit FailingFiles(Files& real) : real_(real) {}
    bool Exists(std::u16string_view path) const override { return real_.Exists(path); }
    std::optional<Denial> DeniedAt(std::u16string_view path) const override {
        return path == forbidden ? Denial{forbidden, false, false, "root", "0600"} : real_.DeniedAt(path);
    }
    std::u16string InOtherCase(std::u16string_view path) const override { return real_.InOtherCase(path); }
    std::optional<std::int64_t> ChangedAt(std::u16string_view path) const override { return real_.ChangedAt(path); }
    std::optional<std::uint64_t> SizeOf(std::u16string_view path) const override { return real_.SizeOf(path); }
    std::optional<std::uint64_t> RoomIn(std::u16string_view folder) const override {
        const auto left = real_.RoomIn(folder);
        return left && room ? room : left;
    }
    void MakeFolder(std::u16string_view path) override { real_.MakeFolder(path); }
    std::unique_ptr<ByteSource> Open(std::u16string_view path) override {
        auto source = real_.Open(path);
        return readable == std::string::npos || !source ? std::move(source) : std::make_unique<Broken>(std::move(source), readable);
    }
    bool Append(std::u16string_view path, std::string_view bytes) override { return !Fails() && real_.Append(path, bytes); }
    std::unique_ptr<FileWriter> Create(std::u16string_view path) override {
        if (!Fails()) return real_.Create(path);
        if (!stopped || calls == failing + 1) real_.Append(path, "<hal");
        return nullptr;
    }
    bool Copy(std::u16string_view from, std::u16string_view to) override {
        if (!Fails()) return real_.Copy(from, to);
        if (!stopped || calls == failing + 1) {
            real_.Remove(to);
            real_.Append(to, "<hal");
        }
        return false;
    }
    std::u16string Target(std::u16string_view path) const override { return real_.Target(path); }
    std::unique_ptr<FileLock> Lock(std::u16string_view path) override { return lockedFor-- > 0 ? nullptr : real_.Lock(path); }
    std::u16string WriteBeside(std::u16string_view path, std::string_view bytes, std::u16string_view like) override {
        if (!Fails()) return real_.WriteBeside(path, bytes, like);
        if (stopped && calls == failing + 1) real_.WriteBeside(path, "<hal", like);
        return {};
    }
    bool Rename(std::u16string_view from, std::u16string_view to) override {
        if (beforeRename) beforeRename();
        return !Fails() && real_.Rename(from, to);
    }
    void Remove(std::u16string_view path) override {
        if (!stopped || !Fails()) real_.Remove(path);
    }
    std::vector<std::u16string> List(std::u16string_view folder, std::u16string_view pattern) const override {
        return real_.List(folder, pattern);
    }
    std::u16string ProgramDataFolder() const override { return real_.ProgramDataFolder(); }

    int failing = -1;
    bool stopped = false;  // nothing is done from the failing call on
    int calls = 0;
    int lockedFor = 0;                         // times that another process has the lock
    std::size_t readable = std::string::npos;  // bytes of each file
    std::function<void()> beforeRename;
    std::u16string forbidden;           // a file that belongs to another user
    std::optional<std::uint64_t> room;  // left on each disk, in bytes; else as it is

private:
    bool Fails() {
        const int call = calls++;
        return failing >= 0 && (call == failing || (stopped && call > failing));
    }
    Files& real_;
};

}  // namespace twr::testing
