// SPDX-License-Identifier: MIT
#include "nmea/sentence.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/wide_text.h"

namespace twr {
namespace {

constexpr std::size_t kAddressLength = 5;
constexpr std::size_t kLongestNumber = 20;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsCapital(char c) { return c >= 'A' && c <= 'Z'; }

// -1 if it is not a hexadecimal digit.
int HexValue(char c) {
    if (IsDigit(c)) return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// Removes "*hh" from the end of what follows the "$"; false when it is malformed or wrong.
bool TakeChecksum(std::string_view& body) {
    const std::size_t star = body.find('*');
    if (star == std::string_view::npos) return true;
    if (body.size() != star + 3) return false;
    const int high = HexValue(body[star + 1]);
    const int low = HexValue(body[star + 2]);
    int sum = 0;
    for (const char c : body.substr(0, star)) sum ^= static_cast<unsigned char>(c);
    body = body.substr(0, star);
    return high >= 0 && low >= 0 && sum == high * 16 + low;
}

std::optional<double> ParseDegrees(std::string_view value, double most) {
    const auto number = ParseDecimal(value);
    if (!number || *number < 0.0) return std::nullopt;
    const double degrees = std::floor(*number / 100.0);
    const double minutes = *number - degrees * 100.0;
    if (minutes >= 60.0) return std::nullopt;
    const double result = degrees + minutes / 60.0;
    if (result > most) return std::nullopt;
    return result;
}

std::optional<double> Signed(std::optional<double> value, std::string_view letter, char positive, char negative) {
    if (!value || letter.size() != 1) return std::nullopt;
    if (letter[0] == positive) return value;
    if (letter[0] == negative) return -*value;
    return std::nullopt;
}

}  // namespace

std::optional<double> ParseDecimal(std::string_view text) {
    if (text.empty() || text.size() > kLongestNumber) return std::nullopt;
    const bool hasSign = text.front() == '+' || text.front() == '-';
    if (!std::ranges::all_of(text.substr(hasSign ? 1 : 0), [](char c) { return IsDigit(c) || c == '.'; })) return std::nullopt;
    if (text.front() == '+') text.remove_prefix(1);  // which from_chars doesn't accept
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<double> NmeaSentence::Number(std::size_t number) const { return ParseDecimal(Field(number)); }

std::optional<NmeaSentence> ParseSentence(std::string_view line) {
    line = Trimmed(line);
    if (line.empty() || line.front() != '$') return std::nullopt;
    std::string_view body = line.substr(1);
    if (!std::ranges::all_of(body, [](char c) { return c >= ' ' && c <= '~' && c != '$' && c != '!'; })) return std::nullopt;
    if (!TakeChecksum(body)) return std::nullopt;
    if (body.size() <= kAddressLength || body[kAddressLength] != ',') return std::nullopt;
    const std::string_view address = body.substr(0, kAddressLength);
    if (!std::ranges::all_of(address, [](char c) { return IsCapital(c) || IsDigit(c); }) || address.front() == 'P')
        return std::nullopt;

    NmeaSentence sentence;
    sentence.talker = address.substr(0, 2);
    sentence.type = address.substr(2);
    std::string_view rest = body.substr(kAddressLength + 1);
    while (sentence.count < NmeaSentence::kMostFields) {
        const std::size_t comma = rest.find(',');
        sentence.fields[sentence.count++] = Trimmed(rest.substr(0, comma));
        if (comma == std::string_view::npos) return sentence;
        rest.remove_prefix(comma + 1);
    }
    return std::nullopt;
}

std::optional<double> ParseTimeOfDay(std::string_view text) {
    if (text.size() < 6 || (text.size() > 6 && text[6] != '.')) return std::nullopt;
    if (!std::all_of(text.begin(), text.begin() + 6, IsDigit)) return std::nullopt;
    const auto pair = [&](std::size_t at) { return (text[at] - '0') * 10 + (text[at + 1] - '0'); };
    const auto seconds = ParseDecimal(text.substr(4));
    if (!seconds || pair(0) > 23 || pair(2) > 59 || *seconds >= 61.0) return std::nullopt;  // a leap second is valid
    return pair(0) * 3600.0 + pair(2) * 60.0 + *seconds;
}

std::optional<double> ParseLatitude(std::string_view value, std::string_view letter) {
    return Signed(ParseDegrees(value, 90.0), letter, 'N', 'S');
}

std::optional<double> ParseLongitude(std::string_view value, std::string_view letter) {
    return Signed(ParseDegrees(value, 180.0), letter, 'E', 'W');
}

}  // namespace twr
