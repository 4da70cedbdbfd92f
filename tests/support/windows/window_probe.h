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
    static std::optional<WindowProbe> Find(std::u16string_view caption, std::uint32_t process = 0);

    // A box or dialog that belongs to the window.
    std::optional<WindowProbe> Popup() const;

    HWND Handle() const { return window_; }
    HWND Control(int id) const { return GetDlgItem(window_, id); }

    std::u16string Caption() const;
    std::u16string Text(int control) const;
    bool Checked(int control) const;
    ControlRect Rect(int control) const;         // in pixels of the window's client area
    ControlRect Pixels(ControlRect rect) const;  // from dialog units
    std::vector<int> TabOrder() const;           // of all controls

    void Press(int control) const;  // returns once the press has been handled
    void PostPress(int control) const;
    void PostClose() const;

private:
    HWND window_;
};

}  // namespace twr::testing
