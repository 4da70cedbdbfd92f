// Texts formatted as by printf.
#pragma once
#include <string>

namespace twr {

// As std::printf prints, of any length; empty if the format can't be printed.
[[gnu::format(printf, 1, 2)]] std::string Printed(const char* format, ...);

}  // namespace twr
