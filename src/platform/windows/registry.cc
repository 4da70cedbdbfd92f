// SPDX-License-Identifier: MIT
#include "platform/registry.h"

#include "platform/services.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"

namespace twr {
namespace {

class WindowsRegistry final : public Registry {
public:
    explicit WindowsRegistry(std::u16string root) : root_(std::move(root)) {}
    bool OpenOrCreate(std::u16string_view key) override;
    std::optional<RegistryValue> Read(std::u16string_view key, std::u16string_view name) const override;
    bool Write(std::u16string_view key, std::u16string_view name, const RegistryValue& value) override;
    std::vector<std::u16string> Names(std::u16string_view key) const override;
    RegistryPlace PlaceOf(std::u16string_view key, std::u16string_view) const override {
        return {u"HKEY_CURRENT_USER\\" + FromWide(Path(key).c_str())};
    }

private:
    std::wstring Path(std::u16string_view key) const;
    UniqueKey Opened(std::u16string_view key);

    std::u16string root_;
};

constexpr REGSAM kReadAndWrite = 0x2001F;  // KEY_READ and KEY_WRITE, without the right to link

}  // namespace

std::wstring WindowsRegistry::Path(std::u16string_view key) const {
    return ToWide(root_.empty() ? std::u16string(key) : root_ + u'\\' + std::u16string(key));
}

UniqueKey WindowsRegistry::Opened(std::u16string_view key) {
    const std::wstring path = Path(key);
    UniqueKey opened;
    LSTATUS status = RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, kReadAndWrite, opened.Receive());
    if (status == ERROR_FILE_NOT_FOUND) {
        status = RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, kReadAndWrite, nullptr, opened.Receive(), nullptr);
    }
    return status == ERROR_SUCCESS ? std::move(opened) : UniqueKey();
}

bool WindowsRegistry::OpenOrCreate(std::u16string_view key) { return static_cast<bool>(Opened(key)); }

std::optional<RegistryValue> WindowsRegistry::Read(std::u16string_view key, std::u16string_view name) const {
    UniqueKey opened;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, Path(key).c_str(), 0, KEY_READ, opened.Receive()) != ERROR_SUCCESS) return std::nullopt;
    const std::wstring wideName = ToWide(name);
    RegistryValue value;
    // The value may grow between the two calls.
    for (LSTATUS status = ERROR_MORE_DATA; status == ERROR_MORE_DATA;) {
        DWORD type = 0;
        DWORD size = 0;
        if (RegQueryValueExW(opened.get(), wideName.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return std::nullopt;
        value.data.resize(size);
        status = RegQueryValueExW(opened.get(), wideName.c_str(), nullptr, &type, value.data.data(), &size);
        if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return std::nullopt;
        value.type = type;
        if (status == ERROR_SUCCESS) value.data.resize(size);
    }
    return value;
}

std::vector<std::u16string> WindowsRegistry::Names(std::u16string_view key) const {
    std::vector<std::u16string> names;
    UniqueKey opened;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, Path(key).c_str(), 0, KEY_READ, opened.Receive()) != ERROR_SUCCESS) return names;
    wchar_t name[16384];  // no name is longer
    for (DWORD size = std::size(name); RegEnumValueW(opened.get(), static_cast<DWORD>(names.size()), name, &size, nullptr, nullptr,
                                                     nullptr, nullptr) == ERROR_SUCCESS;
         size = std::size(name)) {
        names.push_back(FromWide(name));
    }
    return names;
}

bool WindowsRegistry::Write(std::u16string_view key, std::u16string_view name, const RegistryValue& value) {
    const UniqueKey opened = Opened(key);
    return opened && RegSetValueExW(opened.get(), ToWide(name).c_str(), 0, value.type, value.data.data(),
                                    static_cast<DWORD>(value.data.size())) == ERROR_SUCCESS;
}

std::unique_ptr<Registry> MakeRegistry(const std::u16string& root) { return std::make_unique<WindowsRegistry>(root); }

}  // namespace twr
