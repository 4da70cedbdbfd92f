// SPDX-License-Identifier: MIT
#include "platform/code_page.h"

#include <algorithm>
#include <iterator>

namespace twr {
namespace {

// Bytes 0x80 to 0x9F of code page 1252, the only ones that differ from their characters. 0 where the page has none of its own.
constexpr char16_t kPage1252[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0, 0x017D, 0,
    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0, 0x017E, 0x0178,
};

char InPage1252(char16_t c) {
    const bool moved = c >= 0x80 && c < 0xA0 && kPage1252[c - 0x80] != 0;  // its byte is another character's
    if (c <= 0xFF && !moved) return static_cast<char>(c);
    const auto* const place = std::ranges::find(kPage1252, c);
    return place == std::end(kPage1252) ? '?' : static_cast<char>(0x80 + (place - kPage1252));
}

}  // namespace

std::string ToCodePage(std::u16string_view text) {
    std::string bytes(text.size(), '\0');
    std::ranges::transform(text, bytes.begin(), InPage1252);
    return bytes;
}

}  // namespace twr
