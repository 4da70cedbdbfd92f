// SPDX-License-Identifier: MIT
// What this system's services share, and the makers of its further ones.
#pragma once
#include <memory>
#include <string>
#include <string_view>

#include "platform/services.h"

namespace twr {

std::unique_ptr<Desktop> MakeHeadlessDesktop();
std::unique_ptr<Desktop> MakeTerminalDesktop();
std::unique_ptr<ConsoleScreen> MakeConsoleScreen();

// The path of a program's file in a folder: the prefix, the program's name in small letters, and `ending`.
std::string FileIn(const FilePlace& place, std::u16string_view prefix, std::u16string_view program, std::u16string_view ending);

}  // namespace twr
