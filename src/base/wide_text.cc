// SPDX-License-Identifier: MIT
#include "base/wide_text.h"

#include <algorithm>

namespace twr {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

template <class Text>
Text TrimmedOf(Text text) {
    const auto space = [](auto c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!text.empty() && space(text.front())) text.remove_prefix(1);
    while (!text.empty() && space(text.back())) text.remove_suffix(1);
    return text;
}

char16_t Lower(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c; }

bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c < 0xDC00; }
bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c < 0xE000; }

// Takes one character off the front of UTF-8. A malformed one consumes one byte and gives the replacement.
char32_t TakeUtf8(std::string_view& utf8) {
    const auto first = static_cast<unsigned char>(utf8.front());
    utf8.remove_prefix(1);
    if (first < 0x80) return first;
    const int more = first >= 0xF0 && first < 0xF5 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4 || utf8.size() < static_cast<std::size_t>(more)) return kReplacement;
    char32_t c = first & (0x3Fu >> more);
    for (int i = 0; i < more; ++i) {
        const auto next = static_cast<unsigned char>(utf8[static_cast<std::size_t>(i)]);
        if ((next & 0xC0) != 0x80) return kReplacement;
        c = c << 6 | (next & 0x3F);
    }
    const char32_t least = more == 3 ? 0x10000 : more == 2 ? 0x800 : 0x80;
    if (c < least || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) return kReplacement;
    utf8.remove_prefix(static_cast<std::size_t>(more));
    return c;
}

void AppendUtf8(std::string& to, char32_t c) {
    const auto tail = [&](int shift) { to.push_back(static_cast<char>(0x80 | (c >> shift & 0x3F))); };
    if (c < 0x80) {
        to.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        to.push_back(static_cast<char>(0xC0 | c >> 6));
        tail(0);
    } else if (c < 0x10000) {
        to.push_back(static_cast<char>(0xE0 | c >> 12));
        tail(6), tail(0);
    } else {
        to.push_back(static_cast<char>(0xF0 | c >> 18));
        tail(12), tail(6), tail(0);
    }
}

}  // namespace

std::string_view Trimmed(std::string_view text) { return TrimmedOf(text); }
std::u16string_view Trimmed(std::u16string_view text) { return TrimmedOf(text); }

bool EqualsIgnoringCase(std::u16string_view left, std::u16string_view right) {
    return std::ranges::equal(left, right, {}, Lower, Lower);
}

std::u16string UpperCase(std::u16string_view text) {
    std::u16string upper(text);
    for (char16_t& c : upper) {
        if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - 32);
    }
    return upper;
}

std::u16string FromBytes(std::string_view bytes) {
    std::u16string text;
    for (const char byte : bytes) text.push_back(static_cast<unsigned char>(byte));
    return text;
}

std::string ToBytes(std::u16string_view text) {
    std::string bytes;
    for (const char16_t c : text) bytes.push_back(c <= 0xFF ? static_cast<char>(c) : '?');
    return bytes;
}

std::u16string FromUtf8(std::string_view utf8) {
    std::u16string text;
    while (!utf8.empty()) {
        const char32_t c = TakeUtf8(utf8);
        if (c < 0x10000) {
            text.push_back(static_cast<char16_t>(c));
        } else {
            text.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            text.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        }
    }
    return text;
}

std::string ToUtf8(std::u16string_view text) {
    std::string utf8;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        } else if (IsHighSurrogate(c) || IsLowSurrogate(c)) {
            c = kReplacement;
        }
        AppendUtf8(utf8, c);
    }
    return utf8;
}

}  // namespace twr
