// SPDX-License-Identifier: MIT
// Narrow text as the older programs of the machine take it.
#pragma once
#include <string>
#include <string_view>

namespace twr {

// The text in the ANSI code page of the user's Windows; on Linux, which has none, in page 1252. A character that the page lacks
// becomes the one that Windows substitutes for it, or "?".
std::string ToCodePage(std::u16string_view text);

}  // namespace twr
