// SPDX-License-Identifier: MIT
// A dialog and its host: a window of the desktop, a terminal, no screen at all, or the script of a test.
#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace twr {

enum class ControlKind { kPushButton, kDefaultButton, kCheckBox, kLabel, kFolderField };

struct ControlRect {
    int left, top, width, height;  // dialog units
    friend bool operator==(const ControlRect&, const ControlRect&) = default;
};

struct ControlTemplate {
    int id;
    ControlKind kind;
    std::u16string_view caption;
    ControlRect rect;
    std::u16string_view library = {};  // a folder field's: folders that hold this library are marked where they are chosen by keys
};

struct DialogTemplate {
    int id;  // of the window's resource, where a system keeps one
    std::u16string_view caption;
    int width, height;                          // dialog units
    std::span<const ControlTemplate> controls;  // in tab order
};

enum class DialogResult { kOk = 1, kCancel = 2 };

// What an open dialog can ask of its host.
class DialogWindow {
public:
    virtual ~DialogWindow() = default;

    virtual bool Checked(int control) const = 0;
    virtual void SetChecked(int control, bool checked) = 0;
    virtual std::u16string Text(int control) const = 0;

    // Raises OnTextChange before it returns, also when the text stays the same.
    virtual void SetText(int control, std::u16string_view text) = 0;

    // Adds an item below a line of its own to the window's menu. Choosing it raises OnMenu.
    virtual void AddMenuItem(int command, std::u16string_view text) = 0;

    // Raises OnTimer every `milliseconds` from now on, while a box is open too. 0 if no timer could be started.
    virtual std::uintptr_t StartTimer(std::uintptr_t id, unsigned milliseconds) = 0;
    virtual void StopTimer(std::uintptr_t id) = 0;

    // Raises OnCancel from the host's loop, as if the user had closed the window.
    virtual void PostClose() = 0;

    // Closes the dialog once the running event has been handled.
    virtual void End(DialogResult result) = 0;
};

// What a host tells a dialog, all on one thread. An event that shows a box can be interrupted by OnTimer and by a posted close.
class Dialog {
public:
    virtual ~Dialog() = default;

    virtual void OnInit(DialogWindow& window) = 0;
    virtual void OnTimer(std::uintptr_t id) = 0;
    virtual void OnTextChange(int control) = 0;
    virtual void OnButton(int control) = 0;  // a push button that is not the default one
    virtual void OnMenu(int command) = 0;
    virtual void OnOk() = 0;      // the default button
    virtual void OnCancel() = 0;  // Esc, and every other way of closing a window
    virtual void OnDestroy() = 0;
};

}  // namespace twr
