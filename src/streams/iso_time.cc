// SPDX-License-Identifier: MIT
#include "streams/iso_time.h"

#include <algorithm>
#include <cmath>

#include "base/calendar.h"

namespace twr {
namespace {

constexpr std::int64_t kMsPerDay = 86400000;

// Digits of a fixed number at the front of what is left of a text, which they are taken from.
class Digits {
public:
    explicit Digits(std::string_view text) : rest_(text) {}

    // -1 if they are not there.
    int Take(std::size_t count) {
        int number = 0;
        if (rest_.size() < count) return -1;
        for (const char c : rest_.substr(0, count)) {
            if (c < '0' || c > '9') return -1;
            number = number * 10 + (c - '0');
        }
        rest_.remove_prefix(count);
        return number;
    }
    bool Skip(char c) {
        if (!rest_.starts_with(c)) return false;
        rest_.remove_prefix(1);
        return true;
    }
    // What follows a point, below 1; nullopt if nothing does.
    std::optional<double> TakeFraction() {
        const std::size_t count = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
        if (count == 0) return std::nullopt;
        double fraction = 0.0;
        for (std::size_t i = count; i-- > 0;) fraction = (fraction + (rest_[i] - '0')) / 10;
        rest_.remove_prefix(count);
        return fraction;
    }
    bool AtEnd() const { return rest_.empty(); }

private:
    std::string_view rest_;
};

void WriteDigits(char* to, std::int64_t number, int count) {
    for (; count-- > 0; number /= 10) to[count] = static_cast<char>('0' + number % 10);
}

}  // namespace

std::int64_t ToMillisecond(double days) { return std::llround(days * static_cast<double>(kMsPerDay)); }

void AppendIsoTime(std::string& out, double days) {
    const std::int64_t ms = ToMillisecond(days);
    const std::chrono::year_month_day date(kDayZero + std::chrono::days(ms / kMsPerDay));
    const std::int64_t ofDay = ms % kMsPerDay, fraction = ofDay % 1000;
    char text[] = "0000-00-00T00:00:00.000";
    WriteDigits(text, static_cast<int>(date.year()), 4);
    WriteDigits(text + 5, static_cast<unsigned>(date.month()), 2);
    WriteDigits(text + 8, static_cast<unsigned>(date.day()), 2);
    WriteDigits(text + 11, ofDay / 3600000, 2);
    WriteDigits(text + 14, ofDay / 60000 % 60, 2);
    WriteDigits(text + 17, ofDay / 1000 % 60, 2);
    WriteDigits(text + 20, fraction, 3);
    std::size_t length = sizeof text - 1;
    while (text[length - 1] == '0' && length > 20) --length;
    if (fraction == 0) length = 19;
    out.append(text, length) += 'Z';
}

std::string IsoTime(double days) {
    std::string text;
    AppendIsoTime(text, days);
    return text;
}

std::optional<double> ParseIsoTime(std::string_view text) {
    Digits digits(text);
    const int year = digits.Take(4);
    if (year < 0 || !digits.Skip('-')) return std::nullopt;
    const int month = digits.Take(2);
    if (month < 0 || !digits.Skip('-')) return std::nullopt;
    const int day = digits.Take(2);
    if (day < 0 || !digits.Skip('T')) return std::nullopt;
    const int hour = digits.Take(2);
    if (hour < 0 || hour > 23 || !digits.Skip(':')) return std::nullopt;
    const int minute = digits.Take(2);
    if (minute < 0 || minute > 59 || !digits.Skip(':')) return std::nullopt;
    const int second = digits.Take(2);
    if (second < 0 || second > 59) return std::nullopt;
    const std::optional<double> fraction = digits.Skip('.') ? digits.TakeFraction() : 0.0;
    if (!fraction || !digits.Skip('Z') || !digits.AtEnd()) return std::nullopt;
    const auto date = std::chrono::year(year) / month / day;
    if (!date.ok()) return std::nullopt;
    const auto days = (std::chrono::sys_days(date) - kDayZero).count();
    return static_cast<double>(days) + (hour * 3600 + minute * 60 + second + *fraction) / 86400;
}

}  // namespace twr
