// SPDX-License-Identifier: MIT
// A dialog on the desktop, of this process or another, as its user and a screen reader see it.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dialog.h"
#include "platform/windows/win32.h"

namespace twr::testing {

class WindowProbe {
public:
    explicit WindowProbe(HWND window) : window_(window) {}

    // The top-level window with this caption. Without a process, that of any.
    static std::optional<WindowProbe> Find(std::u16string_view caption, std::uint32_t process = 0) {
        const std::wstring wanted = ToWide(caption);
        for (HWND window = nullptr; (window = FindWindowExW(nullptr, window, nullptr, wanted.c_str()));) {
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if (process == 0 || owner == process) return WindowProbe(window);
        }
        return std::nullopt;
    }

    // A box or dialog that belongs to the window.
    std::optional<WindowProbe> Popup() const {
        for (HWND window = nullptr; (window = FindWindowExW(nullptr, window, nullptr, nullptr));) {
            if (GetWindow(window, GW_OWNER) == window_ && IsWindowVisible(window)) return WindowProbe(window);
        }
        return std::nullopt;
    }

    HWND Handle() const { return window_; }
    HWND Control(int id) const { return GetDlgItem(window_, id); }

    std::u16string Caption() const { return TextOf(window_); }
    std::u16string Text(int control) const { return TextOf(Control(control)); }
    bool Checked(int control) const { return SendMessageW(Control(control), BM_GETCHECK, 0, 0) == BST_CHECKED; }

    // In pixels of the window's client area.
    ControlRect Rect(int control) const {
        RECT rect{};
        GetWindowRect(Control(control), &rect);
        MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&rect), 2);
        return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
    }
    // From dialog units. Widths and heights are rounded by themselves.
    ControlRect Pixels(ControlRect rect) const {
        RECT pixels{rect.left, rect.top, rect.width, rect.height};
        MapDialogRect(window_, &pixels);
        return {pixels.left, pixels.top, pixels.right, pixels.bottom};
    }
    // Of all controls.
    std::vector<int> TabOrder() const {
        std::vector<int> order;
        for (HWND control = GetWindow(window_, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
            order.push_back(GetDlgCtrlID(control));
        return order;
    }

    void Press(int control) const { SendMessageW(Control(control), BM_CLICK, 0, 0); }  // returns once the press has been handled
    void PostPress(int control) const { PostMessageW(Control(control), BM_CLICK, 0, 0); }
    void PostClose() const { PostMessageW(window_, WM_CLOSE, 0, 0); }

private:
    // Unlike GetWindowText, asks the window itself, so that another process's controls answer too.
    static std::u16string TextOf(HWND window) {
        std::wstring text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
        text.resize(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
        return FromWide(text);
    }

    HWND window_;
};

}  // namespace twr::testing
