#include "platform/linux/terminal_text.h"

#include <wchar.h>
#include <wctype.h>

#include <algorithm>

namespace twr {
namespace {

constexpr std::wstring_view kPoints = L"...";

bool IsLead(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsTrail(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

int CellsOf(wchar_t character) { return std::max(0, wcwidth(character)); }

void AppendWrapped(std::vector<std::wstring>& lines, std::wstring_view paragraph, int width) {
    while (WidthOf(paragraph) > width && paragraph.size() > 1) {
        const std::size_t fits = std::max<std::size_t>(1, HeadThatFits(paragraph, width).size());
        const std::size_t blank = paragraph.rfind(L' ', fits);
        const bool atBlank = blank != paragraph.npos && blank > 0;
        lines.emplace_back(paragraph.substr(0, atBlank ? blank : fits));
        paragraph.remove_prefix(atBlank ? blank + 1 : fits);
    }
    lines.emplace_back(paragraph);
}

}  // namespace

std::wstring Printable(std::u16string_view text) {
    std::wstring result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t character = text[i];
        if (IsLead(text[i]) && i + 1 < text.size() && IsTrail(text[i + 1])) {
            character = 0x10000 + ((character - 0xD800) << 10) + (char32_t{text[i + 1]} - 0xDC00);
            ++i;
        }
        result += iswprint(static_cast<wint_t>(character)) ? static_cast<wchar_t>(character) : L'?';
    }
    return result;
}

int WidthOf(std::wstring_view text) {
    int width = 0;
    for (const wchar_t character : text) width += CellsOf(character);
    return width;
}

std::wstring HeadThatFits(std::wstring_view text, int width) {
    std::size_t end = 0;
    for (int used = 0; end < text.size(); ++end) {
        used += CellsOf(text[end]);
        if (used > width) break;
    }
    return std::wstring(text.substr(0, end));
}

std::wstring TailThatFits(std::wstring_view text, int width) {
    if (WidthOf(text) <= width) return std::wstring(text);
    if (width <= WidthOf(kPoints)) return HeadThatFits(kPoints, width);
    while (WidthOf(text) > width - WidthOf(kPoints)) text.remove_prefix(1);
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

bool Caption::HasKey(char32_t character) const {
    if (keyAt >= text.size()) return false;
    return towlower(static_cast<wint_t>(text[keyAt])) == towlower(static_cast<wint_t>(character));
}

Caption ParseCaption(std::u16string_view marked) {
    Caption caption;
    for (std::size_t i = 0; i < marked.size(); ++i) {
        if (marked[i] == u'&' && i + 1 < marked.size()) {
            ++i;
            if (marked[i] != u'&' && caption.keyAt == caption.text.npos) caption.keyAt = caption.text.size();
        }
        caption.text += marked[i];
    }
    return caption;
}

}  // namespace twr
