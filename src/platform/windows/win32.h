// The headers of Windows, in the order that they need.
#pragma once

// clang-format off
#include <windows.h>
#include <commctrl.h>
#include <shlobj.h>
#include <shlwapi.h>
// clang-format on
