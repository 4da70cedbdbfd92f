// SPDX-License-Identifier: MIT
// The time of day and the time zone of the machine.
#pragma once
#include <cstdint>
#include <optional>

namespace twr {

inline constexpr double kTicksPerSecond = 1e7;

class Clock {
public:
    virtual ~Clock() = default;

    // 100 ns ticks since 1970-01-01 00:00 UTC.
    virtual std::int64_t Ticks() const = 0;

    // Milliseconds that go on whatever is done to the time of day, the same for all programs since the machine was started.
    virtual std::int64_t SteadyMs() const { return Ticks() / 10'000; }
};

// Minutes to add to local time to get UTC, so that a zone east of Greenwich has a negative bias.
struct ZoneState {
    std::int32_t bias;
    std::int32_t daylightBias;  // on top of `bias` while daylight time is in force
    bool daylight;              // daylight time is in force now
};

class Zone {
public:
    virtual ~Zone() = default;

    // nullopt if the zone is unknown.
    virtual std::optional<ZoneState> Now() const = 0;

    // Minutes to add to the local time of a moment, in ticks as a Clock gives them, to get UTC: daylight time is counted in, if it
    // was in force then. nullopt if the zone is unknown.
    virtual std::optional<std::int32_t> BiasAt(std::int64_t ticks) const = 0;
};

}  // namespace twr
