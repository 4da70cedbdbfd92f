// SPDX-License-Identifier: MIT
#include "platform/windows/dialog/folder_field.h"

#include "platform/windows/win32.h"

namespace twr {
namespace {

constexpr LPARAM kAltDown = 1 << 29;  // in the flags of a key message

bool OpensBrowser(UINT message, WPARAM key, LPARAM flags) {
    if (message == WM_SYSKEYDOWN) return key == VK_DOWN && (flags & kAltDown) != 0;
    return message == WM_KEYDOWN && (key == VK_F4 || key == VK_SPACE);
}

}  // namespace

FolderField::FolderField(HWND edit) : edit_(edit) {
    SetWindowLongPtrW(edit_, GWL_STYLE, GetWindowLongPtrW(edit_, GWL_STYLE) | WS_CLIPCHILDREN);
    button_ = CreateWindowExW(0, WC_BUTTONW, L"...", WS_CHILD | WS_VISIBLE | BS_PUSHBUTTON, 0, 0, 0, 0, edit_, nullptr,
                              GetModuleHandleW(nullptr), nullptr);
    SendMessageW(button_, WM_SETFONT, static_cast<WPARAM>(SendMessageW(edit_, WM_GETFONT, 0, 0)), FALSE);
    PlaceButton();
    SetWindowSubclass(edit_, Proc, 0, reinterpret_cast<DWORD_PTR>(this));
}

LRESULT CALLBACK FolderField::Proc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR data) {
    auto* const field = reinterpret_cast<FolderField*>(data);
    if (message == WM_NCDESTROY) RemoveWindowSubclass(edit, Proc, id);
    if (OpensBrowser(message, wParam, lParam)) {
        field->Browse();
        return 0;
    }
    if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED && reinterpret_cast<HWND>(lParam) == field->button_) {
        SetFocus(edit);
        field->Browse();
        return 0;
    }
    // The button asks its parent for the background in this way, and a narrowed clip would leave nothing of the button.
    if (message == WM_PRINTCLIENT) {
        const HDC dc = reinterpret_cast<HDC>(wParam);
        const int saved = SaveDC(dc);
        const LRESULT result = DefSubclassProc(edit, message, wParam, lParam);
        RestoreDC(dc, saved);
        return result;
    }
    const LRESULT result = DefSubclassProc(edit, message, wParam, lParam);
    if (message == WM_SIZE) field->PlaceButton();
    return result;
}

void FolderField::PlaceButton() {
    RECT client;
    GetClientRect(edit_, &client);
    const int width = client.bottom * 3 / 2;
    SetWindowPos(button_, nullptr, client.right - width, 0, width, client.bottom, SWP_NOZORDER | SWP_NOACTIVATE);
    SendMessageW(edit_, EM_SETMARGINS, EC_RIGHTMARGIN, MAKELPARAM(0, width));
}

void FolderField::Browse() {
    // The same folder again counts as well: something in it may be new.
    const auto picked = browser_.Pick(GetAncestor(edit_, GA_ROOT), WindowText(edit_));
    if (picked) SetWindowTextW(edit_, picked->c_str());
}

}  // namespace twr
