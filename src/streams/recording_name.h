// SPDX-License-Identifier: MIT
// The names of the files of a recording.
#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace twr {

// The fields of date and time of day that a name may hold: %Y %m %d %H %M %S, and %% for the sign itself. Gives the first other
// one, with its letter.
std::optional<std::u16string> UnknownFieldIn(std::u16string_view name);

// Whether the name has such a field, so that it changes with time.
bool ChangesWithTime(std::u16string_view name);

// The name at a moment, in days of the zone that is shown.
std::u16string NameAt(std::u16string_view name, double shown);

// The name of the second, third... file where the first is taken: race-2.jsonl.gz. The first keeps its name.
std::u16string NumberedName(std::u16string_view name, int number);

}  // namespace twr
