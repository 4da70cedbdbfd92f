// SPDX-License-Identifier: MIT
#include "platform/system.h"

#include "base/wide_text.h"
#include "platform/console.h"
#include "platform/files.h"
#include "platform/services.h"
#include "platform/windows/win32.h"

namespace twr {
namespace {

class WindowsExecutable final : public Executable {
public:
    std::optional<std::array<std::uint16_t, 4>> FileVersion() const override;
};

}  // namespace

const char16_t kPathSeparator = u'\\';
const std::u16string_view kLibrarySuffix = u".dll";
const std::string_view kLineEnd = "\r\n";

std::vector<std::string> Arguments(int, char**) {
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; wide && i < count; ++i) arguments.push_back(ToUtf8(FromWide(wide[i])));
    LocalFree(wide);
    return arguments;
}

Roots UserRoots() {
    wchar_t* path = nullptr;
    const HRESULT found = SHGetKnownFolderPath(FOLDERID_ProgramData, 0, nullptr, &path);
    Roots roots;
    if (SUCCEEDED(found)) roots.programData = FromWide(path);
    CoTaskMemFree(path);
    return roots;
}

// It has no terminal.
bool AnswerArguments(int, char**) { return false; }

void PrepareProcess() {
    // A missing drive or a damaged library is a failure like any other, not a message box of the system.
    SetErrorMode(SetErrorMode(0) | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
}

std::optional<std::array<std::uint16_t, 4>> WindowsExecutable::FileVersion() const {
    const std::wstring path = ModulePath(nullptr);
    DWORD ignored = 0;
    std::vector<std::byte> block(GetFileVersionInfoSizeW(path.c_str(), &ignored));
    if (block.empty() || !GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data())) return std::nullopt;
    void* found = nullptr;
    UINT size = 0;
    if (!VerQueryValueW(block.data(), L"\\", &found, &size) || size < sizeof(VS_FIXEDFILEINFO)) return std::nullopt;
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    return std::array<std::uint16_t, 4>{HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS), HIWORD(info.dwFileVersionLS),
                                        LOWORD(info.dwFileVersionLS)};
}

std::unique_ptr<Executable> MakeExecutable() { return std::make_unique<WindowsExecutable>(); }

}  // namespace twr
