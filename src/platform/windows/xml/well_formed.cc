// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdint>

#include "platform/windows/xml/xml.h"

namespace twr {
namespace {

constexpr std::size_t kLongestReference = 64;  // any number of leading zeros is allowed; no real document has so many

bool IsXmlCharacter(std::uint32_t c) {
    return c == '\t' || c == '\n' || c == '\r' || (c >= 0x20 && c < 0xD800) || (c >= 0xE000 && c < 0xFFFE) ||
           (c > 0xFFFF && c < 0x110000);
}

// The units of the character at the front; 0 if it is not allowed.
std::size_t CharacterLength(std::u16string_view text) {
    if (IsXmlCharacter(text[0])) return 1;
    const bool pair = text.size() > 1 && text[0] >= 0xD800 && text[0] < 0xDC00 && text[1] >= 0xDC00 && text[1] < 0xE000;
    return pair ? 2 : 0;
}

bool IsCharacterReference(std::u16string_view digits) {
    const std::uint32_t base = digits.starts_with(u'x') ? 16 : 10;
    if (base == 16) digits.remove_prefix(1);
    std::uint32_t number = 0;
    for (const char16_t c : digits) {
        const std::uint32_t digit = c >= '0' && c <= '9'                     ? c - u'0'
                                    : (c | 0x20) >= 'a' && (c | 0x20) <= 'f' ? (c | 0x20u) - 'a' + 10
                                                                             : 99;
        if (digit >= base) return false;
        number = std::min<std::uint32_t>(number * base + digit, 0x110000);
    }
    return !digits.empty() && IsXmlCharacter(number);
}

bool StartsWithReference(std::u16string_view text) {
    const std::size_t end = text.substr(0, kLongestReference).find(u';');
    if (end == text.npos) return false;
    const std::u16string_view name = text.substr(1, end - 1);
    if (name.starts_with(u'#')) return IsCharacterReference(name.substr(1));
    return name == u"amp" || name == u"lt" || name == u"gt" || name == u"quot" || name == u"apos";
}

// The length of the part at the front in which an ampersand is a plain character; 0 if there is none.
std::size_t PlainLength(std::u16string_view text) {
    constexpr std::u16string_view kParts[][2] = {{u"<!--", u"-->"}, {u"<![CDATA[", u"]]>"}, {u"<?", u"?>"}};
    for (const auto& [begin, end] : kParts) {
        if (text.starts_with(begin)) return std::min(text.find(end, begin.size()), text.size() - end.size()) + end.size();
    }
    return 0;
}

}  // namespace

std::u16string_view WellFormedPrefix(std::u16string_view document) {
    std::size_t plainUntil = 0;
    for (std::size_t at = 0; at < document.size();) {
        const std::u16string_view rest = document.substr(at);
        if (at >= plainUntil) {
            plainUntil = at + PlainLength(rest);
            if (at >= plainUntil && rest[0] == u'&' && !StartsWithReference(rest)) return document.substr(0, at);
        }
        const std::size_t length = CharacterLength(rest);
        if (length == 0) return document.substr(0, at);
        at += length;
    }
    return document;
}

std::u16string WithShortComments(std::u16string_view document) {
    constexpr std::size_t kLongest = 65'536;
    std::u16string shorter;
    while (!document.empty()) {
        const std::u16string_view piece = document.substr(0, std::max<std::size_t>(1, PlainLength(document)));
        if (piece.size() > kLongest && piece.starts_with(u"<!--") && piece.ends_with(u"-->")) {
            shorter.append(u"<!--").append(static_cast<std::size_t>(std::ranges::count(piece, u'\n')), u'\n').append(u"-->");
        } else {
            shorter += piece;
        }
        document.remove_prefix(piece.size());
    }
    return shorter;
}

}  // namespace twr
