#include "platform/clock.h"

#include "platform/windows/services.h"

namespace twr {
namespace {

constexpr std::int64_t kTicksFrom1601To1970 = 116444736000000000;

}  // namespace

// The precise clock came with Windows 8; the other one steps by some 15 ms.
WindowsClock::WindowsClock() : now_(GetSystemTimeAsFileTime) {
    const auto precise = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetSystemTimePreciseAsFileTime");
    if (precise) now_ = reinterpret_cast<decltype(now_)>(reinterpret_cast<void*>(precise));
}

std::int64_t WindowsClock::Ticks() const {
    FILETIME time;
    now_(&time);
    return (static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime) - kTicksFrom1601To1970;
}

std::optional<ZoneState> WindowsZone::Now() const {
    TIME_ZONE_INFORMATION zone;
    const DWORD season = GetTimeZoneInformation(&zone);
    if (season == TIME_ZONE_ID_INVALID) return std::nullopt;
    return ZoneState{zone.Bias, zone.DaylightBias, season == TIME_ZONE_ID_DAYLIGHT};
}

}  // namespace twr
