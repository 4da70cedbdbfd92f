// SPDX-License-Identifier: MIT
#include "base/numbers.h"

#include <algorithm>
#include <cinttypes>
#include <cstdarg>
#include <cstddef>
#include <cstdio>

#include "base/wide_text.h"

namespace twr {
namespace {

// 64 bits are scanned whatever the width asked for: what the narrower formats do with a number too long differs between libraries.
std::optional<std::int64_t> Scan64(std::u16string_view text) {
    std::int64_t number = 0;
    if (std::sscanf(ToBytes(text).c_str(), "%" SCNd64, &number) != 1) return std::nullopt;
    return number;
}

}  // namespace

std::optional<std::int32_t> ScanInt(std::u16string_view text) {
    const auto number = Scan64(text);
    return number ? std::optional(static_cast<std::int32_t>(*number)) : std::nullopt;
}

std::optional<std::uint32_t> ScanUnsigned(std::u16string_view text) {
    std::uint64_t number = 0;
    if (std::sscanf(ToBytes(text).c_str(), "%" SCNu64, &number) != 1) return std::nullopt;
    return static_cast<std::uint32_t>(number);
}

std::int32_t LeadingInt(std::u16string_view text) {
    using Bounds = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(Scan64(text).value_or(0), Bounds::min(), Bounds::max()));
}

std::string Printed(const char* format, ...) {
    std::va_list arguments, again;
    va_start(arguments, format);
    va_copy(again, arguments);
    char usual[128];
    const int length = std::vsnprintf(usual, sizeof usual, format, arguments);
    va_end(arguments);
    std::string text(usual, static_cast<std::size_t>(std::clamp(length, 0, static_cast<int>(sizeof usual) - 1)));
    if (length >= static_cast<int>(sizeof usual)) {
        text.resize(static_cast<std::size_t>(length));
        std::vsnprintf(text.data(), text.size() + 1, format, again);  // the string has room for the zero at its end
    }
    va_end(again);
    return text;
}

}  // namespace twr
