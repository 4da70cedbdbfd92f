// Durations in days as text. The text of a moment, CCore::TimeText, is defined beside them.
#pragma once
#include <cstdint>
#include <string>

namespace twr {

struct TimeParts {
    std::int64_t days, hours, minutes, seconds;
};

// The parts of a duration that isn't negative, rounded to whole seconds.
TimeParts TimeValueParts(double days);

// "1d 12h", "12m 06s", "8.6s": the two greatest units, and tenths of a second below ten seconds. "- -" for kNoValue.
std::u16string DurationText(double days);

// "1.12", "12.06", "0.09": the same two units, unnamed, for a field of few characters. Empty for kNoValue.
std::u16string CompactDurationText(double days);

}  // namespace twr
