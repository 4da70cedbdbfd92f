// SPDX-License-Identifier: MIT
#include "platform/xml.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/byte_source.h"
#include "base/wide_text.h"
#include "platform/files.h"
#include "support/child_process.h"
#include "support/test_system.h"

namespace twr {
namespace {

using testing::Utf16Bytes;

using XmlRow = std::pair<std::string, std::string>;  // the bytes of a file, and what is read of it

std::string Declared(const std::string& encoding) { return "<?xml version='1.0' encoding='" + encoding + "'?>"; }

struct XmlTest : ::testing::Test {
    // The outline of a file of these bytes.
    std::string Read(std::string_view bytes) {
        const auto reader = xml_.OpenReader(test_.folder.Write("file.xml", bytes));
        if (!reader) return "no reader";
        std::string outline = testing::Outline(*reader);
        XmlElement element;
        EXPECT_FALSE(reader->Next(element)) << "an element behind the end";
        return outline;
    }

    testing::TestSystem test_;
    Xml& xml_ = test_.system->Core().xml;
};

TEST_F(XmlTest, GivesTheElementsInTheirOrderUpToTheFirstFault) {
    std::vector<XmlRow> rows = {
        {"<a/>", "a()"},
        {" \n<a/>", "a()"},
        {"<?xml version=\"1.0\"?>\n<!-- x --><a><b/><c><d/></c></a>\n<!-- y -->", "a() b() c() d()"},
        {"<a z='1' y=\"2\" x='3'/>", "a(z=1,y=2,x=3)"},
        {"<var twr='13' dfw='BSP'>text<![CDATA[<no/>]]></var>", "var(twr=13,dfw=BSP)"},
        {"<a b='&amp;&lt;&gt;&quot;&apos;&#x20AC;&#90;' c=\"it's\"/>", "a(b=&<>\"'\xE2\x82\xACZ,c=it's)"},
        {"<a b=' 1\t2\r\n3\n4' c=''/>", "a(b= 1 2 3 4,c=)"},
        {"<p:a xmlns:p='urn:x' xmlns='urn:y' p:b='1' c='2' xml:lang='en'><d/></p:a>", "a(b=1,c=2,lang=en) d()"},
        {"", ""},
        {"text", ""},
        {"<a b='1'", ""},
        {"<a><b/>", "a() b()"},
        {"<a/>text", "a()"},
        {"<a/>\xC3", "a()"},
        {"<a/><!DOCTYPE a>", "a()"},
        {"<a><?xml version='1.0'?><b/></a>", "a()"}};
    for (const std::string fault : {"</c>", "</a>", "&none;", "&#0;", "&", "\x01", "]]>", "<!-- -- -->", "<p:c/>", "<c p:x='1'/>",
                                    "\xFF", "\xC3", "\xEF\xBF", "\xED\xA0\x80"}) {
        rows.emplace_back("<a><b/>" + fault + "<c/></a>", "a() b()");
    }
    for (const std::string b : {"x='1' x='2'", "x=1", "x='<'", "x='&none;'"}) rows.emplace_back("<a><b " + b + "/><c/></a>", "a()");
    for (const std::string type : {"", " [<!ENTITY e 'x'>]", " [<!ATTLIST a b CDATA 'default'>]", " SYSTEM 'a.dtd'"})
        rows.emplace_back("<!DOCTYPE a" + type + "><a/>", "");
    if (testing::UnderWine()) {
        testing::LeaveOut("tab and line feed as references", "Wine's XmlLite makes blanks of them");
    } else {
        rows.emplace_back("<a b='\n&#9;&#10;'/>", "a(b= \t\n)");
    }
    for (const auto& [bytes, outline] : rows) EXPECT_EQ(outline, Read(bytes)) << bytes;
}

TEST_F(XmlTest, TellsTheLineOfEachElementAndOfTheFault) {
    const std::tuple<std::string, std::size_t, std::size_t> rows[] = {
        // the last element's line, the fault's or 0
        {"<a>\n\n<b\nc='1'/>\n</a>\n", 3, 0}, {"<a/>", 1, 0},        {"<a>\n<b/>\n</c>\n</a>", 2, 3},
        {"<a>\n<b c='&none;'/>\n</a>", 1, 2}, {"<a>\n<b/>\n", 2, 3}, {"\n<a/>\n\n<b/>", 2, 4}};
    for (const auto& [bytes, line, fault] : rows) {
        SCOPED_TRACE(bytes);
        const auto reader = xml_.OpenReader(test_.folder.Write("file.xml", bytes));
        XmlElement element;
        while (reader->Next(element)) continue;
        EXPECT_EQ(line, element.line);
        EXPECT_EQ(fault, reader->Fault() ? reader->Fault()->line : 0);
        const bool first = fault != 4 || kPathSeparator != u'/' || reader->Fault()->column == 1;
        EXPECT_TRUE(first) << "as editors count; XmlLite has no such promise";
    }
}

TEST_F(XmlTest, ReadsTheEncodingThatIsDeclaredOrMarked) {
    std::vector<XmlRow> rows = {
        {"\xEF\xBB\xBF<a b='\xC3\xA4'/>", "a(b=\xC3\xA4)"},
        {"\xEF\xBB\xBF<?xml version='1.0' encoding='windows-1252'?><a b='\xC3\xA4'/>", "a(b=\xC3\xA4)"},  // the mark counts
        {Declared("us-ascii") + "<a>\x80</a>", "a()"},
        {Declared("Shift_JIS") + "<a b='\x93'/>", ""}};
    const std::array<std::string, 3> encodings[] = {{"utf-8", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
                                                    {"latin1", "\xE4", "\xC3\xA4"},
                                                    {"EUC-JP", "\xC6\xFC", "\xE6\x97\xA5"},
                                                    {"ISO-8859-1", "\xE4\xFF", "\xC3\xA4\xC3\xBF"},
                                                    {"iso-8859-15", "\xA4", "\xE2\x82\xAC"},
                                                    {"Windows-1252", "\x80\x81\xE4", "\xE2\x82\xAC\xC2\x81\xC3\xA4"},
                                                    {"windows-1255", "\xE0\xE1", "\xD7\x90\xD7\x91"},
                                                    {"Shift_JIS", "\x93\xFA\x96\x7B", "\xE6\x97\xA5\xE6\x9C\xAC"},
                                                    {"GBK", "\xD6\xD0", "\xE4\xB8\xAD"}};
    for (const auto& [encoding, bytes, text] : encodings) {
        const std::string element = "<a b='" + bytes + "'/>", outline = "a(b=" + text + ")";
        rows.emplace_back(Declared(encoding) + element, outline);
        rows.emplace_back("<?xml version = '1.0'\n encoding = \"" + encoding + "\" standalone='yes' ?>" + element, outline);
    }
    for (const char* name : {"", "no-such-encoding", "UTF-32LE", "EBCDIC-US", "UTF-16", "iso-8859-", "iso-8859-99", "windows-",
                             "windows-12345", "windows"}) {
        rows.emplace_back(Declared(name) + "<a/>", "");
    }
    for (const bool big : {false, true}) {
        for (const std::u16string declared : {u"UTF-16", u"UTF-8", u"windows-1252", u"no-such-encoding"}) {
            const std::u16string text = u"\uFEFF<?xml version='1.0' encoding='" + declared + u"'?><a b='\u20AC\xD83D\xDE00'/>";
            rows.emplace_back(Utf16Bytes(text, big), "a(b=\xE2\x82\xAC\xF0\x9F\x98\x80)");
        }
        rows.emplace_back(Utf16Bytes(u"\uFEFF<a/>", big), "a()");
    }
    for (const auto& [bytes, outline] : rows) EXPECT_EQ(outline, Read(bytes)) << bytes;
    const std::string gap = Read(Declared("windows-1253") + "<a b='\xAA'/>");
    EXPECT_TRUE(gap.empty() || gap == "a(b=\xEF\xA3\xB9)") << "a fault, or the private character that Windows has for it";
}

TEST_F(XmlTest, ReadsLongFilesUpToAFaultFarBehindAndNoDeeperThanAnyHonestOne) {
    std::string bytes = "<halyrig>", outline = "halyrig()", deep;
    for (int i = 0; i < 3000; ++i) {
        const std::string number = std::to_string(i);
        bytes += "\r\n  <var twr=\"" + number + "\" dfw=\"x\" />", outline += " var(twr=" + number + ",dfw=x)";
    }
    EXPECT_EQ(outline, Read(bytes + "\r\n</halyrig>"));
    EXPECT_EQ(outline, Read(bytes + "\r\n</halyrig><"));
    const std::string value(100000, 'v');
    EXPECT_EQ("a(b=" + value + ")", Read("<a b='" + value + "'/>"));
    for (int i = 0; i < 2 * kDeepestElement; ++i) deep += "<d>";
    const std::string read = Read(deep);
    EXPECT_NEAR(kDeepestElement, std::ranges::count(read, 'd'), 1) << "the systems differ by one";
}

TEST_F(XmlTest, ReadsALongPieceAndALargeFileUpToTheLimit) {
    const std::string begin = "<a>\n<b/>", end = "<c/></a>", piece(3 * kLongestLine, 'x');
    EXPECT_EQ("a() b() c()", Read(begin + "<!--" + piece + "-->" + end));
    if (testing::UnderWine()) GTEST_SKIP() << "Wine's XmlLite crashes on a value of 3 MiB, and 64 MiB take it minutes";
    const std::string comment = "<!--" + std::string(kLargestFile - begin.size() - end.size() - 7, 'x') + "-->";
    EXPECT_EQ("a() b() c()", Read(begin + comment + end));
    const auto reader = xml_.OpenReader(test_.folder.Write("file.xml", begin + comment + " " + end));
    EXPECT_EQ("a() b()", testing::Outline(*reader).substr(0, 7));
    ASSERT_TRUE(reader->Fault());
    EXPECT_EQ("it is larger than 64 MiB", ToUtf8(reader->Fault()->text));
    EXPECT_EQ("a() b() c(d=" + piece + ")", Read(begin + "<c d='" + piece + "'/></a>"));
}

TEST_F(XmlTest, WritesValuesThatReadBackTheSameAndRefusesWhatWouldBeNoXml) {
    if (testing::UnderWine()) GTEST_SKIP() << "Wine's XmlLite writes what it is given";
    const std::u16string value = u"<a href=\"x\">'&amp;' \t\r\n \u00E4\u20AC\xD83D\xDE00</a>";
    const auto writer = xml_.OpenWriter(test_.folder.File("written.xml"));
    EXPECT_FALSE(writer->EndElement());
    EXPECT_TRUE(writer->StartElement(u"a") && writer->Attribute(u"b", value));
    for (const std::u16string_view text : {u"\u0001", u"\uFFFE", u"\xD800"})
        EXPECT_FALSE(writer->Attribute(u"b", text) || writer->Comment(text));
    EXPECT_TRUE(writer->StartElement(u"c") && writer->EndElement());
    EXPECT_FALSE(writer->Attribute(u"late", u"1"));
    EXPECT_TRUE(writer->Finish());
    const std::string written = test_.folder.Read("written.xml");
    EXPECT_NE(written.npos, written.find("b=\"&lt;a href=&quot;x&quot;&gt;'&amp;amp;' &#x9;&#xD;&#xA; "));
    EXPECT_EQ("a(b=" + ToUtf8(value) + ") c()", Read(written));
}

TEST_F(XmlTest, NeitherReadsNorWritesWhereNoFileCanBe) {
    EXPECT_EQ(nullptr, xml_.OpenReader(test_.folder.File("missing/file.xml")));
    const auto folder = xml_.OpenReader(test_.folder.Text());
    XmlElement element;
    EXPECT_TRUE(folder && !folder->Next(element) && folder->Fault()->flaw == Flaw::kReadFailed);
    for (const auto& path : {test_.folder.Text(), test_.folder.File("missing/file.xml")}) EXPECT_EQ(nullptr, xml_.OpenWriter(path));
}

}  // namespace
}  // namespace twr
