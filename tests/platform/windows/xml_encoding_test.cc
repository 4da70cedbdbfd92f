#include <gtest/gtest.h>

#include "support/test_system.h"
#include "support/xml_outline.h"

namespace twr {
namespace {

class XmlEncodingTest : public ::testing::Test {
protected:
    std::string Read(const std::string& bytes) {
        return testing::Outline(*test_.system->Core().xml.OpenReader(test_.folder.Write("file.xml", bytes)));
    }

    testing::TestSystem test_;
};

TEST_F(XmlEncodingTest, ReadsCodePagesByTheirDeclaration) {
    const struct {
        std::string encoding, bytes, text;
    } rows[] = {
        {"windows-1250", "\x8A\xF8", "\xC5\xA0\xC5\x99"},
        {"windows-1251", "\xCC\xE0", "\xD0\x9C\xD0\xB0"},
        {"Windows-1252", "\x80\xE4", "\xE2\x82\xAC\xC3\xA4"},
        {"iso-8859-15", "\xA4", "\xE2\x82\xAC"},
        {"Shift_JIS", "\x93\xFA\x96\x7B", "\xE6\x97\xA5\xE6\x9C\xAC"},
        {"GBK", "\xD6\xD0", "\xE4\xB8\xAD"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.encoding);
        const std::string element = "<a b='" + row.bytes + "'/>";
        EXPECT_EQ("a(b=" + row.text + ")", Read("<?xml version='1.0' encoding='" + row.encoding + "'?>" + element));
        EXPECT_EQ("a(b=" + row.text + ")",
                  Read("<?xml version = \"1.0\"\n encoding = \"" + row.encoding + "\" standalone='yes' ?>" + element));
    }
}

TEST_F(XmlEncodingTest, HasNoElementsInAnEncodingThatItDoesNotKnow) {
    for (const char* name :
         {"", "UTF-32LE", "EBCDIC-US", "UTF-16", "iso-8859-", "iso-8859-99", "windows-", "windows-12345", "windows"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ("", Read(std::string("<?xml version='1.0' encoding='") + name + "'?><a/>"));
    }
}

TEST_F(XmlEncodingTest, TakesAMarkBeforeTheDeclaration) {
    EXPECT_EQ("a(b=\xC3\xA4)", Read("\xEF\xBB\xBF<?xml version='1.0' encoding='windows-1252'?><a b='\xC3\xA4'/>"));
}

TEST_F(XmlEncodingTest, GivesWhatStandsBeforeAByteThatIsNoCharacter) {
    const char* const rows[] = {
        "<a/>\xC3",
        "<a>\xEF\xBF</a>",
        "<a>\xED\xA0\x80</a>",
        "<?xml version='1.0' encoding='us-ascii'?><a>\x80</a>",
    };
    for (const char* bytes : rows) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ("a()", Read(bytes));
    }
}

}  // namespace
}  // namespace twr
