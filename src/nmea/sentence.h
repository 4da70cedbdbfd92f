// SPDX-License-Identifier: MIT
// One line of a log of NMEA 0183, taken apart.
#pragma once
#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "base/bounded_lines.h"

namespace twr {

// The lines of a log: its sentences have 82 characters at most, and some devices end them by CR alone.
inline constexpr LineForm kLogLines{.longest = 160, .endsAtCr = true, .emptiesLonger = true};

struct NmeaSentence {
    static constexpr std::size_t kMostFields = 48;

    std::string_view talker;  // two characters
    std::string_view type;    // three characters
    std::array<std::string_view, kMostFields> fields;
    std::size_t count = 0;

    // Fields count from 1, as in every description of the sentences; one that isn't there is empty.
    std::string_view Field(std::size_t number) const {
        return number >= 1 && number <= std::min(count, kMostFields) ? fields[number - 1] : std::string_view();
    }

    // nullopt if the field is empty or not a plain decimal number.
    std::optional<double> Number(std::size_t number) const;
};

// A plain decimal number: a sign, digits and a point, nothing else.
std::optional<double> ParseDecimal(std::string_view text);

// Parses a line from "$" on, with blanks around it. nullopt for a line that is broken, proprietary or has a wrong checksum; a
// missing checksum is accepted. The views point into the line.
std::optional<NmeaSentence> ParseSentence(std::string_view line);

// Seconds since midnight from "hhmmss" with or without decimals.
std::optional<double> ParseTimeOfDay(std::string_view text);

// Degrees from "ddmm.mm" and its letter, N and S or E and W.
std::optional<double> ParseLatitude(std::string_view value, std::string_view letter);
std::optional<double> ParseLongitude(std::string_view value, std::string_view letter);

}  // namespace twr
