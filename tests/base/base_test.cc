// SPDX-License-Identifier: MIT
// Numbers, lines and characters as every file of the suite has them.
#include <gtest/gtest.h>

#include <vector>

#include "base/bounded_lines.h"
#include "base/numbers.h"
#include "base/wide_text.h"
#include "support/fakes.h"

namespace twr {
namespace {

using namespace std::string_literals;

TEST(Scan, ReadsALeadingNumber) {
    constexpr std::int32_t kMin = -2147483647 - 1, kMax = 2147483647;
    constexpr auto kNone = std::nullopt;
    const std::tuple<std::u16string_view, std::optional<std::int32_t>, std::optional<std::uint32_t>, std::int32_t> rows[] = {
        {u" \t\r\n\v\f0012abc", 12, 12u, 12},
        {u"+5", 5, 5u, 5},
        {u"-5.9", -5, 4294967291u, -5},
        {u"0x10", 0, 0u, 0},
        {u"", kNone, kNone, 0},
        {u"- 5", kNone, kNone, 0},
        {u"\u0661\u0662", kNone, kNone, 0},
        {u"\u00E95", kNone, kNone, 0},
        {u"2147483647", kMax, 2147483647u, kMax},
        {u"2147483648", kMin, 2147483648u, kMax},
        {u"-2147483649", kMax, 2147483647u, kMin},
        {u"4294967299", 3, 3u, kMax},
        {u"99999999999999999999", -1, 4294967295u, kMax},
        {u"-99999999999999999999", 0, 4294967295u, kMin}};
    for (const auto& [text, scanned, scannedUnsigned, leading] : rows) {
        SCOPED_TRACE(ToUtf8(text));
        EXPECT_EQ(scanned, ScanInt(text));
        EXPECT_EQ(scannedUnsigned, ScanUnsigned(text));
        EXPECT_EQ(leading, LeadingInt(text));
    }
}

TEST(BoundedLines, ReadsAsInTextMode) {
    const std::string longLine(10000, 'x');  // than the buffer
    const std::string longest(kLongestLine, 'x');
    const std::pair<std::string, std::vector<std::string>> rows[] = {
        {"", {}},
        {"one\r\ntwo\r\n", {"one", "two"}},
        {"one\r\r\ntwo", {"one\r", "two"}},
        {"a\rb\n", {"a\rb"}},
        {"\n\nx\n", {"", "", "x"}},
        {"one\ntw\x1Ao\nthree\n", {"one", "tw"}},
        {"one\n\x1Atwo", {"one"}},
        {"a\0b\n"s, {"a\0b"s}},
        {longLine + "\r\nshort", {longLine, "short"}},
        {"one\n" + longest + "\r\n" + longest + "x\r\nthree\n", {"one", longest, longest, "three"}},
        {longest + longest + longest, {longest}}};
    for (const auto& [bytes, expected] : rows) {
        for (const std::size_t step : {1u, 2u, 3u, 4096u}) {  // every line end falls across a border once
            testing::TextSource source(bytes, step);
            BoundedLines text(source, kTextMode);
            std::vector<std::string> lines;
            while (text.Next()) {
                EXPECT_EQ(text.Cut(), text.Line() == longest && lines.size() % 2 == 0);
                lines.push_back(text.Line());
            }
            EXPECT_FALSE(text.EndedEarly());
            EXPECT_EQ(expected, lines) << ::testing::PrintToString(bytes) << " by " << step;
        }
    }
}

TEST(BoundedLines, ReadsNoFurtherThanAnyHonestFile) {
    testing::TextSource source(std::string(kLargestFile + 1, 'x'));
    BoundedLines text(source, kTextMode);
    while (text.Next()) continue;
    EXPECT_EQ(kLargestFile, source.given);
    EXPECT_TRUE(text.EndedEarly());
}

TEST(WideText, TrimsAndComparesAsciiOnly) {
    EXPECT_EQ(u"a b", Trimmed(u"\r\n \t\v\fa b\t\v\f\r\n "));
    EXPECT_EQ(u"\u00A0x\u2003", Trimmed(u"\u00A0x\u2003"));
    EXPECT_EQ("", Trimmed(std::string_view(" \v \f")));
    EXPECT_TRUE(EqualsIgnoringCase(u"Sys_V0@[`{", u"sYS_v0@[`{"));
    for (const auto& [a, b] : {std::pair(u"@", u"`"), {u"\u00C4", u"\u00E4"}, {u"ab", u"abc"}})
        EXPECT_FALSE(EqualsIgnoringCase(a, b)) << ToUtf8(a);
}

// What is well formed comes back as it was; of the rest each byte that can't be used is one U+FFFD.
TEST(WideText, TakesUtf8BothWays) {
    const std::pair<std::string_view, std::u16string_view> rows[] = {
        {"A\x7F\xC2\x80\xDF\xBF", u"A\u007F\u0080\u07FF"},
        {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", u"\u0800\uD7FF\uE000\uFFFF"},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\xD800\xDC00\xDBFF\xDFFF"},
        {"\x80", u"\uFFFD"},
        {"\xC3", u"\uFFFD"},
        {"\xC3z", u"\uFFFDz"},
        {"\xFF", u"\uFFFD"},
        {"\xC0\x80", u"\uFFFD\uFFFD"},
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}};
    for (const auto& [utf8, text] : rows) {
        const bool wellFormed = text.find(u'\uFFFD') == text.npos;
        EXPECT_EQ(text, FromUtf8(utf8)) << ::testing::PrintToString(utf8);
        EXPECT_TRUE(!wellFormed || utf8 == ToUtf8(text)) << ::testing::PrintToString(utf8);
    }
    EXPECT_EQ(ToUtf8(u"\uFFFDz\uFFFD\uFFFD"), ToUtf8(u"\xD800z\xDC00\xDBFF"));
    EXPECT_EQ(u"A\u00B0\u00FF", FromBytes("A\xB0\xFF"));
    EXPECT_EQ("A\xB0\xFF?", ToBytes(u"A\u00B0\u00FF\u0100"));
}

}  // namespace
}  // namespace twr
