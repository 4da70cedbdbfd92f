#include <string_view>

#include "core/core.h"
#include "platform/linux/registry/registry_text.h"
#include "support/fakes.h"

namespace {

constexpr char16_t kKey[] = u"HKEY_CURRENT_USER\\Software\\Tidewright\\core";

// The registry that the text makes.
class TextRegistry : public twr::Registry {
public:
    explicit TextRegistry(const twr::RegistryText& text) : text_(text) {}

    bool OpenOrCreate(std::u16string_view) override { return true; }
    std::optional<twr::RegistryValue> Read(std::u16string_view, std::u16string_view name) const override {
        return text_.Find(kKey, name);
    }
    bool Write(std::u16string_view, std::u16string_view, const twr::RegistryValue&) override { return false; }
    std::vector<std::u16string> Names(std::u16string_view) const override { return text_.Names(kKey); }
    twr::RegistryPlace PlaceOf(std::u16string_view, std::u16string_view name) const override {
        return {u"registry.reg", text_.LineOf(kKey, name)};
    }

private:
    const twr::RegistryText& text_;
};

// The settings of a new record.
void LoadSettings(const twr::RegistryText& text) {
    TextRegistry registry(text);
    twr::CollectedFindings heard;
    text.Check(u"HKEY_CURRENT_USER", {&heard, u"registry.reg"});
    twr::testing::FakeMachine machine;
    const twr::CoreServices fakes = machine.Services();
    const twr::CCore core({fakes.clock, fakes.zone, fakes.memory, registry, fakes.files, fakes.xml, fakes.desktop, &heard});
    const twr::CoreRecord& record = *core.View();
    if (!(record.sysValue[0] >= 1.0) || record.sysInt[6] < 0 || record.sysInt[6] > 6) __builtin_trap();
    if (record.dataFolder[259] != 0 || record.databasePath[259] != 0 || record.marksXmlPath[259] != 0) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    twr::RegistryText text(std::string_view(reinterpret_cast<const char*>(data), size));
    LoadSettings(text);
    text.Set(kKey, u"Sys_v0", twr::StringValue(u"1"));
    // What was set is found again, whatever stood there before.
    const twr::RegistryText again(text.Bytes());
    if (again.Find(kKey, u"Sys_v0") != twr::StringValue(u"1")) __builtin_trap();
    return 0;
}
