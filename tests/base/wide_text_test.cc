#include "base/wide_text.h"

#include <gtest/gtest.h>

namespace twr {
namespace {

TEST(WideText, TrimsSixCharactersAtBothEnds) {
    const struct {
        std::u16string_view text, trimmed;
    } rows[] = {
        {u"", u""}, {u" \t\n\v\f\r", u""}, {u"\r\n a b\t ", u"a b"}, {u"\u00A0x\u2003", u"\u00A0x\u2003"}, {u"x", u"x"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.trimmed, Trimmed(row.text));
    EXPECT_EQ("a b", Trimmed(std::string_view(" \v a b\f")));
}

TEST(WideText, ComparesAsciiLettersWithoutCase) {
    EXPECT_TRUE(EqualsIgnoringCase(u"Sys_V0@[`{", u"sYS_v0@[`{"));
    EXPECT_FALSE(EqualsIgnoringCase(u"@", u"`"));
    EXPECT_FALSE(EqualsIgnoringCase(u"\u00C4", u"\u00E4"));
    EXPECT_FALSE(EqualsIgnoringCase(u"ab", u"abc"));
}

TEST(WideText, TakesUtf8BothWays) {
    const struct {
        std::string_view utf8;
        std::u16string_view text;
    } rows[] = {
        {"plain", u"plain"},
        {"\x7F\xC2\x80\xDF\xBF", u"\u007F\u0080\u07FF"},
        {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", u"\u0800\uD7FF\uE000\uFFFF"},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\xD800\xDC00\xDBFF\xDFFF"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.utf8));
        EXPECT_EQ(row.text, FromUtf8(row.utf8));
        EXPECT_EQ(row.utf8, ToUtf8(row.text));
    }
}

TEST(WideText, ReplacesWhatIsMalformed) {
    const struct {
        std::string_view utf8;
        std::u16string_view text;
    } rows[] = {
        {"\x80", u"\uFFFD"},                                // a tail without a head
        {"\xC3", u"\uFFFD"},                                // cut short
        {"\xC3z", u"\uFFFDz"},                              // the tail is missing
        {"\xC0\x80", u"\uFFFD\uFFFD"},                      // longer than need be
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // half a pair
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // above the last character
        {"\xFF", u"\uFFFD"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.text, FromUtf8(row.utf8)) << ::testing::PrintToString(row.utf8);
    EXPECT_EQ(ToUtf8(u"\uFFFDz\uFFFD\uFFFD"), ToUtf8(u"\xD800z\xDC00\xDBFF"));
}

TEST(WideText, TakesBytesForTheCharactersOfTheirNumbers) {
    EXPECT_EQ(u"A\u00B0\u00FF", FromBytes("A\xB0\xFF"));
    EXPECT_EQ("A\xB0\xFF?", ToBytes(u"A\u00B0\u00FF\u0100"));
}

}  // namespace
}  // namespace twr
