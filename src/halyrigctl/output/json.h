// SPDX-License-Identifier: MIT
// JSON in the order in which it is written, for the .cc files of the commands that give it.
#pragma once
#include <cmath>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "base/wide_text.h"

namespace twr {

using Json = nlohmann::ordered_json;

// null in place of the sentinels of the suite.
template <class Value>
Json Told(bool told, const Value& value) {
    return told ? Json(value) : Json();
}

inline Json TextOrNull(std::u16string_view text) { return Told(!text.empty(), ToUtf8(text)); }

// As precise as is useful for an age in seconds.
inline double ToMilliseconds(double seconds) { return std::round(seconds * 1000) / 1000; }

// On one line, all beyond ASCII escaped, so that nothing in it can reach a terminal as a control character.
inline std::string JsonLine(const Json& json) { return json.dump(-1, ' ', true); }

// An array with each of its rows on a line.
inline std::string JsonTable(const std::vector<Json>& rows) {
    std::string table;
    for (const Json& row : rows) table += (table.empty() ? "[\n  " : ",\n  ") + JsonLine(row);
    return table.empty() ? "[]\n" : table + "\n]\n";
}

}  // namespace twr
