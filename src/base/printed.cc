#include "base/printed.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>

namespace twr {

std::string Printed(const char* format, ...) {
    std::va_list arguments, again;
    va_start(arguments, format);
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length));
        std::vsnprintf(text.data(), text.size() + 1, format, again);  // the string has room for the zero at its end
    }
    va_end(again);
    return text;
}

}  // namespace twr
