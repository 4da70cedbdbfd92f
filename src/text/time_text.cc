// SPDX-License-Identifier: MIT
#include <cinttypes>
#include <cmath>

#include "base/calendar.h"
#include "base/no_value.h"
#include "base/numbers.h"
#include "base/wide_text.h"
#include "core/core.h"
#include "core/days.h"
#include "core/record_access.h"
#include "text/texts.h"

namespace twr {
namespace {

constexpr double kHalfSecond = 5.787037037037037e-06;
constexpr double kTenSeconds = 0.00011574074074074073;

// The `fine` units left after the whole `coarse` ones. Unsigned in between: a duration beyond all bounds wraps around.
std::int64_t Rest(std::int64_t fine, std::int64_t coarse, std::int64_t ratio) {
    const std::uint64_t rest =
        static_cast<std::uint64_t>(fine) - static_cast<std::uint64_t>(coarse) * static_cast<std::uint64_t>(ratio);
    return static_cast<std::int64_t>(rest) % ratio;
}

std::string Unsigned(double days) {
    if (days < kTenSeconds) return Printed("%.1lfs", days * 24 * 60 * 60);
    const TimeParts parts = TimeValueParts(days);
    const struct {
        std::int64_t count;
        int width;
        char letter;
    } units[] = {{parts.days, 1, 'd'}, {parts.hours, 2, 'h'}, {parts.minutes, 2, 'm'}, {parts.seconds, 2, 's'}};
    std::string text;
    int written = 0;
    for (const auto& unit : units) {
        if (unit.count <= 0 && unit.letter != 's' && written == 0) continue;
        text += Printed("%s%0*" PRId64 "%c", written == 0 ? "" : " ", unit.width, unit.count, unit.letter);
        if (++written == 2) break;
    }
    return text;
}

std::string UnsignedCompact(double days) {
    const TimeParts parts = TimeValueParts(days);
    const auto pair = [](std::int64_t units, std::int64_t rest) { return Printed("%" PRId64 ".%02" PRId64, units, rest); };
    if (parts.days > 0) return pair(parts.days, parts.hours);
    if (parts.hours > 0) return pair(parts.hours, parts.minutes);
    if (parts.minutes > 0) return pair(parts.minutes, parts.seconds);
    return pair(0, parts.seconds);
}

std::u16string Signed(double days, std::string (*text)(double)) { return FromBytes(days < 0.0 ? "-" + text(-days) : text(days)); }

}  // namespace

TimeParts TimeValueParts(double days) {
    const double rounded = days + kHalfSecond;
    const auto wholeDays = WholeNumber<std::int64_t>(rounded);
    const auto wholeHours = WholeNumber<std::int64_t>(rounded * 24.0);
    const auto wholeMinutes = WholeNumber<std::int64_t>(rounded * 1440.0);
    const auto wholeSeconds = WholeNumber<std::int64_t>(rounded * 86400.0);
    return {wholeDays, Rest(wholeHours, wholeDays, 24), Rest(wholeMinutes, wholeHours, 60), Rest(wholeSeconds, wholeMinutes, 60)};
}

std::u16string DurationText(double days) { return days == kNoValue ? u"- -" : Signed(days, Unsigned); }

std::u16string CompactDurationText(double days) { return days == kNoValue ? u"" : Signed(days, UnsignedCompact); }

std::u16string CCore::TimeText(double day) const {
    const bool local = view_ && Load(view_->sysFlag[kFlagLocalTime]) != 0;
    const std::optional<double> shown = local ? LocalTime(services_.zone, day) : day;
    return shown ? DateTimeFormat(*shown, u"%d-%b-%Y %H:%M:%S") : std::u16string();
}

}  // namespace twr
