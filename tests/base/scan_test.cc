#include "base/scan.h"

#include <gtest/gtest.h>

#include "base/wide_text.h"

namespace twr {
namespace {

TEST(Scan, ReadsALeadingNumber) {
    constexpr std::int32_t kMin = -2147483647 - 1, kMax = 2147483647;
    constexpr auto kNone = std::nullopt;
    const struct {
        std::u16string_view text;
        std::optional<std::int32_t> scanned;
        std::optional<std::uint32_t> scannedUnsigned;
        std::int32_t leading;
    } rows[] = {
        {u"0017", 17, 17u, 17},
        {u" \t\r\n\v\f12abc", 12, 12u, 12},
        {u"+5", 5, 5u, 5},
        {u"-5", -5, 4294967291u, -5},
        {u"1.9", 1, 1u, 1},
        {u"0x10", 0, 0u, 0},
        {u"", kNone, kNone, 0},
        {u"abc", kNone, kNone, 0},
        {u"- 5", kNone, kNone, 0},
        {u"-", kNone, kNone, 0},
        {u"\u0661\u0662", kNone, kNone, 0},  // digits of another script
        {u"\u00E95", kNone, kNone, 0},
        {u"2147483647", kMax, 2147483647u, kMax},
        {u"2147483648", kMin, 2147483648u, kMax},
        {u"-2147483649", kMax, 2147483647u, kMin},
        {u"4294967299", 3, 3u, kMax},
        {u"99999999999999999999", -1, 4294967295u, kMax},
        {u"-99999999999999999999", 0, 4294967295u, kMin},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(ToUtf8(row.text));
        EXPECT_EQ(row.scanned, ScanInt(row.text));
        EXPECT_EQ(row.scannedUnsigned, ScanUnsigned(row.text));
        EXPECT_EQ(row.leading, LeadingInt(row.text));
    }
}

}  // namespace
}  // namespace twr
