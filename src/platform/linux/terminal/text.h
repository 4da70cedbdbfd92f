// SPDX-License-Identifier: MIT
// Text in the cells of a terminal. Which characters can be shown and how wide they are depends on the TerminalLocale in force.
#pragma once
#include <locale.h>

#include <string>
#include <string_view>
#include <vector>

namespace twr {

// The process itself keeps the C locale: only this thread, and only for the life of the object, uses the user's locale for
// characters, so that numbers and names of months stay as they are.
class TerminalLocale {
public:
    TerminalLocale();
    ~TerminalLocale() { uselocale(before_); }
    TerminalLocale(const TerminalLocale&) = delete;
    TerminalLocale& operator=(const TerminalLocale&) = delete;

private:
    const locale_t before_;
};

// Each character that the terminal can't show, or would act upon, becomes '?', but lines and blocks a similar plain one.
std::wstring Printable(std::u16string_view text);

// A caption without the "&" that marks its access key on a desktop; "&&" is a plain "&".
std::wstring PlainCaption(std::u16string_view marked);

int WidthOf(std::wstring_view text);  // cells

// As much of the beginning as fits into `width` cells.
std::wstring Beginning(std::wstring_view text, int width);

// The same, padded with blanks to `width`.
std::wstring Fitted(std::wstring_view text, int width);

// As much of the end as fits, after three points if that is not all.
std::wstring TailThatFits(std::wstring_view text, int width);

// Lines of at most `width` cells, broken at blanks, else within a word. Line feeds start a new line.
std::vector<std::wstring> Wrapped(std::u16string_view text, int width);

}  // namespace twr
