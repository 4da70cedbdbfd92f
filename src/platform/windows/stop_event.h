// SPDX-License-Identifier: MIT
// How a halyrigctl without a console window is asked to stop.
#pragma once
#include <string>

#include "platform/windows/win32.h"

namespace twr {

// The name of the event that stops it, from its first wait on.
inline std::wstring StopEventName(DWORD process) { return L"halyrigctl-" + std::to_wstring(process); }

}  // namespace twr
