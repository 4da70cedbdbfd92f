#include "platform/windows/module_path.h"
#include "platform/windows/services.h"

namespace twr {

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

}  // namespace twr
