#include <gtest/gtest.h>

#include "support/test_system.h"
#include "support/xml_outline.h"

namespace twr {
namespace {

TEST(XmlEncoding, ReadsCodePagesByTheirDeclaration) {
    const testing::TestSystem test;
    const struct {
        std::string encoding, bytes, text;  // nothing in `text`: a fault
    } rows[] = {
        {"windows-1250", "\x8A\xF8", "\xC5\xA0\xC5\x99"},
        {"windows-1251", "\xCC\xE0", "\xD0\x9C\xD0\xB0"},
        {"Windows-1252", "\x80\x81\xE4", "\xE2\x82\xAC\xC2\x81\xC3\xA4"},
        {"windows-1255", "\xE0\xE1", "\xD7\x90\xD7\x91"},
        {"windows-1258", "\xF0", "\xC4\x91"},
        {"ISO-8859-15", "\xA4", "\xE2\x82\xAC"},
        {"Shift_JIS", "\x93\xFA\x96\x7B", "\xE6\x97\xA5\xE6\x9C\xAC"},
        {"GBK", "\xD6\xD0", "\xE4\xB8\xAD"},
        {"Shift_JIS", "\x93", ""},
        {"windows-1253", "\xAA", ""},
        {"UTF-32LE", "x", ""},
        {"EBCDIC-US", "x", ""},
        {"UTF-16", "x", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.encoding);
        const std::string bytes = "<?xml version='1.0' encoding='" + row.encoding + "'?><a b='" + row.bytes + "'/>";
        const auto reader = test.system->Core().xml.OpenReader(test.folder.Write("file.xml", bytes));
        EXPECT_EQ(row.text.empty() ? "" : "a(b=" + row.text + ")", testing::Outline(*reader));
    }
}

TEST(XmlEncoding, AMarkOutweighsTheDeclaration) {
    const testing::TestSystem test;
    const auto path = test.folder.Write("file.xml", "\xEF\xBB\xBF<?xml version='1.0' encoding='windows-1252'?><a b='\xC3\xA4'/>");
    EXPECT_EQ("a(b=\xC3\xA4)", testing::Outline(*test.system->Core().xml.OpenReader(path)));
}

TEST(XmlEncoding, DepthCostsNoStack) {
    const testing::TestSystem test;
    std::string deep;
    for (int i = 0; i < 200000; ++i) deep += "<d>";
    const auto reader = test.system->Core().xml.OpenReader(test.folder.Write("file.xml", deep));
    int count = 0;
    for (XmlElement element; reader->Next(element);) ++count;
    EXPECT_EQ(200000, count);
}

}  // namespace
}  // namespace twr
