#include <gtest/gtest.h>

#include "platform/linux/terminal/text.h"
#include "support/linux/environment_variable.h"

namespace twr {
namespace {

TEST(TerminalTextTest, IsCutOrWrappedToCells) {
    const testing::EnvironmentVariable utf8("LC_ALL", "C.UTF-8");
    const TerminalLocale locale;
    const struct {
        const wchar_t* text;
        int width;
        const wchar_t *head, *tail;
    } rows[] = {
        {L"abcdef", 6, L"abcdef", L"abcdef"}, {L"abcdef", 5, L"abcde", L"...ef"}, {L"abcdef", 8, L"abcdef  ", L"abcdef"},
        {L"海海海", 6, L"海海海", L"海海海"}, {L"海海海", 5, L"海海 ", L"...海"}, {L"海海海", 4, L"海海", L"..."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.head, Fitted(row.text, row.width)) << row.width;
        EXPECT_EQ(row.tail, TailThatFits(row.text, row.width)) << row.width;
    }
    const struct {
        const char16_t* text;
        int width;
        std::vector<std::wstring> lines;
    } wrapped[] = {
        {u"", 10, {L""}},
        {u"one two three", 7, {L"one two", L"three"}},
        {u"a\n\nb\n", 5, {L"a", L"", L"b", L""}},
        {u" abcdef", 3, {L" ab", L"cde", L"f"}},
        {u"海海", 1, {L"海", L"海"}},
        {u"\x1B[2Jab\t", 20, {L"?[2Jab?"}},
        {u"\U0001F6A2\xD83D", 20, {L"\U0001F6A2?"}},
    };
    for (const auto& row : wrapped) EXPECT_EQ(row.lines, Wrapped(row.text, row.width)) << row.width;
}

}  // namespace
}  // namespace twr
