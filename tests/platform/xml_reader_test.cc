#include <gtest/gtest.h>

#include <random>

#include "platform/xml.h"
#include "support/test_system.h"
#include "support/wine.h"
#include "support/xml_outline.h"

namespace twr {
namespace {

using testing::Utf16Bytes;

class XmlReaderTest : public ::testing::Test {
protected:
    std::string Read(std::string_view bytes) {
        const auto reader = xml_.OpenReader(test_.folder.Write("file.xml", bytes));
        if (!reader) return "no reader";
        const std::string outline = testing::Outline(*reader);
        XmlElement element;
        EXPECT_FALSE(reader->Next(element)) << "an element behind the end";
        return outline;
    }

    testing::TestSystem test_;
    Xml& xml_ = test_.system->Core().xml;
};

TEST_F(XmlReaderTest, GivesElementsInTheirOrderWhateverTheirDepth) {
    const struct {
        std::string_view bytes, outline;
    } rows[] = {
        {"<a/>", "a()"},
        {"<?xml version=\"1.0\"?>\n<!-- x --><a><b/><c><d/></c></a>\n<!-- y -->", "a() b() c() d()"},
        {"<a z='1' y=\"2\" x='3'/>", "a(z=1,y=2,x=3)"},
        {"<var twr='13' dfw='BSP'>text<![CDATA[<no/>]]></var>", "var(twr=13,dfw=BSP)"},
        {"<a b='&amp;&lt;&gt;&quot;&apos;&#x20AC;&#65;'/>",
         "a(b=&<>\"'\xE2\x82\xAC"
         "A)"},
        {"<a b=' 1\t2\r\n3\n4'/>", "a(b= 1 2 3 4)"},
        {"<a b='' c=\"it's\"/>", "a(b=,c=it's)"},
        {"<p:a xmlns:p='urn:x' xmlns='urn:y' p:b='1' c='2'><d/></p:a>", "a(b=1,c=2) d()"},
        {"<a xml:lang='en'/>", "a(lang=en)"},
        {"\xEF\xBB\xBF<a b='\xC3\xA4'/>", "a(b=\xC3\xA4)"},
        {"<?xml version='1.0' encoding='utf-8'?><a b='\xF0\x9F\x98\x80'/>", "a(b=\xF0\x9F\x98\x80)"},
        {"<?xml version='1.0' encoding='ISO-8859-1'?><a b='\xE4\xFF'/>", "a(b=\xC3\xA4\xC3\xBF)"},
        {"<?xml version='1.0' encoding='us-ascii'?><a/>", "a()"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes);
        EXPECT_EQ(row.outline, Read(row.bytes));
    }
}

TEST_F(XmlReaderTest, KeepsWhiteSpaceThatAReferenceGives) {
    if (testing::UnderWine()) GTEST_SKIP() << "Wine's XmlLite makes blanks of it";
    EXPECT_EQ("a(b= \t\n)", Read("<a b='\n&#9;&#10;'/>"));
}

TEST_F(XmlReaderTest, ReadsUtf16InBothByteOrders) {
    for (const bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        EXPECT_EQ("a(b=\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80)", Read(Utf16Bytes(u"\uFEFF<a b='\u00E4\u20AC\xD83D\xDE00'/>", big)));
        EXPECT_EQ("a(b=1)", Read(Utf16Bytes(u"\uFEFF<?xml version='1.0' encoding='UTF-16'?><a b='1'/>", big)));
    }
}

TEST_F(XmlReaderTest, StopsAtTheFirstFault) {
    const struct {
        std::string_view bytes, outline;
    } rows[] = {
        {"", ""},
        {" ", ""},
        {"text", ""},
        {"<", ""},
        {"<a", ""},
        {"<a b='1'", ""},
        {"<a>", "a()"},
        {"<a><b/>", "a() b()"},
        {"<a><b/></c><d/>", "a() b()"},
        {"<a><b/></a><c/>", "a() b()"},
        {"<a/>text", "a()"},
        {"<a><b x='1' x='2'/><c/></a>", "a()"},
        {"<a><b x=1/><c/></a>", "a()"},
        {"<a><b x='<'/><c/></a>", "a()"},
        {"<a><b x='&none;'/><c/></a>", "a()"},
        {"<a><b/>&none;<c/></a>", "a() b()"},
        {"<a><b/>&#0;<c/></a>", "a() b()"},
        {"<a><b/>&<c/></a>", "a() b()"},
        {"<a><b/>\x01<c/></a>", "a() b()"},
        {"<a><b/>]]><c/></a>", "a() b()"},
        {"<a><b/><!-- -- --><c/></a>", "a() b()"},
        {"<a><b/><p:c/><d/></a>", "a() b()"},
        {"<a><b/><c p:x='1'/><d/></a>", "a() b()"},
        {"<a><b/>\xFF<c/></a>", "a() b()"},
        {"<a><b/>\xC3<c/></a>", "a() b()"},
        {"<!DOCTYPE a><a/>", ""},
        {"<!DOCTYPE a [<!ENTITY e 'x'>]><a b='&e;'/>", ""},
        {"<!DOCTYPE a [<!ATTLIST a b CDATA 'default'>]><a/>", ""},
        {"<!DOCTYPE a SYSTEM 'a.dtd'><a/>", ""},
        {"<a/><!DOCTYPE a>", "a()"},
        {"<?xml version='1.0' encoding='no-such-encoding'?><a/>", ""},
        {"<a><?xml version='1.0'?><b/></a>", "a()"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes);
        EXPECT_EQ(row.outline, Read(row.bytes));
    }
}

TEST_F(XmlReaderTest, HasNoReaderWithoutAFile) {
    EXPECT_EQ(nullptr, xml_.OpenReader(test_.folder.File("missing.xml")));
    EXPECT_EQ(nullptr, xml_.OpenReader(test_.folder.Text()));
}

std::string Mapping(int rows) {
    std::string bytes = "<halyrig>";
    for (int i = 0; i < rows; ++i) bytes += "\r\n  <var twr=\"" + std::to_string(i) + "\" dfw=\"x\" />";
    return bytes + "\r\n</halyrig>";
}

TEST_F(XmlReaderTest, ReadsLongAndDeepFilesUpToAFaultFarBehind) {
    std::string expected = "halyrig()";
    for (int i = 0; i < 3000; ++i) expected += " var(twr=" + std::to_string(i) + ",dfw=x)";
    EXPECT_EQ(expected, Read(Mapping(3000)));
    EXPECT_EQ(expected, Read(Mapping(3000) + "<"));

    std::string deep, depth;
    for (int i = 0; i < 200; ++i) {
        deep += "<d>";
        depth += i == 0 ? "d()" : " d()";
    }
    EXPECT_EQ(depth, Read(deep));

    const std::string value(100000, 'v');
    EXPECT_EQ("a(b=" + value + ")", Read("<a b='" + value + "'/>"));
}

TEST_F(XmlReaderTest, GivesTheBeginningOfAFileThatIsCutShort) {
    const std::string whole = Mapping(3);
    const std::string outline = Read(whole);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::string part = Read(whole.substr(0, length));
        EXPECT_EQ(part, outline.substr(0, part.size())) << "cut at " << length;
    }
}

TEST_F(XmlReaderTest, SurvivesDamage) {
    std::mt19937 random(1);
    const std::string whole = "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + Mapping(4);
    for (int round = 0; round < 500; ++round) {
        std::string bytes = whole;
        for (unsigned hits = 1 + random() % 4; hits > 0; --hits) {
            const std::size_t at = random() % bytes.size();
            if (random() % 2 == 0) {
                bytes[at] = static_cast<char>(random());
            } else {
                bytes.insert(at, bytes.substr(random() % bytes.size(), random() % 40));
            }
        }
        const std::string outline = Read(bytes);
        EXPECT_TRUE(outline.empty() || outline.ends_with(')')) << "round " << round;
    }
}

}  // namespace
}  // namespace twr
