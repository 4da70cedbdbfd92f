// Texts printed by a format.
#pragma once
#include <string>

namespace twr {

// As std::printf prints, at whatever length it takes; empty when the format can't be printed.
[[gnu::format(printf, 1, 2)]] std::string Printed(const char* format, ...);

}  // namespace twr
