// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/board_time.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "base/numbers.h"
#include "streams/iso_time.h"

namespace twr {
namespace {

constexpr double kMinutesPerDay = 1440.0;

// Of the millisecond that is told: a moment a microsecond before the end of daylight time is its end.
std::int64_t TicksAt(double utc) { return (ToMillisecond(utc) - ToMillisecond(kDaysTo1970)) * 10'000; }

// Takes a zone from the end of a text: its minutes before UTC. False if there is something else of that form.
bool TakeZone(std::string_view& text, std::optional<int>& ahead) {
    if (text.ends_with('Z')) {
        ahead = 0;
        text.remove_suffix(1);
        return true;
    }
    constexpr std::size_t kLength = 6;  // +02:00
    if (text.size() < kLength) return true;
    const std::string_view zone = text.substr(text.size() - kLength);
    if ((zone[0] != '+' && zone[0] != '-') || zone[3] != ':') return true;
    const auto time = ParseIsoTime("1899-12-30T" + std::string(zone.substr(1)) + ":00Z");
    if (!time) return false;
    ahead = static_cast<int>(std::lround(*time * kMinutesPerDay)) * (zone[0] == '-' ? -1 : 1);
    text.remove_suffix(kLength);
    return true;
}

}  // namespace

BoardZone::BoardZone(const CCore& core, const Zone& zone)
    : zone_(zone), utc_(!core.View() || Load(core.View()->sysFlag[kFlagLocalTime]) == 0) {}

int BoardZone::MinutesAhead(double utc) const {
    if (utc_ || !IsDated(utc)) return 0;
    return -zone_.BiasAt(TicksAt(utc)).value_or(0);
}

double BoardZone::Utc(double shown, bool later) const {
    const int before = MinutesAhead(shown - 1.0), after = MinutesAhead(shown + 1.0);
    const int most = std::max(before, after), least = std::min(before, after);
    for (const int ahead : {later ? least : most, later ? most : least}) {
        const double utc = shown - ahead / kMinutesPerDay;
        if (MinutesAhead(utc) == ahead) return utc;
    }
    return shown - before / kMinutesPerDay;
}

void BoardZone::Append(std::string& out, double utc) const {
    const int ahead = MinutesAhead(utc);
    AppendUtc(out, utc + ahead / kMinutesPerDay);
    if (!IsDated(utc)) return;
    out.back() = ahead < 0 ? '-' : '+';
    out += Printed("%02d:%02d", std::abs(ahead) / 60, std::abs(ahead) % 60);
}

void AppendUtc(std::string& out, double utc) {
    const std::size_t start = out.size();
    AppendIsoTime(out, utc);
    if (!BoardZone::IsDated(utc)) out.erase(start, out.find('T', start) + 1 - start);
}

double TypedTime::MomentFrom(double start, const BoardZone& board) const {
    if (fromStart) return start + days;
    if (!ofDay) return ahead ? days - *ahead / kMinutesPerDay : board.Utc(days);
    const double shownAhead = ahead.value_or(board.MinutesAhead(start)) / kMinutesPerDay;
    const double shown = std::floor(start + shownAhead) + days;
    const auto utc = [&](double then, bool later) { return ahead ? then - shownAhead : board.Utc(then, later); };
    // What starts within the hour that comes twice has the second of it.
    for (const bool later : {false, true}) {
        if (ToMillisecond(utc(shown, later)) >= ToMillisecond(start)) return utc(shown, later);
    }
    return utc(shown + 1, false);
}

std::optional<TypedTime> ParseTypedTime(std::string_view text) {
    if (text.starts_with('+')) {
        const auto seconds = ParseDuration(text.substr(1));
        return seconds ? std::optional(TypedTime{.days = *seconds / kSecondsPerDay, .fromStart = true}) : std::nullopt;
    }
    TypedTime typed;
    constexpr std::size_t kDate = 10;
    std::string date = "1899-12-30";
    if (text.size() >= kDate && text[4] == '-') {
        date = text.substr(0, kDate);
        text.remove_prefix(kDate);
        if (text.empty()) text = "T00:00";
        if (text[0] != 'T' && text[0] != ' ') return std::nullopt;
        text.remove_prefix(1);
    } else {
        typed.ofDay = true;
    }
    if (!TakeZone(text, typed.ahead)) return std::nullopt;
    const auto days = ParseIsoTime(date + "T" + std::string(text) + (text.size() == 5 ? ":00Z" : "Z"));
    if (!days) return std::nullopt;
    typed.days = *days;
    return typed;
}

std::string DurationWords(double seconds) {
    const auto whole = WholeNumber<std::int64_t>(seconds + 0.0005);
    return std::to_string(whole / 3600) + Printed(":%02d:%02d", static_cast<int>(whole / 60 % 60), static_cast<int>(whole % 60));
}

std::optional<double> ParseDuration(std::string_view text) {
    constexpr std::pair<std::string_view, double> kUnits[] = {{"ms", 0.001}, {"min", 60.0}, {"m", 60.0}, {"h", 3600.0}, {"s", 1.0}};
    double seconds = 0.0;
    if (text.empty()) return std::nullopt;
    while (!text.empty()) {
        double number = 0.0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
        if (error != std::errc() || !(number >= 0.0) || number > 1e9) return std::nullopt;
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        const auto* const unit = std::ranges::find_if(kUnits, [&](const auto& row) { return text.starts_with(row.first); });
        if (unit == std::end(kUnits) && !text.empty()) return std::nullopt;
        seconds += number * (text.empty() ? 1.0 : unit->second);
        if (!text.empty()) text.remove_prefix(unit->first.size());
    }
    return seconds;
}

}  // namespace twr
