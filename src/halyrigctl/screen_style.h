// The escape sequences that the screen uses.
#pragma once

namespace twr {

inline constexpr const char* kClearScreen = "\x1b[2J";
inline constexpr const char* kDim = "\x1b[2m";
inline constexpr const char* kBold = "\x1b[1m";
inline constexpr const char* kPlain = "\x1b[0m";

}  // namespace twr
