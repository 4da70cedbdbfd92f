// A number printed by a channel's format. What makes the format, and all else of a channel's text, are operations of CCore.
#pragma once
#include <string>
#include <string_view>

namespace twr {

// Prints one double by a printf format with any text around its conversion. Characters of the format are at most U+00FF.
std::u16string FormatDouble(std::u16string_view format, double value);

}  // namespace twr
