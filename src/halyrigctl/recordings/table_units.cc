// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/table_units.h"

#include <cmath>

#include "base/wide_text.h"
#include "core/units.h"
#include "streams/signalk_paths.h"

namespace twr {

ColumnUnit::ColumnUnit(const CCore& core, ChannelId channel, TableUnits units) : core_(core), channel_(channel), units_(units) {
    const std::int16_t type = core.ChannelTypeOf(channel);
    if (units == TableUnits::kInternal) {
        name_ = ToUtf8(InternalUnit(type));
        return;
    }
    moment_ = type == kTypeDateTime;
    const SiUnit& si = SiUnitOf(type);
    if (units == TableUnits::kSi || type == kTypeDuration) {
        units_ = TableUnits::kSi;  // durations are days in the record, for which a table has no use
        if (!moment_) name_ = si.name;
        factor_ = si.factor, offset_ = si.offset;
    } else if (!moment_) {
        name_ = ToUtf8(UnitLabel(type, UnitSettingsOf(*core.View())));
    }
}

double ColumnUnit::Convert(double value, double variation) const {
    if (value == kNoValue || moment_ || units_ == TableUnits::kInternal) return value;
    const double told = units_ == TableUnits::kSi ? value * factor_ + offset_ : core_.ToDisplayUnits(channel_, value, variation);
    return std::isfinite(told) ? told : kNoValue;
}

}  // namespace twr
