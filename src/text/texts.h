// SPDX-License-Identifier: MIT
// Texts of plain values, without a record: positions, durations and labels. The texts of channels and moments are operations of
// CCore.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace twr {

// "45 12.3420n" from degrees, north positive. Empty for kNoValue and beyond the poles.
std::u16string LatitudeText(double degrees);

// "009 05.5000w" from degrees, east positive. One excess turn is removed; empty for kNoValue and if the result is still beyond 180.
std::u16string LongitudeText(double degrees);

struct TimeParts {
    std::int64_t days, hours, minutes, seconds;
};

// The parts of a duration that isn't negative, rounded to whole seconds.
TimeParts TimeValueParts(double days);

// "1d 12h", "12m 06s", "8.6s": the two greatest units, and tenths of a second below ten seconds. "- -" for kNoValue.
std::u16string DurationText(double days);

// "1.12", "12.06", "0.09": the same two units, unnamed, for a field of few characters. Empty for kNoValue.
std::u16string CompactDurationText(double days);

// At most 8 upper-case characters of a channel's name, without degree sign and slash, and with "PC" for "%" where there is room.
std::u16string RemoteLabelOf(std::u16string_view name);

}  // namespace twr
