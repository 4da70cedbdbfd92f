// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/text.h"

#include <wchar.h>
#include <wctype.h>

#include <algorithm>

namespace twr {
namespace {

constexpr std::wstring_view kPoints = L"...";

// A locale that is named but not installed is taken as UTF-8, as most are.
locale_t CharactersOfTheEnvironment() {
    const locale_t base = newlocale(LC_ALL_MASK, "C", nullptr);
    for (const char* name : {"", "C.UTF-8"}) {
        if (const locale_t own = newlocale(LC_CTYPE_MASK, name, base)) return own;
    }
    return base;
}

// The number of characters that fit.
std::size_t Fitting(std::wstring_view text, int width) {
    std::size_t count = 0;
    while (count < text.size() && WidthOf(text.substr(0, count + 1)) <= width) ++count;
    return count;
}

// For a terminal that shows plain characters only.
wchar_t Substitute(char32_t character) {
    constexpr char32_t kLowestBlock = U'\u2581';
    constexpr std::wstring_view kBlocks = L"_.-~=+*#";
    if (character >= kLowestBlock && character - kLowestBlock < kBlocks.size()) return kBlocks[character - kLowestBlock];
    if (character == U'\u2500') return L'-';
    if (character == U'\u2502') return L'|';
    return character >= U'\u256D' && character <= U'\u2570' ? L'+' : L'?';  // rounded corners
}

void AppendWrapped(std::vector<std::wstring>& lines, std::wstring_view paragraph, int width) {
    while (WidthOf(paragraph) > width && paragraph.size() > 1) {
        const std::size_t fits = std::max<std::size_t>(1, Fitting(paragraph, width));
        const std::size_t blank = paragraph.rfind(L' ', fits);
        const bool atBlank = blank != paragraph.npos && blank > 0;
        lines.emplace_back(paragraph.substr(0, atBlank ? blank : fits));
        paragraph.remove_prefix(atBlank ? blank + 1 : fits);
    }
    lines.emplace_back(paragraph);
}

}  // namespace

TerminalLocale::TerminalLocale()
    : before_([] {
          static const locale_t shared = CharactersOfTheEnvironment();
          return uselocale(shared);
      }()) {}

std::wstring Printable(std::u16string_view text) {
    std::wstring result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t character = text[i];
        if ((character & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00) {
            character = 0x10000 + ((character & 0x3FF) << 10) + (text[++i] & 0x3FF);
        }
        result += iswprint(static_cast<wint_t>(character)) ? static_cast<wchar_t>(character) : Substitute(character);
    }
    return result;
}

std::wstring PlainCaption(std::u16string_view marked) {
    std::u16string text;
    for (std::size_t i = 0; i < marked.size(); ++i) {
        if (marked[i] == u'&' && i + 1 < marked.size()) ++i;
        text += marked[i];
    }
    return Printable(text);
}

int WidthOf(std::wstring_view text) { return std::max(0, wcswidth(text.data(), text.size())); }

std::wstring Beginning(std::wstring_view text, int width) { return std::wstring(text.substr(0, Fitting(text, width))); }

std::wstring Fitted(std::wstring_view text, int width) {
    std::wstring fitted = Beginning(text, width);
    fitted.append(static_cast<std::size_t>(std::max(0, width - WidthOf(fitted))), L' ');
    return fitted;
}

std::wstring TailThatFits(std::wstring_view text, int width) {
    if (WidthOf(text) <= width) return std::wstring(text);
    while (!text.empty() && WidthOf(text) > width - WidthOf(kPoints)) text.remove_prefix(1);
    return std::wstring(kPoints).append(text);
}

std::vector<std::wstring> Wrapped(std::u16string_view text, int width) {
    std::vector<std::wstring> lines;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(u'\n', begin), text.size());
        AppendWrapped(lines, Printable(text.substr(begin, end - begin)), std::max(1, width));
        begin = end + 1;
    }
    return lines;
}

}  // namespace twr
