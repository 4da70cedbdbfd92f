#include "platform/windows/services.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/wide.h"

namespace twr {
namespace {

class WindowsInstance final : public Instance {
public:
    explicit WindowsInstance(std::u16string prefix) : prefix_(std::move(prefix)) {}
    bool Claim(std::u16string_view name) override;
    void RaiseOther(std::u16string_view caption) override;

private:
    std::u16string prefix_;
    UniqueHandle mutex_;
};

}  // namespace

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
    if (IsIconic(window)) ShowWindowAsync(window, SW_RESTORE);  // the other may hang in Deckman's library
    SetForegroundWindow(popup);
}

std::unique_ptr<Instance> MakeInstance(const std::u16string& namePrefix) { return std::make_unique<WindowsInstance>(namePrefix); }

}  // namespace twr
