// SPDX-License-Identifier: MIT
#include "support/windows/window_probe.h"

#include "platform/windows/win32.h"

namespace twr::testing {
namespace {

// Unlike GetWindowText, asks the window itself, so that another process's controls answer too.
std::u16string TextOf(HWND window) {
    std::wstring text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return FromWide(text);
}

ControlRect FromRect(const RECT& rect) { return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top}; }

}  // namespace

std::optional<WindowProbe> WindowProbe::Find(std::u16string_view caption, std::uint32_t process) {
    const std::wstring wanted = ToWide(caption);
    for (HWND window = nullptr; (window = FindWindowExW(nullptr, window, nullptr, wanted.c_str()));) {
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        if (process == 0 || owner == process) return WindowProbe(window);
    }
    return std::nullopt;
}

std::optional<WindowProbe> WindowProbe::Popup() const {
    for (HWND window = nullptr; (window = FindWindowExW(nullptr, window, nullptr, nullptr));) {
        if (GetWindow(window, GW_OWNER) == window_ && IsWindowVisible(window)) return WindowProbe(window);
    }
    return std::nullopt;
}

std::u16string WindowProbe::Caption() const { return TextOf(window_); }
std::u16string WindowProbe::Text(int control) const { return TextOf(Control(control)); }
bool WindowProbe::Checked(int control) const { return SendMessageW(Control(control), BM_GETCHECK, 0, 0) == BST_CHECKED; }

ControlRect WindowProbe::Rect(int control) const {
    RECT rect{};
    GetWindowRect(Control(control), &rect);
    MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&rect), 2);
    return FromRect(rect);
}

ControlRect WindowProbe::Pixels(ControlRect rect) const {
    // Widths and heights are rounded by themselves.
    RECT pixels{rect.left, rect.top, rect.width, rect.height};
    MapDialogRect(window_, &pixels);
    return {pixels.left, pixels.top, pixels.right, pixels.bottom};
}

std::vector<int> WindowProbe::TabOrder() const {
    std::vector<int> order;
    for (HWND control = GetWindow(window_, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
        order.push_back(GetDlgCtrlID(control));
    return order;
}

void WindowProbe::Press(int control) const { SendMessageW(Control(control), BM_CLICK, 0, 0); }
void WindowProbe::PostPress(int control) const { PostMessageW(Control(control), BM_CLICK, 0, 0); }

void WindowProbe::PostClose() const { PostMessageW(window_, WM_CLOSE, 0, 0); }

}  // namespace twr::testing
