// SPDX-License-Identifier: MIT
// The console window as a screen, beside the buffer that the command prompt uses.
#pragma once
#include <memory>

#include "platform/console_screen.h"
#include "platform/windows/win32.h"

namespace twr {

// `stop` is signalled when the user asks the program to stop. nullptr if the handles aren't those of a console.
std::unique_ptr<ConsoleScreen> MakeConsoleScreen(HANDLE input, HANDLE output, HANDLE stop);

}  // namespace twr
