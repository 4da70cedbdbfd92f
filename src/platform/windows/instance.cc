// SPDX-License-Identifier: MIT
#include "base/wide_text.h"
#include "platform/services.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"

namespace twr {
namespace {

class WindowsInstance final : public Instance {
public:
    explicit WindowsInstance(std::u16string prefix) : prefix_(std::move(prefix)) {}
    bool Claim(std::u16string_view name) override;
    NameLook Look(std::u16string_view name) const override;
    void RaiseOther(std::u16string_view caption) override;

private:
    std::u16string prefix_;
    UniqueHandle mutex_;
};

}  // namespace

bool WindowsInstance::Claim(std::u16string_view name) {
    const std::wstring fullName = ToWide(prefix_ + std::u16string(name));
    for (int tries = 3; tries > 0; --tries) {
        UniqueHandle mutex(CreateMutexW(nullptr, FALSE, fullName.c_str()));
        if (!mutex || GetLastError() != ERROR_ALREADY_EXISTS) {
            mutex_ = std::move(mutex);
            return true;
        }
        mutex = {};
        Sleep(20);  // it may have been no more than a look
    }
    return false;
}

NameLook WindowsInstance::Look(std::u16string_view name) const {
    const std::wstring fullName = ToWide(prefix_ + std::u16string(name));
    const UniqueHandle mutex(OpenMutexW(SYNCHRONIZE, FALSE, fullName.c_str()));
    const DWORD error = GetLastError();
    if (mutex) return {NameLook::kTaken};
    if (error == ERROR_FILE_NOT_FOUND) return {NameLook::kFree};
    return {NameLook::kUnknown, "the mutex " + ToUtf8(name) + " can't be opened: error " + std::to_string(error) +
                                    "; end the program of another user that has it"};
}

void WindowsInstance::RaiseOther(std::u16string_view caption) {
    const HWND window = FindWindowW(nullptr, ToWide(caption).c_str());
    if (!window) return;
    const HWND popup = GetLastActivePopup(window);
    if (IsIconic(window)) ShowWindowAsync(window, SW_RESTORE);  // the other may hang in Deckman's library
    SetForegroundWindow(popup);
}

std::unique_ptr<Instance> MakeInstance(const Roots& roots) { return std::make_unique<WindowsInstance>(roots.namePrefix); }

}  // namespace twr
