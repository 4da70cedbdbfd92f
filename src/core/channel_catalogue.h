// SPDX-License-Identifier: MIT
// The channels that every program of the suite knows, and what is fixed about each.
#pragma once
#include <cstdint>
#include <span>
#include <string_view>

#include "base/channel_ids.h"

namespace twr {

// The unit of a channel, which fixes how it is wrapped, converted and shown. The comment gives the internal unit. A user channel's
// type comes from a file and can be any other number, which counts as a plain number.
enum UnitType : std::int16_t {
    kTypeNumber = 0,
    kTypeDateTime = 1,       // days since 1899-12-30 00:00 UTC
    kTypeDuration = 2,       // days
    kTypeDepth = 3,          // metres
    kTypeDistance = 4,       // nautical miles
    kTypeShortDistance = 5,  // nautical miles
    kTypeBearing = 6,        // degrees magnetic, 0 to 360
    kTypeAngle = 7,          // degrees, -180 to 180
    kTypeLatitude = 8,       // degrees, north positive
    kTypeLongitude = 9,      // degrees, east positive
    kTypePercent = 10,
    kTypeSail = 11,         // none: the text lies in the record
    kTypeBoatSpeed = 12,    // knots
    kTypeWindAngle = 13,    // degrees, -180 to 180, port negative
    kTypeTemperature = 14,  // degrees Celsius
    kTypeBarometer = 15,    // as published
    kTypeVolts = 16,        // as published
    kTypeMetres = 17,
    kTypeLength = 18,     // as published
    kTypeTurnRate = 19,   // degrees per second
    kTypeWindSpeed = 21,  // knots
    kTypeCurrent = 22,    // as published
    kTypePressure = 23,   // pascals
};

constexpr bool IsUnitType(std::int32_t number) { return number >= kTypeNumber && number <= kTypePressure && number != 20; }

struct ChannelInfo {
    std::uint16_t id;            // the row's own index
    std::uint16_t shortIndex;    // place in the short store of the far boats, below kShortChannelCount; 32767 for none
    std::int16_t min, max;       // bounds of a published value, both included; no range when they are equal
    std::uint16_t staleSeconds;  // an older value is stale; 0 for never
    std::uint8_t prec;           // default decimals of the value's text; 255 for no fixed number
    UnitType type;
    std::uint8_t fromGps;
    std::uint8_t dampable;    // a damping period can be set
    std::uint8_t logDefault;  // logged unless set otherwise
    std::uint8_t sensor;
    std::u16string_view name;  // empty for the Time channel
    std::u16string_view longName;
};

// Indexed by ChannelId.
std::span<const ChannelInfo, kChannelCount> ChannelCatalogue();

}  // namespace twr
