#include "core/units.h"

#include <cstddef>
#include <span>

#include "base/no_value.h"
#include "core/channel_catalogue.h"
#include "core/shared_field.h"

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
        case kTypeAngle:
        case kTypeWindAngle:
            return u"°";
        case kTypePercent:
            return u"%";
        case kTypeBoatSpeed:
        case kTypeWindSpeed:
            return LabelOf(kSpeedUnits, settings.speed);
        case kTypeTemperature:
            return settings.fahrenheit ? u"°F" : u"°C";
        case kTypeMetres:
            return u"m";
        case kTypeTurnRate:
            return u"°/s";
        case kTypePressure:
            return LabelOf(kPressureUnits, settings.pressure);
        default:
            return {};
    }
}

}  // namespace twr
