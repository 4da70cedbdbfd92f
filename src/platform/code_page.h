// Narrow text as the older programs of the machine take it.
#pragma once
#include <string>
#include <string_view>

namespace twr {

// The text in the ANSI code page of the user's Windows; on Linux, which has none, in page 1252. What the page doesn't hold becomes
// the letter that Windows takes for the nearest, or "?".
std::string ToCodePage(std::u16string_view text);

}  // namespace twr
