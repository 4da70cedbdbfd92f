// SPDX-License-Identifier: MIT
// The desktop of Windows: message boxes, and dialogs from the executable's resources.
#include "platform/services.h"
#include "platform/windows/dialog/dialog_host.h"
#include "platform/windows/win32.h"

namespace twr {
namespace {

class WindowsDesktop final : public Desktop {
public:
    BoxAnswer ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon icon) override;
    void RunDialog(const DialogTemplate& layout, Dialog& dialog) override;
    void ShowAbout(const DialogTemplate& layout, std::u16string_view text) override;
    void PostQuit() override;

private:
    DialogHost* open_ = nullptr;
    bool quit_ = false;
};

constexpr DWORD kAllControls = 255;

UINT BoxStyle(BoxButtons buttons, BoxIcon icon) {
    const UINT style = buttons == BoxButtons::kYesNo ? MB_YESNO : MB_OK;
    if (icon == BoxIcon::kQuestion) return style | MB_ICONQUESTION;
    return icon == BoxIcon::kStop ? style | MB_ICONHAND : style;
}

BoxAnswer AnswerOf(int button) {
    if (button == IDOK) return BoxAnswer::kOk;
    if (button == IDYES) return BoxAnswer::kYes;
    return button == IDNO ? BoxAnswer::kNo : BoxAnswer::kNone;
}

INT_PTR CALLBACK AboutProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        // The only static control; its number is the one that all such controls share.
        SetWindowTextW(FindWindowExW(window, nullptr, WC_STATICW, nullptr), reinterpret_cast<const wchar_t*>(lParam));
        return TRUE;
    }
    if (message != WM_COMMAND || (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL)) return FALSE;
    EndDialog(window, LOWORD(wParam));
    return TRUE;
}

}  // namespace

// A dialog that has ended takes no more answers, though the event that asks may still be running.
BoxAnswer WindowsDesktop::ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon icon) {
    const auto ended = [this] { return open_ && open_->Ended(); };
    if (ended()) return BoxAnswer::kNone;
    const int button =
        MessageBoxW(open_ ? open_->Window() : nullptr, ToWide(text).c_str(), ToWide(caption).c_str(), BoxStyle(buttons, icon));
    return ended() ? BoxAnswer::kNone : AnswerOf(button);
}

void WindowsDesktop::RunDialog(const DialogTemplate& layout, Dialog& dialog) {
    const INITCOMMONCONTROLSEX controls{sizeof controls, kAllControls};
    InitCommonControlsEx(&controls);
    RegisterApplicationRestart(L"", 0);
    DialogHost host(layout, dialog);
    open_ = &host;
    host.Open();
    if (!quit_) host.Run();
    host.Destroy();
    open_ = nullptr;
    quit_ = false;
}

void WindowsDesktop::ShowAbout(const DialogTemplate& layout, std::u16string_view text) {
    if (!open_ || open_->Ended()) return;
    DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(layout.id), open_->Window(), AboutProc,
                    reinterpret_cast<LPARAM>(ToWide(text).c_str()));
}

void WindowsDesktop::PostQuit() {
    quit_ = true;
    if (open_) open_->End(DialogResult::kCancel);
}

std::unique_ptr<Desktop> MakeDesktop() { return std::make_unique<WindowsDesktop>(); }

}  // namespace twr
