// SPDX-License-Identifier: MIT
// Times as doubles counting days since 1899-12-30 00:00 UTC. Durations are days too, and can be negative.
#pragma once
#include <cstdint>
#include <optional>

#include "platform/clock.h"

namespace twr {

inline constexpr double kDaysTo1970 = 25569.0;
inline constexpr double kSecondsPerDay = 86400.0;
inline constexpr double kTicksPerDay = kTicksPerSecond * kSecondsPerDay;

inline double DaysFromTicks(std::int64_t ticks) { return static_cast<double>(ticks) / kTicksPerDay + kDaysTo1970; }

inline double UtcNowDays(const Clock& clock) { return DaysFromTicks(clock.Ticks()); }

// The machine's local time; nullopt while its zone is unknown. Standard time has no bias of its own.
inline std::optional<double> LocalTime(const Zone& zone, double day) {
    const auto days = [](std::int32_t minutes) { return static_cast<double>(minutes) / 60 / 24; };
    const std::optional<ZoneState> state = zone.Now();
    if (!state) return std::nullopt;
    return day - (state->daylight ? days(state->daylightBias) + days(state->bias) : days(state->bias));
}

}  // namespace twr
