// SPDX-License-Identifier: MIT
// Moments as text of ISO 8601 in UTC: 2026-11-25T01:02:03.4Z.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace twr {

// A time in days as whole milliseconds, which a text tells.
std::int64_t ToMillisecond(double days);

// Whether a time has such a text: from 0.0 to the end of the year 9999.
inline bool HasIsoTime(double days) { return days >= 0.0 && days < 2958465.0; }

// Appends a moment that has a text, to the millisecond; zeros at its end are left out.
void AppendIsoTime(std::string& out, double days);
std::string IsoTime(double days);

// The same text as days; any number of decimals. nullopt for anything else.
std::optional<double> ParseIsoTime(std::string_view text);

}  // namespace twr
