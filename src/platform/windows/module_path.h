// The location of a loaded program or library.
#pragma once

#include <string>

#include "platform/windows/win32.h"

namespace twr {

// The full path; null means the running program. Empty if it is unknown.
inline std::wstring ModulePath(HMODULE module) {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

}  // namespace twr
