// SPDX-License-Identifier: MIT
// The headers of Windows, in the order that they need, and its texts, times and paths as the suite has them.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

// clang-format off
#include <winsock2.h>
#include <windows.h>
#include <commctrl.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <xmllite.h>
// clang-format on

namespace twr {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline std::wstring ToWide(std::u16string_view text) { return {text.begin(), text.end()}; }
inline std::u16string FromWide(std::wstring_view text) { return {text.begin(), text.end()}; }

// As a Clock gives them; Windows counts from 1601.
inline constexpr std::int64_t kTicksFrom1601To1970 = 116444736000000000;
inline std::int64_t TicksOf(const FILETIME& time) {
    return (static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime) - kTicksFrom1601To1970;
}
inline FILETIME FileTimeOf(std::int64_t ticks) {
    const std::int64_t since1601 = ticks + kTicksFrom1601To1970;
    return {static_cast<DWORD>(since1601 & 0xFFFFFFFF), static_cast<DWORD>(since1601 >> 32)};
}

// The full path of a loaded program or library; null means the running program. Empty if it is unknown.
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

// The text of a window or control.
inline std::wstring WindowText(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

}  // namespace twr
