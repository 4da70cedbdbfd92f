// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/dry_run.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace twr {
namespace {

// Memory that no other process sees.
class PrivateMemory final : public SharedMemory {
public:
    std::unique_ptr<SharedBlock> CreateOrOpen(std::u16string_view, std::size_t size) override {
        return std::make_unique<Block>(size);
    }
    std::unique_ptr<SharedBlock> OpenExisting(std::u16string_view, std::size_t) override { return nullptr; }

private:
    class Block final : public SharedBlock {
    public:
        explicit Block(std::size_t size) : words_((size + sizeof words_[0] - 1) / sizeof words_[0]) {}
        void* Data() const override { return words_.data(); }
        bool Existed() const override { return false; }

    private:
        mutable std::vector<std::uint64_t> words_;
    };
};

class ReadOnlyRegistry final : public Registry {
public:
    explicit ReadOnlyRegistry(const Registry& registry) : registry_(registry) {}

    bool OpenOrCreate(std::u16string_view) override { return true; }
    std::optional<RegistryValue> Read(std::u16string_view key, std::u16string_view name) const override {
        return registry_.Read(key, name);
    }
    bool Write(std::u16string_view, std::u16string_view, const RegistryValue&) override { return false; }
    std::vector<std::u16string> Names(std::u16string_view key) const override { return registry_.Names(key); }
    RegistryPlace PlaceOf(std::u16string_view key, std::u16string_view name) const override { return registry_.PlaceOf(key, name); }
    void Check(Findings& findings) const override { registry_.Check(findings); }

private:
    const Registry& registry_;
};

class ReadOnlyFiles final : public Files {
public:
    explicit ReadOnlyFiles(Files& files) : files_(files) {}

    bool Exists(std::u16string_view path) const override { return made_.contains(path) || files_.Exists(path); }
    std::optional<Denial> DeniedAt(std::u16string_view path) const override { return files_.DeniedAt(path); }
    std::u16string InOtherCase(std::u16string_view path) const override { return files_.InOtherCase(path); }
    std::optional<std::int64_t> ChangedAt(std::u16string_view path) const override { return files_.ChangedAt(path); }
    std::optional<std::uint64_t> SizeOf(std::u16string_view path) const override { return files_.SizeOf(path); }
    std::optional<std::uint64_t> RoomIn(std::u16string_view folder) const override { return files_.RoomIn(folder); }
    void MakeFolder(std::u16string_view path) override { made_.emplace(path); }
    std::unique_ptr<ByteSource> Open(std::u16string_view path) override { return files_.Open(path); }
    bool Append(std::u16string_view, std::string_view) override { return false; }
    std::unique_ptr<FileWriter> Create(std::u16string_view) override { return nullptr; }
    bool Copy(std::u16string_view, std::u16string_view) override { return false; }
    std::u16string Target(std::u16string_view path) const override { return files_.Target(path); }
    std::unique_ptr<FileLock> Lock(std::u16string_view) override { return nullptr; }
    std::u16string WriteBeside(std::u16string_view, std::string_view, std::u16string_view) override { return {}; }
    bool Rename(std::u16string_view, std::u16string_view) override { return false; }
    void Remove(std::u16string_view) override {}
    std::vector<std::u16string> List(std::u16string_view folder, std::u16string_view pattern) const override {
        return files_.List(folder, pattern);
    }
    std::u16string ProgramDataFolder() const override { return files_.ProgramDataFolder(); }

private:
    Files& files_;
    std::set<std::u16string, std::less<>> made_;
};

class ReadOnlyXml final : public Xml {
public:
    explicit ReadOnlyXml(Xml& xml) : xml_(xml) {}

    std::unique_ptr<XmlReader> OpenReader(std::u16string_view path) override { return xml_.OpenReader(path); }
    std::unique_ptr<XmlWriter> OpenWriter(std::u16string_view) override { return nullptr; }

private:
    Xml& xml_;
};

class NoDesktop final : public Desktop {
public:
    BoxAnswer ShowBox(std::u16string_view, std::u16string_view, BoxButtons, BoxIcon) override { return BoxAnswer::kNone; }
    void RunDialog(const DialogTemplate&, Dialog&) override {}
    void ShowAbout(const DialogTemplate&, std::u16string_view) override {}
    void PostQuit() override {}
};

}  // namespace

struct DryRun::Stage {
    Stage(const CoreServices& real, Findings* findings)
        : registry(real.registry),
          files(real.files),
          xml(real.xml),
          services{real.clock, real.zone, memory, registry, files, xml, desktop, findings},
          core(services) {}

    PrivateMemory memory;
    ReadOnlyRegistry registry;
    ReadOnlyFiles files;
    ReadOnlyXml xml;
    NoDesktop desktop;
    CoreServices services;
    CCore core;
};

DryRun::DryRun(const CoreServices& services, Findings* findings) : stage_(std::make_unique<Stage>(services, findings)) {}

DryRun::~DryRun() = default;

CCore& DryRun::Core() const { return stage_->core; }

const CoreRecord& DryRun::Record() const { return *stage_->core.View(); }

CoreServices DryRun::Services() const { return stage_->services; }

}  // namespace twr
