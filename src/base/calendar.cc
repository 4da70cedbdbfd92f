// SPDX-License-Identifier: MIT
#include "base/calendar.h"

#include <cmath>

#include "base/numbers.h"
#include "base/wide_text.h"

namespace twr {
namespace {

constexpr double kFirstDay = -657434.0;  // 0100-01-01
constexpr double kLastDay = 2958465.0;   // 9999-12-31
constexpr int kSecondsPerDay = 86400;
constexpr std::size_t kLongestText = 255;

constexpr const char* kMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                                   "July",    "August",   "September", "October", "November", "December"};
constexpr const char* kDays[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};

std::string Field(const CalendarTime& time, char16_t letter) {
    const char* month = kMonths[time.month - 1];
    const char* weekday = kDays[time.dayOfWeek];
    switch (letter) {
        case u'a':
            return std::string(weekday, 3);
        case u'A':
            return weekday;
        case u'b':
            return std::string(month, 3);
        case u'B':
            return month;
        case u'd':
            return Printed("%02d", time.day);
        case u'H':
            return Printed("%02d", time.hour);
        case u'j':
            return Printed("%03d", time.dayOfYear);
        case u'm':
            return Printed("%02d", time.month);
        case u'M':
            return Printed("%02d", time.minute);
        case u'S':
            return Printed("%02d", time.second);
        case u'y':
            return Printed("%02d", time.year % 100);
        case u'Y':
            return Printed("%04d", time.year);
        case u'%':
            return "%";
        default:
            return {};
    }
}

}  // namespace

std::optional<CalendarTime> SplitDay(double day) {
    if (!(day > kFirstDay - 1.0 && day < kLastDay + 1.0)) return std::nullopt;
    const double whole = std::trunc(day);
    int number = static_cast<int>(whole);
    int second = static_cast<int>(std::floor(std::fabs(day - whole) * kSecondsPerDay + 0.5));
    if (second == kSecondsPerDay) {
        second = 0;
        if (++number > kLastDay) return std::nullopt;
    }
    const std::chrono::sys_days date = kDayZero + std::chrono::days(number);
    const std::chrono::year_month_day parts(date);
    CalendarTime time{};
    time.year = static_cast<int>(parts.year());
    time.month = static_cast<int>(static_cast<unsigned>(parts.month()));
    time.day = static_cast<int>(static_cast<unsigned>(parts.day()));
    time.hour = second / 3600;
    time.minute = second / 60 % 60;
    time.second = second % 60;
    time.dayOfWeek = static_cast<int>(std::chrono::weekday(date).c_encoding());
    time.dayOfYear = static_cast<int>((date - std::chrono::sys_days(parts.year() / 1 / 1)).count()) + 1;
    return time;
}

std::u16string DateTimeFormat(double day, std::u16string_view pattern) {
    const std::optional<CalendarTime> time = SplitDay(day);
    if (!time) return u"Invalid DateTime";
    std::u16string text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const std::string field = pattern[i] == u'%' && i + 1 < pattern.size() ? Field(*time, pattern[i + 1]) : std::string();
        if (field.empty()) {
            text += pattern[i];
        } else {
            text += FromBytes(field);
            ++i;
        }
    }
    return text.size() <= kLongestText ? text : std::u16string();
}

}  // namespace twr
