// SPDX-License-Identifier: MIT
// What the reports of crashes must know before.
#pragma once
#include "platform/windows/win32.h"

namespace twr {

// The library is about to be freed: a thread of its own that runs on crashes, where no library will be any more.
void NoteUnloading(HMODULE library);

}  // namespace twr
