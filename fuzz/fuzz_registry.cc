// SPDX-License-Identifier: MIT
#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/wide_text.h"
#include "core/core.h"
#include "platform/linux/registry/registry_text.h"
#include "support/fakes.h"

namespace {

constexpr char16_t kKey[] = u"HKEY_CURRENT_USER\\Software\\Tidewright\\core";

// The registry that the text makes.
class TextRegistry : public twr::Registry {
public:
    // The names beforehand, since most of the settings are in hardly any text.
    explicit TextRegistry(const twr::RegistryText& text) : text_(text), names_(text.Names(kKey)) {}

    bool OpenOrCreate(std::u16string_view) override { return true; }
    std::optional<twr::RegistryValue> Read(std::u16string_view, std::u16string_view name) const override {
        const auto isName = [name](const std::u16string& known) { return twr::EqualsIgnoringCase(known, name); };
        return std::ranges::any_of(names_, isName) ? text_.Find(kKey, name) : std::nullopt;
    }
    bool Write(std::u16string_view, std::u16string_view, const twr::RegistryValue&) override { return false; }
    std::vector<std::u16string> Names(std::u16string_view) const override { return names_; }
    twr::RegistryPlace PlaceOf(std::u16string_view, std::u16string_view name) const override {
        return {u"registry.reg", text_.LineOf(kKey, name)};
    }

private:
    const twr::RegistryText& text_;
    const std::vector<std::u16string> names_;
};

// Memory that is new to each core, but still holds what the one before has left: filling a record writes all that is read.
class ReusedMemory : public twr::SharedMemory {
public:
    std::unique_ptr<twr::SharedBlock> CreateOrOpen(std::u16string_view, std::size_t) override {
        return std::make_unique<Block>(&record_);
    }
    std::unique_ptr<twr::SharedBlock> OpenExisting(std::u16string_view, std::size_t) override { return nullptr; }

private:
    struct Block : twr::SharedBlock {
        explicit Block(twr::CoreRecord* held) : record(held) {}
        void* Data() const override { return record; }
        bool Existed() const override { return false; }
        twr::CoreRecord* const record;
    };

    twr::CoreRecord record_{};
};

// The settings of a new record.
void LoadSettings(const twr::RegistryText& text) {
    twr::CollectedFindings heard;
    text.Check(u"HKEY_CURRENT_USER", {&heard, u"registry.reg"});
    TextRegistry registry(text);
    if (registry.Names(kKey).empty()) return;  // a record without settings is as in other tests
    static twr::testing::FakeMachine machine;
    static ReusedMemory memory;
    machine.files.folders = {u"/data"};
    const twr::CoreServices fakes = machine.Services();
    const twr::CCore core({fakes.clock, fakes.zone, memory, registry, fakes.files, fakes.xml, fakes.desktop, &heard});
    const twr::CoreRecord& record = *core.View();
    if (!(record.sysValue[0] >= 1.0) || record.sysInt[6] < 0 || record.sysInt[6] > 6) __builtin_trap();
    if (record.dataFolder[259] != 0 || record.databasePath[259] != 0 || record.marksXmlPath[259] != 0) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    twr::RegistryText text(std::string_view(reinterpret_cast<const char*>(data), size));
    LoadSettings(text);
    text.AddKey(kKey);
    static const std::pair<std::u16string, twr::RegistryValue> settings[] = {
        {u"Sys_v0", twr::StringValue(u"1")},
        {u"Sys_i6", twr::DwordValue(3)},
        {u"", {twr::kRegistryBinary, std::vector<std::uint8_t>(40, 0xA5)}},
    };
    const auto& [name, value] = settings[size % std::size(settings)];
    text.Set(kKey, name, value);
    // What was set is found again, whatever stood there before.
    const twr::RegistryText again(text.Bytes());
    if (again.Find(kKey, name) != value) __builtin_trap();
    again.DamagedLine(kKey, name);  // there may be one behind it
    return 0;
}
