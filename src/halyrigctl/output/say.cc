// SPDX-License-Identifier: MIT
#include "halyrigctl/output/say.h"

#include <algorithm>

#include "base/wide_text.h"

namespace twr {
namespace {

bool IsControl(char16_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }

// Line and paragraph separators, which some terminals obey, lie between the marks of direction.
bool TurnsDirection(char16_t c) {
    return c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

}  // namespace

void Complain(Console& console, const std::string& message) { console.WriteError("halyrigctl: " + message + "\n"); }

void Notice(Console& console, const std::string& message) { Complain(console, message); }

Status Print(Console& console, std::string_view utf8) {
    return StatusOf(console, console.Write(utf8, [] { return true; }));
}

Status StatusOf(Console& console, Output output) {
    if (output != Output::kRefused) return kDone;
    Complain(console, "standard output can't be written: the disk is full, or there is none.");
    return kFailed;
}

std::string Harmless(std::u16string_view text) {
    std::u16string shown(text);
    std::ranges::replace_if(
        shown, [](char16_t c) { return IsControl(c) || TurnsDirection(c); }, u'\u00B7');
    return ToUtf8(shown);
}

}  // namespace twr
