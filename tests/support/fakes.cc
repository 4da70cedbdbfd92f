// SPDX-License-Identifier: MIT
#include "support/fakes.h"

#include "platform/files.h"

namespace twr::testing {
namespace {

using Bytes = std::shared_ptr<std::vector<std::uint64_t>>;

struct FakeBlock : SharedBlock {
    FakeBlock(Bytes shared, bool wasThere, bool isMapped) : bytes(std::move(shared)), existed(wasThere), mapped(isMapped) {}
    void* Data() const override { return mapped ? bytes->data() : nullptr; }
    bool Existed() const override { return existed; }
    const Bytes bytes;
    const bool existed, mapped;
};

struct FakeWriter : FileWriter {
    FakeWriter(FakeFiles& disk, std::u16string_view file) : files(disk), path(file) {}
    bool Write(std::string_view bytes) override {
        if (!files.Exists(path)) return true;
        std::string& held = std::ranges::find(files.files, path, &FakeFiles::File::path)->bytes;
        held += bytes.substr(0, files.room - std::min(files.room, held.size()));
        return held.size() < files.room;
    }
    bool Flush() override {
        ++files.flushes;
        const auto onFlush = files.onFlush;  // outlives the files, should they go while it blocks
        return !onFlush || onFlush();
    }
    bool HasItsName() const override { return files.Exists(path); }
    FakeFiles& files;
    const std::u16string path;
};

std::u16string Lowered(std::u16string_view text) {
    std::u16string lowered(text);
    for (char16_t& c : lowered) {
        if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
    }
    return lowered;
}

bool Fits(std::u16string_view name, std::u16string_view pattern) {
    if (pattern.empty()) return name.empty();
    if (pattern[0] == u'*') return Fits(name, pattern.substr(1)) || (!name.empty() && Fits(name.substr(1), pattern));
    return !name.empty() && (pattern[0] == u'?' || pattern[0] == name[0]) && Fits(name.substr(1), pattern.substr(1));
}

}  // namespace

std::unique_ptr<SharedBlock> FakeMemory::CreateOrOpen(std::u16string_view name, std::size_t size) {
    if (failCreate) return nullptr;
    if (auto block = OpenExisting(name, size)) return block;
    const auto bytes = std::make_shared<std::vector<std::uint64_t>>(size / 8 + 1);
    blocks_[std::u16string(name)] = bytes;
    return std::make_unique<FakeBlock>(bytes, false, !failMap);
}

std::unique_ptr<SharedBlock> FakeMemory::OpenExisting(std::u16string_view name, std::size_t) {
    const auto bytes = blocks_[std::u16string(name)].lock();
    return bytes ? std::make_unique<FakeBlock>(bytes, true, !failMap) : nullptr;
}

bool FakeRegistry::OpenOrCreate(std::u16string_view key) {
    if (!unavailable) keys[Lowered(key)];
    return !unavailable;
}

std::optional<RegistryValue> FakeRegistry::Read(std::u16string_view key, std::u16string_view name) const {
    const auto values = keys.find(Lowered(key));
    if (unavailable || values == keys.end()) return std::nullopt;
    const auto value = values->second.find(Lowered(name));
    return value == values->second.end() ? std::nullopt : std::optional(value->second);
}

bool FakeRegistry::Write(std::u16string_view key, std::u16string_view name, const RegistryValue& value) {
    if (!unavailable) keys[Lowered(key)][Lowered(name)] = value;
    return !unavailable;
}

std::unique_ptr<ByteSource> FakeFiles::Open(std::u16string_view path) {
    const File* file = Find(path);
    return file && !file->locked ? std::make_unique<TextSource>(file->bytes) : nullptr;
}

bool FakeFiles::Append(std::u16string_view path, std::string_view bytes) {
    auto file = std::ranges::find(files, path, &File::path);
    if (file == files.end()) file = files.insert(file, File{std::u16string(path), {}});
    file->bytes += bytes;
    return true;
}

std::unique_ptr<FileWriter> FakeFiles::Create(std::u16string_view path) {
    if (Exists(path)) return nullptr;
    files.push_back({std::u16string(path), {}});
    return std::make_unique<FakeWriter>(*this, path);
}

bool FakeFiles::Copy(std::u16string_view from, std::u16string_view to) {
    const File* file = Find(from);
    if (!file || copiesFail) return false;
    const std::string bytes = file->bytes;
    std::erase_if(files, [&](const File& old) { return old.path == to; });
    return Append(to, bytes);
}

std::vector<std::u16string> FakeFiles::List(std::u16string_view folder, std::u16string_view pattern) const {
    std::vector<std::u16string> paths;
    const std::u16string prefix = JoinPath(folder, u"");
    for (const File& file : files) {
        if (file.path.starts_with(prefix) && Fits(Lowered(file.path.substr(prefix.size())), Lowered(pattern)))
            paths.push_back(file.path);
    }
    return paths;
}

}  // namespace twr::testing
