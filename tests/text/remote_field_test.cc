#include "text/remote_field.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/wide_text.h"

namespace twr {
namespace {

TEST(RemoteField, HoldsFifteenBytes) {
    const struct {
        std::u16string text;
        std::string bytes;
    } rows[] = {
        {u"", ""},
        {u"12.3", "12.3"},
        {u"123456789012345", "123456789012345"},
        {u"1234567890123456", "123456789012345"},
        {u"2.50\u00B0w", "2.50\xB0w"},
        {u"\u0080\u0099\u00FF", "\x80\x99\xFF"},
        {u"\u20AC\u00B0\u0178\u017E", "\x80\xB0\x9F\x9E"},
        {u"\u20AC\u0080\u0099\u0081", "\x80??\x81"},  // the bytes of another character and of none
        {u"\u0100\u4E2D.", "??."},
        {u"1\U0001F30A2", "1?2"},
        {u"\xD83C\xD83C\xDF0A\xDF0A|", "???|"},
        {u"123456789012345\u0100", "123456789012345"},
        {std::u16string(u"ab\0cd", 5), "ab"},
    };
    for (const auto& row : rows) {
        std::string expected = row.bytes;
        expected.resize(16);
        const RemoteField field = ToRemoteField(row.text);
        EXPECT_EQ(expected, std::string(field.data(), field.size())) << ToUtf8(row.text);
    }
}

}  // namespace
}  // namespace twr
