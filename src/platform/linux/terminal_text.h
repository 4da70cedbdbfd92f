// Text in the cells of a terminal. Which characters can be shown and how wide they are depends on the TerminalLocale in force.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace twr {

// Each character that the terminal can't show, or would act upon, becomes '?'.
std::wstring Printable(std::u16string_view text);

int WidthOf(std::wstring_view text);  // cells

// What fits of the beginning, or of the end behind three points.
std::wstring HeadThatFits(std::wstring_view text, int width);
std::wstring TailThatFits(std::wstring_view text, int width);

// Lines of at most `width` cells, broken at blanks, else within a word. Line feeds start a new line.
std::vector<std::wstring> Wrapped(std::u16string_view text, int width);

// A caption with its "&", which marks the letter that is its access key; "&&" is a plain "&".
struct Caption {
    std::u16string text;
    std::size_t keyAt = std::u16string::npos;

    bool HasKey(char32_t character) const;  // either case
};
Caption ParseCaption(std::u16string_view marked);

}  // namespace twr
