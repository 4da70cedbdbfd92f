// SPDX-License-Identifier: MIT
#include "streams/recording_name.h"

#include <cmath>

#include "base/calendar.h"
#include "base/wide_text.h"
#include "core/days.h"
#include "streams/iso_time.h"

namespace twr {
namespace {

constexpr std::u16string_view kFields = u"YmdHMS";
constexpr std::u16string_view kPacked = u".gz";

}  // namespace

std::optional<std::u16string> UnknownFieldIn(std::u16string_view name) {
    for (std::size_t at = name.find(u'%'); at != name.npos; at = name.find(u'%', at + 2)) {
        const std::u16string_view field = name.substr(at, 2);
        if (field != u"%%" && (field.size() < 2 || kFields.find(field[1]) == kFields.npos)) return std::u16string(field);
    }
    return std::nullopt;
}

bool ChangesWithTime(std::u16string_view name) {
    for (std::size_t at = name.find(u'%'); at != name.npos; at = name.find(u'%', at + 2)) {
        if (name.substr(at, 2) != u"%%") return true;
    }
    return false;
}

// Field by field, since a path may be longer than what is formatted at once. The second that has begun, as the lines of the file
// tell it: the nearest one would begin the file of a day half a second before midnight.
std::u16string NameAt(std::u16string_view name, double shown) {
    const double second = std::floor(static_cast<double>(ToMillisecond(shown)) / 1000) / kSecondsPerDay;
    std::u16string text;
    while (!name.empty()) {
        const std::size_t plain = std::min(name.find(u'%'), name.size());
        text += name.substr(0, plain);
        name.remove_prefix(plain);
        if (name.empty()) break;
        text += DateTimeFormat(second, name.substr(0, 2));
        name.remove_prefix(std::min<std::size_t>(2, name.size()));
    }
    return text;
}

std::u16string NumberedName(std::u16string_view name, int number) {
    if (number == 1) return std::u16string(name);
    const std::size_t file = name.find_last_of(u"/\\") + 1;  // 0 without a folder
    std::size_t dot = name.ends_with(kPacked) ? name.size() - kPacked.size() : name.size();
    const std::size_t extension = name.substr(0, dot).rfind(u'.');
    if (extension != name.npos && extension > file) dot = extension;
    return std::u16string(name.substr(0, dot)) + u"-" + FromBytes(std::to_string(number)) + std::u16string(name.substr(dot));
}

}  // namespace twr
