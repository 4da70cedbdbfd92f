// SPDX-License-Identifier: MIT
// An edit control that shows a folder and holds, at its right end, the button for picking another. F4, the space bar and Alt with
// the down arrow press the button from the keyboard.
#pragma once

#include "platform/windows/dialog/folder_browser.h"
#include "platform/windows/win32.h"

namespace twr {

class FolderField {
public:
    explicit FolderField(HWND edit);
    FolderField(const FolderField&) = delete;
    FolderField& operator=(const FolderField&) = delete;

    void CloseBrowser() { browser_.Close(); }

private:
    static LRESULT CALLBACK Proc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR field);
    void PlaceButton();
    void Browse();

    HWND edit_;
    HWND button_;
    FolderBrowser browser_;
};

}  // namespace twr
