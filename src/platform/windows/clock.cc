// SPDX-License-Identifier: MIT
#include "platform/clock.h"

#include "platform/services.h"
#include "platform/windows/win32.h"

namespace twr {
namespace {

class WindowsZone final : public Zone {
public:
    std::optional<ZoneState> Now() const override;
    std::optional<std::int32_t> BiasAt(std::int64_t ticks) const override;
};

class WindowsClock final : public Clock {
public:
    WindowsClock();
    std::int64_t Ticks() const override;
    std::int64_t SteadyMs() const override { return static_cast<std::int64_t>(GetTickCount64()); }

private:
    void(WINAPI* now_)(FILETIME*);
};

}  // namespace

// The precise clock came with Windows 8; the other one steps by some 15 ms.
WindowsClock::WindowsClock() : now_(GetSystemTimeAsFileTime) {
    const auto precise = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetSystemTimePreciseAsFileTime");
    if (precise) now_ = reinterpret_cast<decltype(now_)>(reinterpret_cast<void*>(precise));
}

std::int64_t WindowsClock::Ticks() const {
    FILETIME time;
    now_(&time);
    return TicksOf(time);
}

std::optional<ZoneState> WindowsZone::Now() const {
    TIME_ZONE_INFORMATION zone;
    const DWORD season = GetTimeZoneInformation(&zone);
    if (season == TIME_ZONE_ID_INVALID) return std::nullopt;
    return ZoneState{zone.Bias, zone.DaylightBias, season == TIME_ZONE_ID_DAYLIGHT};
}

// By the rules of that year, which may have been others.
std::optional<std::int32_t> WindowsZone::BiasAt(std::int64_t ticks) const {
    const FILETIME then = FileTimeOf(ticks);
    SYSTEMTIME utc, local;
    FILETIME shown;
    TIME_ZONE_INFORMATION zone;
    if (!FileTimeToSystemTime(&then, &utc) || !GetTimeZoneInformationForYear(utc.wYear, nullptr, &zone) ||
        !SystemTimeToTzSpecificLocalTime(&zone, &utc, &local) || !SystemTimeToFileTime(&local, &shown))
        return std::nullopt;
    constexpr std::int64_t kTicksPerMs = 10'000, kMsPerMinute = 60'000;  // a SYSTEMTIME has whole milliseconds
    return static_cast<std::int32_t>((ticks / kTicksPerMs - TicksOf(shown) / kTicksPerMs) / kMsPerMinute);
}

std::unique_ptr<Clock> MakeClock() { return std::make_unique<WindowsClock>(); }

std::unique_ptr<Zone> MakeZone() { return std::make_unique<WindowsZone>(); }

}  // namespace twr
