// The times of Windows as ticks of the suite.
#pragma once
#include <cstdint>

#include "platform/windows/win32.h"

namespace twr {

// As a Clock gives them; Windows counts from 1601.
inline std::int64_t TicksOf(const FILETIME& time) {
    constexpr std::int64_t kTicksFrom1601To1970 = 116444736000000000;
    return (static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime) - kTicksFrom1601To1970;
}

}  // namespace twr
