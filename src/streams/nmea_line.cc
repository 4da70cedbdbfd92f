#include "streams/nmea_line.h"

#include <charconv>
#include <chrono>
#include <cmath>

#include "base/numbers.h"

namespace twr {
namespace {

constexpr std::chrono::sys_days kDayZero = std::chrono::year(1899) / 12 / 30;
constexpr std::int64_t kPerDegree = 6000000;  // hundred-thousandths of a minute
constexpr std::int64_t kHundredthsPerDay = 8640000;

// Hundredths of a second, so that day and time are rounded as one.
std::int64_t Hundredths(double days) { return std::llround(days * static_cast<double>(kHundredthsPerDay)); }

std::chrono::year_month_day DateOf(double days) { return kDayZero + std::chrono::days(Hundredths(days) / kHundredthsPerDay); }

}  // namespace

NmeaLine::NmeaLine(std::string& out, const char* formatter) : out_(out), start_(out.size()) { (out_ += "$II") += formatter; }

void NmeaLine::Number(std::optional<double> value, int decimals) {
    out_ += ',';
    if (!value) return;
    char digits[32];
    out_.append(digits, std::to_chars(digits, digits + sizeof digits, *value, std::chars_format::fixed, decimals).ptr);
}

void NmeaLine::Text(const char* text) { (out_ += ',') += text; }

void NmeaLine::WithUnit(std::optional<double> value, int decimals, const char* unit) {
    Number(value, decimals);
    Text(value ? unit : "");
}

void NmeaLine::WithSide(std::optional<double> value, int decimals, const char* positive, const char* negative) {
    Number(value ? std::optional(std::fabs(*value)) : std::nullopt, decimals);
    Text(!value ? "" : *value < 0.0 ? negative : positive);
}

void NmeaLine::Coordinate(std::optional<double> degrees, int digits, const char* positive, const char* negative) {
    out_ += ',';
    if (degrees) {
        const std::int64_t size = std::llround(std::fabs(*degrees) * static_cast<double>(kPerDegree));
        out_ += Printed("%0*d%02d.%05d", digits, static_cast<int>(size / kPerDegree), static_cast<int>(size % kPerDegree / 100000),
                        static_cast<int>(size % 100000));
    }
    Text(!degrees ? "" : *degrees < 0.0 ? negative : positive);
}

void NmeaLine::TimeOfDay(double days) {
    const int ofDay = static_cast<int>(Hundredths(days) % kHundredthsPerDay);
    out_ += Printed(",%02d%02d%02d.%02d", ofDay / 360000, ofDay / 6000 % 60, ofDay / 100 % 60, ofDay % 100);
}

void NmeaLine::Date(double days) {
    const std::chrono::year_month_day date = DateOf(days);
    out_ += Printed(",%02u%02u%02d", static_cast<unsigned>(date.day()), static_cast<unsigned>(date.month()),
                    static_cast<int>(date.year()) % 100);
}

void NmeaLine::FullDate(double days) {
    const std::chrono::year_month_day date = DateOf(days);
    out_ += Printed(",%02u,%02u,%04d", static_cast<unsigned>(date.day()), static_cast<unsigned>(date.month()),
                    static_cast<int>(date.year()));
}

void NmeaLine::End(bool saysSomething) {
    if (!saysSomething) return out_.resize(start_);
    unsigned char sum = 0;
    for (std::size_t i = start_ + 1; i < out_.size(); ++i) sum ^= static_cast<unsigned char>(out_[i]);
    out_ += Printed("*%02X\r\n", sum);
}

}  // namespace twr
