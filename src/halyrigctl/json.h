// JSON in the order in which it is written, for the .cc files of the commands that give it.
#pragma once
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "base/wide_text.h"

namespace twr {

using Json = nlohmann::ordered_json;

// null in place of the sentinels of the suite.
template <class Value>
Json Told(bool told, const Value& value) {
    return told ? Json(value) : Json();
}

inline Json TextOrNull(std::u16string_view text) { return Told(!text.empty(), ToUtf8(text)); }

// On one line, all beyond ASCII escaped, so that nothing in it can reach a terminal as a control character.
inline std::string JsonLine(const Json& json) { return json.dump(-1, ' ', true); }

}  // namespace twr
