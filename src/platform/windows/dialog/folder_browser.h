// SPDX-License-Identifier: MIT
// The shell's box for picking a folder.
#pragma once

#include <optional>
#include <string>

#include "platform/windows/win32.h"

struct IFileDialog;

namespace twr {

class FolderBrowser {
public:
    // Shows the box, with `start` selected if that is a folder. nullopt if the user cancels it.
    std::optional<std::wstring> Pick(HWND owner, const std::wstring& start);

    // Closes the box, if it is open, as if the user had cancelled it.
    void Close();

private:
    IFileDialog* open_ = nullptr;
};

}  // namespace twr
