// SPDX-License-Identifier: MIT
#include "core/units.h"

#include <cstddef>
#include <iterator>
#include <span>

#include "base/angles.h"
#include "base/no_value.h"
#include "core/channel_catalogue.h"
#include "core/record_access.h"

namespace twr {
namespace {

// nullptr for a selector without a row.
const UnitRow* RowOf(std::span<const UnitRow> table, std::int32_t selector) {
    return selector >= 0 && static_cast<std::size_t>(selector) < table.size() ? &table[static_cast<std::size_t>(selector)]
                                                                              : nullptr;
}

double Converted(double value, std::span<const UnitRow> table, std::int32_t selector) {
    const UnitRow* row = RowOf(table, selector);
    return row ? value * row->factor : value;
}

bool IsLength(double boatLength) { return boatLength != kNoValue && boatLength != 0.0; }

std::u16string_view LabelOf(std::span<const UnitRow> table, std::int32_t selector) {
    const UnitRow* row = RowOf(table, selector);
    return (row ? row : table.data())->shortLabel;
}

// The unit of a type: in the record, as programs read it, and on a display, where it is empty if the text contains it or the user
// chooses it. Both are empty for a type without one.
struct UnitWords {
    std::int16_t type;
    std::u16string_view internal, shown;
};

constexpr UnitWords kUnitWords[] = {
    {kTypeNumber, u"", u""},
    {kTypeDateTime, u"days", u""},
    {kTypeDuration, u"days", u""},
    {kTypeDepth, u"m", u""},
    {kTypeDistance, u"nm", u""},
    {kTypeShortDistance, u"nm", u""},
    {kTypeBearing, u"deg", u""},
    {kTypeAngle, u"deg", u"°"},
    {kTypeLatitude, u"deg", u""},
    {kTypeLongitude, u"deg", u""},
    {kTypePercent, u"%", u"%"},
    {kTypeSail, u"", u""},
    {kTypeBoatSpeed, u"kn", u""},
    {kTypeWindAngle, u"deg", u"°"},
    {kTypeTemperature, u"C", u""},
    {kTypeBarometer, u"", u""},
    {kTypeVolts, u"", u""},
    {kTypeMetres, u"m", u"m"},
    {kTypeLength, u"", u""},
    {kTypeTurnRate, u"deg/s", u"°/s"},
    {20, u"", u""},
    {kTypeWindSpeed, u"kn", u""},
    {kTypeCurrent, u"", u""},
    {kTypePressure, u"Pa", u""},
};

constexpr bool AreInOrder() {
    for (std::size_t i = 0; i < std::size(kUnitWords); ++i) {
        if (kUnitWords[i].type != static_cast<std::int16_t>(i)) return false;
    }
    return true;
}
static_assert(AreInOrder(), "by the number of the type");

// Another program's number of a type counts as a plain number.
const UnitWords& WordsOf(std::int16_t type) {
    return kUnitWords[type >= 0 && static_cast<std::size_t>(type) < std::size(kUnitWords) ? static_cast<std::size_t>(type) : 0];
}

std::u16string_view DistanceLabel(std::int32_t selector, double boatLength) {
    return LabelOf(kDistanceUnits, selector == kBoatLengthUnit && !IsLength(boatLength) ? 0 : selector);
}

}  // namespace

double DepthInUserUnit(double metres, std::int32_t selector) {
    return RowOf(kDepthUnits, selector) ? Converted(metres, kDepthUnits, selector) : kNoValue;
}

double DistanceInUserUnit(double nauticalMiles, std::int32_t selector, double boatLength) {
    if (selector != kBoatLengthUnit) return Converted(nauticalMiles, kDistanceUnits, selector);
    return IsLength(boatLength) ? nauticalMiles * (kMetresPerNauticalMile / boatLength) : nauticalMiles;
}

double SpeedInUserUnit(double knots, std::int32_t selector) { return Converted(knots, kSpeedUnits, selector); }

double PressureInUserUnit(double pascals, std::int32_t selector) { return Converted(pascals, kPressureUnits, selector); }

double TemperatureInUserUnit(double celsius, bool fahrenheit) { return fahrenheit ? celsius * 9 / 5 + 32 : celsius; }

double InUserUnit(const CoreRecord& record, std::int16_t type, double value, double variation) {
    const auto selector = [&](std::size_t index) { return Load(record.sysInt[index]); };
    const auto flag = [&](std::size_t index) { return Load(record.sysFlag[index]) != 0; };
    switch (type) {
        case kTypeDepth:
            return DepthInUserUnit(value, selector(kIntDepthUnit));
        case kTypeDistance:
            return DistanceInUserUnit(value, selector(kIntDistanceUnit), Load(record.sysValue[kValueBoatLength]));
        case kTypeShortDistance:
            return DistanceInUserUnit(value, selector(kIntShortDistanceUnit), Load(record.sysValue[kValueBoatLength]));
        case kTypeBearing:
            if (flag(kFlagMagnetic)) return TurnedBearing(value);
            if (variation == kNoValue) variation = OwnVariation(record);
            return variation == kNoValue ? kNoValue : TurnedBearing(value + variation);
        case kTypeAngle:
        case kTypeWindAngle:
            return TurnedAngle(value);
        case kTypeBoatSpeed:
        case kTypeWindSpeed:
            return SpeedInUserUnit(value, selector(kIntSpeedUnit));
        case kTypeTemperature:
            return TemperatureInUserUnit(value, flag(kFlagFahrenheit));
        case kTypePressure:
            return PressureInUserUnit(value, selector(kIntPressureUnit));
        default:
            return value;
    }
}

UnitSettings UnitSettingsOf(const CoreRecord& record) {
    UnitSettings settings{};
    settings.depth = Load(record.sysInt[kIntDepthUnit]);
    settings.speed = Load(record.sysInt[kIntSpeedUnit]);
    settings.distance = Load(record.sysInt[kIntDistanceUnit]);
    settings.shortDistance = Load(record.sysInt[kIntShortDistanceUnit]);
    settings.pressure = Load(record.sysInt[kIntPressureUnit]);
    settings.boatLength = Load(record.sysValue[kValueBoatLength]);
    settings.magnetic = Load(record.sysFlag[kFlagMagnetic]) != 0;
    settings.fahrenheit = Load(record.sysFlag[kFlagFahrenheit]) != 0;
    return settings;
}

std::u16string_view InternalUnit(std::int16_t type) { return WordsOf(type).internal; }

std::u16string_view UnitLabel(std::int16_t type, const UnitSettings& settings) {
    switch (type) {
        case kTypeDepth: {
            const UnitRow* row = RowOf(kDepthUnits, settings.depth);
            return row ? row->shortLabel : std::u16string_view();
        }
        case kTypeDistance:
            return DistanceLabel(settings.distance, settings.boatLength);
        case kTypeShortDistance:
            return DistanceLabel(settings.shortDistance, settings.boatLength);
        case kTypeBearing:
            return settings.magnetic ? u"°M" : u"°T";
        case kTypeBoatSpeed:
        case kTypeWindSpeed:
            return LabelOf(kSpeedUnits, settings.speed);
        case kTypeTemperature:
            return settings.fahrenheit ? u"°F" : u"°C";
        case kTypePressure:
            return LabelOf(kPressureUnits, settings.pressure);
        default:
            return WordsOf(type).shown;
    }
}

}  // namespace twr
