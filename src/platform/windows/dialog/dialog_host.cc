// SPDX-License-Identifier: MIT
#include "platform/windows/dialog/dialog_host.h"

#include <algorithm>

#include "platform/windows/resource_ids.h"
#include "platform/windows/win32.h"

namespace twr {
namespace {

// Windows keeps the low four bits of a system command for itself.
constexpr WPARAM kSystemCommandMask = 0xFFF0;

HICON LoadIconOfSize(int widthMetric, int heightMetric) {
    return static_cast<HICON>(LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(HALYRIG_ICON), IMAGE_ICON,
                                         GetSystemMetrics(widthMetric), GetSystemMetrics(heightMetric), LR_SHARED));
}

bool IsDialogWindow(HWND window) {
    wchar_t name[8] = {};
    return GetClassNameW(window, name, 8) > 0 && std::wstring_view(name) == L"#32770";
}

BOOL CALLBACK CloseBoxOf(HWND window, LPARAM owner) {
    if (GetWindow(window, GW_OWNER) == reinterpret_cast<HWND>(owner) && IsDialogWindow(window)) EndDialog(window, IDCANCEL);
    return TRUE;
}

}  // namespace

void DialogHost::Open() {
    CreateDialogParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(layout_.id), nullptr, Proc, reinterpret_cast<LPARAM>(this));
}

void DialogHost::Run() {
    if (!ended_) ShowWindow(window_, SW_SHOWDEFAULT);
    MSG message;
    while (window_ && !ended_ && GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (IsDialogMessageW(window_, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void DialogHost::Destroy() {
    if (window_) DestroyWindow(window_);
}

bool DialogHost::Checked(int control) const { return SendDlgItemMessageW(window_, control, BM_GETCHECK, 0, 0) == BST_CHECKED; }

void DialogHost::SetChecked(int control, bool checked) {
    SendDlgItemMessageW(window_, control, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

std::u16string DialogHost::Text(int control) const { return FromWide(WindowText(GetDlgItem(window_, control))); }

void DialogHost::SetText(int control, std::u16string_view text) { SetDlgItemTextW(window_, control, ToWide(text).c_str()); }

void DialogHost::AddMenuItem(int command, std::u16string_view text) {
    const HMENU menu = GetSystemMenu(window_, FALSE);
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(command), ToWide(text).c_str());
    menuCommands_.push_back(command);
}

std::uintptr_t DialogHost::StartTimer(std::uintptr_t id, unsigned milliseconds) {
    return SetTimer(window_, id, milliseconds, nullptr) ? id : 0;
}

void DialogHost::StopTimer(std::uintptr_t id) { KillTimer(window_, id); }

void DialogHost::PostClose() { PostMessageW(window_, WM_CLOSE, 0, 0); }

// A box left open would keep the program from ending until it is answered.
void DialogHost::End(DialogResult) {
    ended_ = true;
    CloseBoxes();
    // Wakes the loop, which may be waiting below an event that another process has sent.
    PostMessageW(window_, WM_NULL, 0, 0);
}

void DialogHost::CloseBoxes() {
    for (const auto& field : folderFields_) field->CloseBrowser();
    EnumThreadWindows(GetCurrentThreadId(), CloseBoxOf, reinterpret_cast<LPARAM>(window_));
}

INT_PTR CALLBACK DialogHost::Proc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        auto* const host = reinterpret_cast<DialogHost*>(lParam);
        host->window_ = window;
        host->Init();
        return TRUE;
    }
    auto* const host = reinterpret_cast<DialogHost*>(GetWindowLongPtrW(window, DWLP_USER));
    return host ? host->Handle(message, wParam) : FALSE;
}

INT_PTR DialogHost::Handle(UINT message, WPARAM wParam) {
    switch (message) {
        case WM_TIMER:
            if (!ended_) dialog_.OnTimer(wParam);
            return FALSE;
        case WM_COMMAND:
            if (!ended_) OnCommand(LOWORD(wParam), HIWORD(wParam));
            return TRUE;
        case WM_SYSCOMMAND:
            return OnSystemCommand(static_cast<int>(wParam & kSystemCommandMask));
        case WM_CLOSE:
            if (!ended_) dialog_.OnCancel();
            return TRUE;
        case WM_ENDSESSION:
            // Windows may end the process as soon as this returns.
            if (wParam) {
                End(DialogResult::kCancel);
                Destroy();
            }
            return TRUE;
        case WM_PAINT:
            if (!IsIconic(window_)) return FALSE;
            PaintIcon();
            return TRUE;
        case WM_QUERYDRAGICON:
            return reinterpret_cast<INT_PTR>(icon_);
        case WM_DESTROY:
            ended_ = true;
            dialog_.OnDestroy();
            return FALSE;
        case WM_NCDESTROY:
            window_ = nullptr;
            return FALSE;
        default:
            return FALSE;
    }
}

void DialogHost::Init() {
    icon_ = LoadIconOfSize(SM_CXICON, SM_CYICON);
    SendMessageW(window_, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon_));
    SendMessageW(window_, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(LoadIconOfSize(SM_CXSMICON, SM_CYSMICON)));
    for (const auto& control : layout_.controls) {
        if (control.kind != ControlKind::kFolderField) continue;
        folderFields_.push_back(std::make_unique<FolderField>(GetDlgItem(window_, control.id)));
    }
    dialog_.OnInit(*this);
}

void DialogHost::OnCommand(int control, int code) {
    // Esc has no control of its own.
    if (control == IDCANCEL) return dialog_.OnCancel();
    const auto found = std::ranges::find(layout_.controls, control, &ControlTemplate::id);
    if (found == layout_.controls.end()) return;
    if (found->kind == ControlKind::kFolderField && code == EN_CHANGE) dialog_.OnTextChange(control);
    if (found->kind == ControlKind::kDefaultButton && code == BN_CLICKED) dialog_.OnOk();
    if (found->kind == ControlKind::kPushButton && code == BN_CLICKED) dialog_.OnButton(control);
}

bool DialogHost::OnSystemCommand(int command) {
    if (std::ranges::find(menuCommands_, command) == menuCommands_.end()) return false;
    if (!ended_) dialog_.OnMenu(command);
    return true;
}

void DialogHost::PaintIcon() {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window_, &paint);
    SendMessageW(window_, WM_ICONERASEBKGND, reinterpret_cast<WPARAM>(dc), 0);
    RECT client;
    GetClientRect(window_, &client);
    DrawIcon(dc, (client.right - GetSystemMetrics(SM_CXICON) + 1) / 2, (client.bottom - GetSystemMetrics(SM_CYICON) + 1) / 2,
             icon_);
    EndPaint(window_, &paint);
}

}  // namespace twr
