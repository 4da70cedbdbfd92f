// SPDX-License-Identifier: MIT
// Day numbers as calendar text.
#pragma once
#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace twr {

// The date of day number 0.
inline constexpr std::chrono::sys_days kDayZero = std::chrono::year(1899) / 12 / 30;

struct CalendarTime {
    int year, month, day;  // month and day count from 1
    int hour, minute, second;
    int dayOfWeek;  // 0 is Sunday
    int dayOfYear;  // counts from 1
};

// Splits a day number at the nearest second. nullopt outside the years 100 to 9999. The fraction is the time of day below zero too:
// -1.25 is 06:00 on the day before day 0.
std::optional<CalendarTime> SplitDay(double day);

// Prints a day number by the letters of strftime in English, whatever language the machine is set to: %a %A %b %B %d %H %j %m %M %S
// %y %Y and %%. Any other letter is left unchanged. "Invalid DateTime" for a day number out of range; empty when the text doesn't
// fit into 255 characters.
std::u16string DateTimeFormat(double day, std::u16string_view pattern);

}  // namespace twr
