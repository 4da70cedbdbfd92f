#include "platform/windows/services.h"
#include "platform/windows/wide.h"

namespace twr {

bool WindowsInstance::Claim(std::u16string_view name) {
    const std::wstring fullName = ToWide(prefix_ + std::u16string(name));
    UniqueHandle mutex(CreateMutexW(nullptr, FALSE, fullName.c_str()));
    if (mutex && GetLastError() == ERROR_ALREADY_EXISTS) return false;
    mutex_ = std::move(mutex);
    return true;
}

void WindowsInstance::RaiseOther(std::u16string_view caption) {
    const HWND window = FindWindowW(nullptr, ToWide(caption).c_str());
    if (!window) return;
    const HWND popup = GetLastActivePopup(window);
    if (IsIconic(window)) ShowWindow(window, SW_RESTORE);
    SetForegroundWindow(popup);
}

}  // namespace twr
