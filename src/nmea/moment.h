// SPDX-License-Identifier: MIT
// The instruments' values at one moment.
#pragma once
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace twr {

inline constexpr float kAbsent = 32767.0F;  // stands for an unknown quantity

// Units: degrees, knots, nautical miles, feet of depth, seconds, degrees Celsius, hectopascals, volts, tonnes of load.
// Bearings are true. Angles to the wind are positive with the wind on the starboard side. The true wind is the wind over the water.
// Heel and leeway are positive to port, hence on starboard tack; trim is positive bow up; rudder and rate of turn are positive
// where the bow turns to starboard.
enum class Quantity : std::uint8_t {
    kBsp,
    kAwa,  // from the bow
    kAws,
    kTwa,  // from the course through the water
    kTws,
    kTwd,
    kHdg,
    kCourse,  // through the water: heading less leeway
    kLeeway,
    kHeel,
    kTrim,
    kRudder,
    kRateOfTurn,  // degrees per second
    kCog,
    kSog,
    kSet,
    kDrift,
    kVmg,  // along the true wind, negative on a run
    kTimer,
    kTimeToGun,  // days; absent once it has gone
    kDepth,
    kSeaTemp,
    kAirTemp,
    kBaro,
    kVariation,  // positive east
    kLat,
    kLon,
    kTargetBsp,
    kTargetTwa,
    kTargetVmg,
    kPolarBsp,
    kPolarPercent,
    kMarkDistance,
    kMarkBearing,
    kMarkTime,
    kGroundWindDirection,
    kGroundWindSpeed,
    kLog,
    kVolts,
    kMastAngle,
    kForestay,
    kBackstay,
    kCount
};

inline constexpr std::size_t kQuantityCount = static_cast<std::size_t>(Quantity::kCount);

class Moment {
public:
    Moment() { values_.fill(kAbsent); }

    float operator[](Quantity quantity) const { return values_[static_cast<std::size_t>(quantity)]; }

    // A number that is not finite is absent.
    void Set(Quantity quantity, double value) {
        values_[static_cast<std::size_t>(quantity)] = std::isfinite(value) ? static_cast<float>(value) : kAbsent;
    }

private:
    std::array<float, kQuantityCount> values_;
};

}  // namespace twr
