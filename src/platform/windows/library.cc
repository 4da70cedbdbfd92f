// SPDX-License-Identifier: MIT
#include "platform/library.h"

#include "platform/services.h"
#include "platform/windows/crash_reports.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"

namespace twr {
namespace {

class WindowsLibraries final : public Libraries {
public:
    std::unique_ptr<Library> Load(std::u16string_view path) override;
};

class LoadedLibrary : public Library {
public:
    explicit LoadedLibrary(UniqueModule module) : module_(std::move(module)) {}
    ~LoadedLibrary() override { NoteUnloading(module_.get()); }
    void* Find(const char* name) const override { return reinterpret_cast<void*>(GetProcAddress(module_.get(), name)); }

private:
    UniqueModule module_;
};

// Windows loads a program too, but does not connect it with the libraries that it calls.
bool IsLibrary(HMODULE module) {
    const auto* const start = reinterpret_cast<const unsigned char*>(module);
    const auto* const headers =
        reinterpret_cast<const IMAGE_NT_HEADERS*>(start + reinterpret_cast<const IMAGE_DOS_HEADER*>(start)->e_lfanew);
    return (headers->FileHeader.Characteristics & IMAGE_FILE_DLL) != 0;
}

}  // namespace

std::unique_ptr<Library> WindowsLibraries::Load(std::u16string_view path) {
    UniqueModule module(LoadLibraryW(ToWide(path).c_str()));
    if (!module || !IsLibrary(module.get())) return nullptr;
    return std::make_unique<LoadedLibrary>(std::move(module));
}

std::u16string ModuleFolder(const void* address) {
    if (!address) return {};  // null would mean the program
    HMODULE module = nullptr;
    constexpr DWORD kByAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!GetModuleHandleExW(kByAddress, static_cast<const wchar_t*>(address), &module)) return {};
    const std::wstring path = ModulePath(module);
    const std::size_t end = path.rfind(L'\\');
    return end == std::wstring::npos ? std::u16string() : FromWide(path.substr(0, end));
}

std::unique_ptr<Libraries> MakeLibraries() { return std::make_unique<WindowsLibraries>(); }

}  // namespace twr
