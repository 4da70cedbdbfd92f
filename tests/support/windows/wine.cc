#include "support/wine.h"

#include "platform/windows/win32.h"

namespace twr::testing {

bool UnderWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

}  // namespace twr::testing
