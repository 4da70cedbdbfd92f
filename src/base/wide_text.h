// SPDX-License-Identifier: MIT
// Small operations on wide text, and its conversion to and from narrow text.
#pragma once
#include <string>
#include <string_view>

namespace twr {

// Text without the six white-space characters of the C locale at either end: space, tab, line feed, vertical tab, form feed,
// carriage return.
std::string_view Trimmed(std::string_view text);
std::u16string_view Trimmed(std::u16string_view text);

// Compares, ignoring the case of ASCII letters.
bool EqualsIgnoringCase(std::u16string_view left, std::u16string_view right);

// Turns the ASCII letters into capitals and leaves all others.
std::u16string UpperCase(std::u16string_view text);

// Each byte becomes the character of its number (Latin-1).
std::u16string FromBytes(std::string_view bytes);

// Each character becomes one byte; those above U+00FF, which no number or keyword holds, become '?'.
std::string ToBytes(std::u16string_view text);

// Malformed input becomes U+FFFD, in either direction.
std::u16string FromUtf8(std::string_view utf8);
std::string ToUtf8(std::u16string_view text);

}  // namespace twr
