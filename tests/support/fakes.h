// SPDX-License-Identifier: MIT
// Stand-ins for the services of a machine, each controlled by the test. Tests that need real files and XML use the real services in
// a temporary folder.
#pragma once
#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/days.h"
#include "platform/system.h"

namespace twr::testing {

struct FakeClock : Clock {
    std::int64_t Ticks() const override {
        ++readings;
        return ticks;
    }
    void AdvanceMs(std::int64_t ms) { ticks += ms * 10000; }
    double Days() const { return DaysFromTicks(ticks); }

    std::int64_t ticks = 17950464000000000;  // 2026-11-19 00:00 UTC
    mutable int readings = 0;
};

struct FakeZone : Zone {
    std::optional<ZoneState> Now() const override { return state; }
    std::optional<std::int32_t> BiasAt(std::int64_t ticks) const override {
        return state ? std::optional(state->bias - (ticks < daylightUntil ? 60 : 0)) : std::nullopt;
    }
    std::optional<ZoneState> state = ZoneState{0, 0, false};
    std::int64_t daylightUntil = INT64_MIN;
};

// Blocks shared by all holders of this object, as other processes share them.
class FakeMemory : public SharedMemory {
public:
    std::unique_ptr<SharedBlock> CreateOrOpen(std::u16string_view name, std::size_t size) override;
    std::unique_ptr<SharedBlock> OpenExisting(std::u16string_view name, std::size_t size) override;

    bool failCreate = false;
    bool failMap = false;

private:
    std::map<std::u16string, std::weak_ptr<std::vector<std::uint64_t>>> blocks_;
};

struct FakeRegistry : Registry {
    bool OpenOrCreate(std::u16string_view key) override;
    std::optional<RegistryValue> Read(std::u16string_view key, std::u16string_view name) const override;
    bool Write(std::u16string_view key, std::u16string_view name, const RegistryValue& value) override;
    std::vector<std::u16string> Names(std::u16string_view) const override { return {}; }
    RegistryPlace PlaceOf(std::u16string_view key, std::u16string_view) const override { return {std::u16string(key)}; }

    bool unavailable = false;
    std::map<std::u16string, std::map<std::u16string, RegistryValue>> keys;
};

// A desktop without a dialog: boxes are recorded and answered as the test says.
struct FakeDesktop : Desktop {
    struct Box {
        std::u16string text, caption;
        BoxButtons buttons;
        BoxIcon icon;
    };

    BoxAnswer ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon icon) override {
        boxes.push_back({std::u16string(text), std::u16string(caption), buttons, icon});
        return answer(Box(boxes.back()));
    }
    void Remark(std::u16string_view text, std::u16string_view) override { remarks.emplace_back(text); }
    void RunDialog(const DialogTemplate&, Dialog&) override {}
    void ShowAbout(const DialogTemplate&, std::u16string_view text) override { about = text; }
    void PostQuit() override { quit = true; }

    std::vector<Box> boxes;
    std::vector<std::u16string> remarks;
    std::function<BoxAnswer(const Box&)> answer = [](const Box&) { return BoxAnswer::kNone; };
    std::u16string about;
    bool quit = false;
};

// A text, of which at most so many bytes are given at once.
struct TextSource : ByteSource {
    explicit TextSource(std::string all, std::size_t atMost = std::string::npos) : text(std::move(all)), most(atMost) {}
    std::size_t Read(char* to, std::size_t room) override {
        const std::size_t count = text.copy(to, std::min(room, most), given);
        given += count;
        return count;
    }
    const std::string text;
    const std::size_t most;
    std::size_t given = 0;
};

// The first bytes of a source, as of a file on a disk that is broken behind them.
class Broken : public ByteSource {
public:
    Broken(std::unique_ptr<ByteSource> whole, std::size_t readable) : whole_(std::move(whole)), left_(readable) {}
    std::size_t Read(char* to, std::size_t room) override {
        const std::size_t got = whole_->Read(to, std::min(room, left_));
        failed_ = left_ == 0;
        left_ -= got;
        return got;
    }
    std::string Failure() const override { return failed_ ? "broken disk" : ""; }

private:
    const std::unique_ptr<ByteSource> whole_;
    std::size_t left_;
    bool failed_ = false;
};

// Files kept in memory, for what needs no real ones.
class FakeFiles : public Files {
public:
    bool Exists(std::u16string_view path) const override {
        onLook();
        return Find(path) || std::ranges::find(folders, path) != folders.end();
    }
    std::optional<std::int64_t> ChangedAt(std::u16string_view) const override { return std::nullopt; }
    std::optional<std::uint64_t> SizeOf(std::u16string_view path) const override {
        const File* const file = Find(path);
        return file ? std::optional<std::uint64_t>(file->bytes.size()) : std::nullopt;
    }
    std::optional<std::uint64_t> RoomIn(std::u16string_view) const override { return diskRoom; }
    void MakeFolder(std::u16string_view path) override {
        if (!foldersFail) folders.emplace_back(path);
    }
    std::unique_ptr<ByteSource> Open(std::u16string_view path) override;
    bool Append(std::u16string_view path, std::string_view bytes) override;
    std::unique_ptr<FileWriter> Create(std::u16string_view path) override;
    bool Copy(std::u16string_view from, std::u16string_view to) override;
    std::u16string Target(std::u16string_view path) const override { return std::u16string(path); }
    std::unique_ptr<FileLock> Lock(std::u16string_view) override { return std::make_unique<FileLock>(); }
    std::u16string WriteBeside(std::u16string_view, std::string_view, std::u16string_view) override { return {}; }
    bool Rename(std::u16string_view, std::u16string_view) override { return false; }
    void Remove(std::u16string_view path) override {
        removed.emplace_back(path);
        std::erase_if(files, [&](const File& file) { return file.path == path; });
    }
    std::vector<std::u16string> List(std::u16string_view folder, std::u16string_view pattern) const override;
    std::u16string ProgramDataFolder() const override { return programData; }

    struct File {
        std::u16string path;
        std::string bytes;
        bool locked = false;  // can be copied but not opened
    };
    std::function<void()> onLook = [] {};  // whether something exists
    std::vector<File> files;               // in the order in which List gives them
    std::vector<std::u16string> folders;
    std::u16string programData = u"/data";
    bool foldersFail = false;
    bool copiesFail = false;
    std::size_t room = std::string::npos;  // bytes that a created file can hold
    std::uint64_t diskRoom = 1ULL << 40;   // bytes
    int flushes = 0;                       // of created files
    std::function<bool()> onFlush;         // whether one succeeds; may be called by another thread
    std::vector<std::u16string> removed;

private:
    const File* Find(std::u16string_view path) const {
        const auto file = std::ranges::find(files, path, &File::path);
        return file == files.end() ? nullptr : &*file;
    }
};

// No file can be read and none written.
struct NoXml : Xml {
    std::unique_ptr<XmlReader> OpenReader(std::u16string_view) override { return nullptr; }
    std::unique_ptr<XmlWriter> OpenWriter(std::u16string_view) override { return nullptr; }
};

// A machine of fakes for tests of the core.
struct FakeMachine {
    FakeClock clock;
    FakeZone zone;
    FakeMemory memory;
    FakeRegistry registry;
    FakeFiles files;
    NoXml xml;
    FakeDesktop desktop;

    CoreServices Services() { return {clock, zone, memory, registry, files, xml, desktop}; }
};

}  // namespace twr::testing
