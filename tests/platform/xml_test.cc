#include "platform/xml.h"

#include <gtest/gtest.h>

#include <random>

#include "base/wide_text.h"
#include "support/test_system.h"
#include "support/wine.h"
#include "support/xml_outline.h"

namespace twr {
namespace {

using testing::Utf16Bytes;

class XmlTest : public ::testing::Test {
protected:
    // The outline of a file of these bytes.
    std::string Read(std::string_view bytes) {
        test_.folder.Write("file.xml", bytes);
        return ReadBack();
    }
    std::string ReadBack() {
        const auto reader = xml_.OpenReader(path_);
        if (!reader) return "no reader";
        const std::string outline = testing::Outline(*reader);
        XmlElement element;
        EXPECT_FALSE(reader->Next(element)) << "an element behind the end";
        return outline;
    }

    testing::TestSystem test_;
    Xml& xml_ = test_.system->Core().xml;
    const std::u16string path_ = test_.folder.File("file.xml");
};

TEST_F(XmlTest, GivesElementsInTheirOrderWhateverTheirDepth) {
    const struct {
        std::string_view bytes, outline;
    } rows[] = {
        {"<a/>", "a()"},
        {" \n<a/>", "a()"},
        {"<?xml version=\"1.0\"?>\n<!-- x --><a><b/><c><d/></c></a>\n<!-- y -->", "a() b() c() d()"},
        {"<a z='1' y=\"2\" x='3'/>", "a(z=1,y=2,x=3)"},
        {"<var twr='13' dfw='BSP'>text<![CDATA[<no/>]]></var>", "var(twr=13,dfw=BSP)"},
        {"<a b='&amp;&lt;&gt;&quot;&apos;&#x20AC;&#90;'/>", "a(b=&<>\"'\xE2\x82\xACZ)"},
        {"<a b=' 1\t2\r\n3\n4'/>", "a(b= 1 2 3 4)"},
        {"<a b='' c=\"it's\"/>", "a(b=,c=it's)"},
        {"<p:a xmlns:p='urn:x' xmlns='urn:y' p:b='1' c='2'><d/></p:a>", "a(b=1,c=2) d()"},
        {"<a xml:lang='en'/>", "a(lang=en)"},
        {"\xEF\xBB\xBF<a b='\xC3\xA4'/>", "a(b=\xC3\xA4)"},
        {"<?xml version='1.0' encoding='utf-8'?><a b='\xF0\x9F\x98\x80'/>", "a(b=\xF0\x9F\x98\x80)"},
        {"\xEF\xBB\xBF<?xml version='1.0' encoding='windows-1252'?><a b='\xC3\xA4'/>", "a(b=\xC3\xA4)"},  // the mark counts
    };
    for (const auto& row : rows) EXPECT_EQ(row.outline, Read(row.bytes)) << row.bytes;
}

TEST_F(XmlTest, KeepsWhiteSpaceThatAReferenceGives) {
    if (testing::UnderWine()) GTEST_SKIP() << "Wine's XmlLite makes blanks of it";
    EXPECT_EQ("a(b= \t\n)", Read("<a b='\n&#9;&#10;'/>"));
}

TEST_F(XmlTest, ReadsTheEncodingThatIsDeclared) {
    const struct {
        std::string encoding, bytes, text;
    } rows[] = {
        {"us-ascii", "x", "x"},
        {"ASCII", "x", "x"},
        {"utf8", "\xC3\xA4\xE2\x82\xAC", "\xC3\xA4\xE2\x82\xAC"},
        {"latin1", "\xE4", "\xC3\xA4"},
        {"cp1252", "\xE4", "\xC3\xA4"},
        {"IBM850", "\x84", "\xC3\xA4"},
        {"koi8-u", "\xC1", "\xD0\xB0"},
        {"EUC-JP", "\xC6\xFC", "\xE6\x97\xA5"},
        {"ISO-8859-1", "\xE4\xFF", "\xC3\xA4\xC3\xBF"},
        {"iso-8859-15", "\xA4", "\xE2\x82\xAC"},
        {"windows-1250", "\x8A\xF8", "\xC5\xA0\xC5\x99"},
        {"windows-1251", "\xCC\xE0", "\xD0\x9C\xD0\xB0"},
        {"Windows-1252", "\x80\x81\xE4", "\xE2\x82\xAC\xC2\x81\xC3\xA4"},
        {"windows-1255", "\xE0\xE1", "\xD7\x90\xD7\x91"},
        {"windows-1258", "\xF0", "\xC4\x91"},
        {"Shift_JIS", "\x93\xFA\x96\x7B", "\xE6\x97\xA5\xE6\x9C\xAC"},
        {"GBK", "\xD6\xD0", "\xE4\xB8\xAD"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.encoding);
        const std::string element = "<a b='" + row.bytes + "'/>", outline = "a(b=" + row.text + ")";
        EXPECT_EQ(outline, Read("<?xml version='1.0' encoding='" + row.encoding + "'?>" + element));
        EXPECT_EQ(outline, Read("<?xml version = '1.0'\n encoding = \"" + row.encoding + "\" standalone='yes' ?>" + element));
    }
    const std::string gap = Read("<?xml version='1.0' encoding='windows-1253'?><a b='\xAA'/>");
    EXPECT_TRUE(gap.empty() || gap == "a(b=\xEF\xA3\xB9)") << "a fault, or the private character that Windows has for it";
    for (const std::string name : {"", "no-such-encoding", "UTF-32LE", "EBCDIC-US", "UTF-16", "iso-8859-", "iso-8859-99",
                                   "windows-", "windows-12345", "windows"}) {
        EXPECT_EQ("", Read("<?xml version='1.0' encoding='" + name + "'?><a/>")) << name;
    }
}

TEST_F(XmlTest, ReadsUtf16InBothByteOrders) {
    for (const bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        EXPECT_EQ("a(b=\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80)", Read(Utf16Bytes(u"\uFEFF<a b='\u00E4\u20AC\xD83D\xDE00'/>", big)));
        for (const std::u16string declared : {u"UTF-16", u"UTF-8", u"windows-1252", u"no-such-encoding"}) {
            EXPECT_EQ("a(b=1)", Read(Utf16Bytes(u"\uFEFF<?xml version='1.0' encoding='" + declared + u"'?><a b='1'/>", big)));
        }
    }
}

TEST_F(XmlTest, StopsAtTheFirstFault) {
    const struct {
        std::string_view bytes, outline;
    } rows[] = {
        {"", ""},
        {"text", ""},
        {"<a b='1'", ""},
        {"<a><b/>", "a() b()"},
        {"<a/>text", "a()"},
        {"<a/>\xC3", "a()"},
        {"<a/><!DOCTYPE a>", "a()"},
        {"<a><?xml version='1.0'?><b/></a>", "a()"},
        {"<?xml version='1.0' encoding='us-ascii'?><a>\x80</a>", "a()"},
        {"<?xml version='1.0' encoding='Shift_JIS'?><a b='\x93'/>", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(row.outline, Read(row.bytes)) << row.bytes;
    for (const std::string fault : {"</c>", "</a>", "&none;", "&#0;", "&", "\x01", "]]>", "<!-- -- -->", "<p:c/>", "<c p:x='1'/>",
                                    "\xFF", "\xC3", "\xEF\xBF", "\xED\xA0\x80"}) {
        EXPECT_EQ("a() b()", Read("<a><b/>" + fault + "<c/></a>")) << fault;
    }
    for (const std::string fault : {"x='1' x='2'", "x=1", "x='<'", "x='&none;'"}) {
        EXPECT_EQ("a()", Read("<a><b " + fault + "/><c/></a>")) << fault;
    }
    for (const std::string type : {"", " [<!ENTITY e 'x'>]", " [<!ATTLIST a b CDATA 'default'>]", " SYSTEM 'a.dtd'"}) {
        EXPECT_EQ("", Read("<!DOCTYPE a" + type + "><a/>")) << type;
    }
}

std::string Mapping(int rows) {
    std::string bytes = "<halyrig>";
    for (int i = 0; i < rows; ++i) bytes += "\r\n  <var twr=\"" + std::to_string(i) + "\" dfw=\"x\" />";
    return bytes + "\r\n</halyrig>";
}

TEST_F(XmlTest, ReadsLongAndDeepFilesUpToAFaultFarBehind) {
    std::string expected = "halyrig()";
    for (int i = 0; i < 3000; ++i) expected += " var(twr=" + std::to_string(i) + ",dfw=x)";
    EXPECT_EQ(expected, Read(Mapping(3000)));
    EXPECT_EQ(expected, Read(Mapping(3000) + "<"));

    std::string deep = "<d>", depth = "d()";
    for (int i = 0; i < 1000; ++i) deep += "<d>", depth += " d()";
    EXPECT_EQ(depth, Read(deep));

    const std::string value(100000, 'v');
    EXPECT_EQ("a(b=" + value + ")", Read("<a b='" + value + "'/>"));
}

TEST_F(XmlTest, ReadsNoDeeperThanAnyHonestFile) {
    std::string bytes;
    for (int i = 0; i < 2 * kDeepestElement; ++i) bytes += "<d>";
    test_.folder.Write("file.xml", bytes);
    const auto reader = xml_.OpenReader(path_);
    ASSERT_NE(nullptr, reader);
    int elements = 0;
    for (XmlElement element; reader->Next(element);) ++elements;
    EXPECT_NEAR(kDeepestElement, elements, 1) << "the systems differ by one";
}

TEST_F(XmlTest, GivesTheBeginningOfAFileThatIsCutShort) {
    const std::string whole = Mapping(3);
    const std::string outline = Read(whole);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::string part = Read(whole.substr(0, length));
        EXPECT_EQ(part, outline.substr(0, part.size())) << "cut at " << length;
    }
}

TEST_F(XmlTest, SurvivesDamage) {
    std::mt19937 random(1);
    for (int round = 0; round < 500; ++round) {
        std::string bytes = "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + Mapping(4);
        for (unsigned hits = 1 + random() % 4; hits > 0; --hits) {
            bytes.insert(random() % bytes.size(), bytes.substr(random() % bytes.size(), random() % 40));
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        const std::string outline = Read(bytes);
        EXPECT_TRUE(outline.empty() || outline.ends_with(')')) << "round " << round;
    }
}

TEST_F(XmlTest, WritesIndentedLines) {
    test_.folder.Write("file.xml", std::string(5000, 'x'));
    const auto writer = xml_.OpenWriter(path_);
    EXPECT_TRUE(writer->StartElement(u"halyrig") && writer->Attribute(u"version", u"1.0") && writer->Comment(u"One & two"));
    EXPECT_TRUE(writer->StartElement(u"var") && writer->Attribute(u"twr", u"13") && writer->Attribute(u"dfw", u"12"));
    EXPECT_TRUE(writer->EndElement() && writer->StartElement(u"group") && writer->StartElement(u"remote") && writer->Finish());
    EXPECT_EQ(
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
        "<halyrig version=\"1.0\">\r\n"
        "  <!--One & two-->\r\n"
        "  <var twr=\"13\" dfw=\"12\" />\r\n"
        "  <group>\r\n"
        "    <remote />\r\n"
        "  </group>\r\n"
        "</halyrig>",
        test_.folder.Read("file.xml"));
}

TEST_F(XmlTest, WritesValuesThatReadBackTheSame) {
    if (testing::UnderWine()) GTEST_SKIP() << "Wine's XmlLite writes what it is given";
    const std::u16string value = u"<a href=\"x\">'&amp;' \t\r\n \u00E4\u20AC\xD83D\xDE00</a>";
    const auto writer = xml_.OpenWriter(path_);
    EXPECT_TRUE(writer->StartElement(u"a") && writer->Attribute(u"b", value) && writer->Finish());
    const std::string written = test_.folder.Read("file.xml");
    EXPECT_NE(written.npos, written.find("b=\"&lt;a href=&quot;x&quot;&gt;'&amp;amp;' &#x9;&#xD;&#xA; "));
    EXPECT_EQ("a(b=" + ToUtf8(value) + ")", ReadBack());
}

TEST_F(XmlTest, RefusesWhatWouldBeNoXml) {
    if (testing::UnderWine()) GTEST_SKIP() << "Wine's XmlLite writes what it is given";
    const auto writer = xml_.OpenWriter(path_);
    EXPECT_FALSE(writer->EndElement());
    EXPECT_TRUE(writer->StartElement(u"a"));
    for (const std::u16string_view text : {u"\u0001", u"\uFFFE", u"\xD800"}) {
        EXPECT_FALSE(writer->Attribute(u"b", text) || writer->Comment(text));
    }
    EXPECT_TRUE(writer->StartElement(u"c") && writer->EndElement());
    EXPECT_FALSE(writer->Attribute(u"late", u"1"));
    EXPECT_TRUE(writer->Finish());
    EXPECT_EQ("a() c()", ReadBack());
}

TEST_F(XmlTest, NeitherReadsNorWritesWhereNoFileCanBe) {
    for (const auto& path : {test_.folder.Text(), test_.folder.File("missing/file.xml")}) {
        EXPECT_EQ(nullptr, xml_.OpenReader(path));
        EXPECT_EQ(nullptr, xml_.OpenWriter(path));
    }
}

}  // namespace
}  // namespace twr
