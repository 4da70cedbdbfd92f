// SPDX-License-Identifier: MIT
// The user's units: what each selector of the record stands for, and the conversion from a channel's internal unit.
//
// Selectors come from the record and can be any number. A selector without a row gives no depth rather than a wrong one, and leaves
// every other quantity in its internal unit.
#pragma once
#include <cstdint>
#include <string_view>

#include "core/core_record.h"

namespace twr {

struct UnitRow {
    double factor;  // value in this unit = internal value * factor
    std::u16string_view shortLabel;
    std::u16string_view longLabel;
    std::int32_t next;  // the row that a user steps to, 0 after the last
};

inline constexpr double kMetresPerNauticalMile = 1852.0;

// From metres, by sysInt[1].
inline constexpr UnitRow kDepthUnits[] = {
    {1.0, u"m", u"Metres", 1},
    {0.5468, u"fth", u"Fathoms", 2},
    {3.2808, u"ft", u"Feet", 0},
};

// From nautical miles, by sysInt[3], and by sysInt[4] for short distances.
inline constexpr UnitRow kDistanceUnits[] = {
    {1.0, u"nm", u"Nautical miles", 1},
    {kMetresPerNauticalMile, u"bl", u"Boat lengths", 2},  // to be divided by the boat's length
    {1852.0, u"m", u"Metres", 3},
    {1.852, u"km", u"Kilometres", 4},
    {2025.3718285214347, u"yd", u"Yards", 5},
    {6076.115485564304, u"ft", u"Feet", 0},
};
inline constexpr std::int32_t kBoatLengthUnit = 1;

// From knots, by sysInt[2].
inline constexpr UnitRow kSpeedUnits[] = {
    {1.0, u"kt", u"Knots", 1},
    {0.5144444704055786, u"m/s", u"Metres per second", 2},
    {1.852, u"km/hr", u"Kilometres per hour", 0},
};

// From pascals, by sysInt[9].
inline constexpr UnitRow kPressureUnits[] = {
    {1.0, u"Pa", u"Pa", 1},
    {0.001, u"kPa", u"kPa", 2},
    {0.00014504, u"psi", u"psi", 3},
    {0.00001, u"bar", u"bar", 4},
    {0.00029529983071445, u"InHg", u"inHg", 0},
};

// kNoValue for a selector without a row.
double DepthInUserUnit(double metres, std::int32_t selector);

// `boatLength` in metres; a length of 0 or kNoValue leaves nautical miles in place of boat lengths.
double DistanceInUserUnit(double nauticalMiles, std::int32_t selector, double boatLength);

double SpeedInUserUnit(double knots, std::int32_t selector);
double PressureInUserUnit(double pascals, std::int32_t selector);
double TemperatureInUserUnit(double celsius, bool fahrenheit);

// From the internal unit of a type to the user's, as set in the record. `variation`, in degrees, is for bearings shown true;
// kNoValue selects the own boat's. Without either they are kNoValue.
double InUserUnit(const CoreRecord& record, std::int16_t type, double value, double variation);

// The user's choices, read from the record once.
struct UnitSettings {
    std::int32_t depth, speed, distance, shortDistance, pressure;
    double boatLength;  // metres
    bool magnetic, fahrenheit;
};

UnitSettings UnitSettingsOf(const CoreRecord& record);

// The unit in which the record keeps a value of this type, as a plain word: "kn"; empty if the type has none.
std::u16string_view InternalUnit(std::int16_t type);

// The short label of the unit in which a value of this type is shown; empty if the type has none, or shows no value.
std::u16string_view UnitLabel(std::int16_t type, const UnitSettings& settings);

}  // namespace twr
