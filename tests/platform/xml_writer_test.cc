#include <gtest/gtest.h>

#include "platform/xml.h"
#include "support/test_system.h"
#include "support/wine.h"
#include "support/xml_outline.h"

namespace twr {
namespace {

class XmlWriterTest : public ::testing::Test {
protected:
    std::unique_ptr<XmlWriter> Open() { return xml_.OpenWriter(test_.folder.File("out.xml")); }
    std::string Written() { return test_.folder.Read("out.xml"); }

    testing::TestSystem test_;
    Xml& xml_ = test_.system->Core().xml;
};

TEST_F(XmlWriterTest, WritesIndentedLines) {
    test_.folder.Write("out.xml", std::string(5000, 'x'));
    const auto writer = Open();
    ASSERT_NE(nullptr, writer);
    EXPECT_TRUE(writer->StartElement(u"halyrig"));
    EXPECT_TRUE(writer->Attribute(u"version", u"1.0"));
    EXPECT_TRUE(writer->Comment(u"One & two"));
    EXPECT_TRUE(writer->StartElement(u"var"));
    EXPECT_TRUE(writer->Attribute(u"twr", u"13"));
    EXPECT_TRUE(writer->Attribute(u"dfw", u"12"));
    EXPECT_TRUE(writer->EndElement());
    EXPECT_TRUE(writer->StartElement(u"group"));
    EXPECT_TRUE(writer->StartElement(u"remote"));
    EXPECT_TRUE(writer->Finish());
    EXPECT_EQ(
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
        "<halyrig version=\"1.0\">\r\n"
        "  <!--One & two-->\r\n"
        "  <var twr=\"13\" dfw=\"12\" />\r\n"
        "  <group>\r\n"
        "    <remote />\r\n"
        "  </group>\r\n"
        "</halyrig>",
        Written());
}

TEST_F(XmlWriterTest, WritesValuesThatReadBackTheSame) {
    if (testing::UnderWine()) GTEST_SKIP() << "Wine's XmlLite writes what it is given";
    const std::u16string value = u"<a href=\"x\">'&amp;' \t\r\n \u00E4\u20AC\xD83D\xDE00</a>";
    const auto writer = Open();
    ASSERT_TRUE(writer->StartElement(u"a"));
    ASSERT_TRUE(writer->Attribute(u"b", value));
    ASSERT_TRUE(writer->Finish());
    EXPECT_NE(std::string::npos, Written().find("b=\"&lt;a href=&quot;x&quot;&gt;'&amp;amp;' &#x9;&#xD;&#xA; "));
    const auto reader = xml_.OpenReader(test_.folder.File("out.xml"));
    XmlElement element;
    ASSERT_TRUE(reader->Next(element));
    ASSERT_EQ(1u, element.attributes.size());
    EXPECT_EQ(value, element.attributes[0].value);
}

TEST_F(XmlWriterTest, RefusesWhatWouldBeNoXml) {
    if (testing::UnderWine()) GTEST_SKIP() << "Wine's XmlLite writes what it is given";
    const auto writer = Open();
    EXPECT_FALSE(writer->EndElement());
    ASSERT_TRUE(writer->StartElement(u"a"));
    EXPECT_FALSE(writer->Attribute(u"b", u"\u0001"));
    EXPECT_TRUE(writer->StartElement(u"c"));
    EXPECT_TRUE(writer->EndElement());
    EXPECT_FALSE(writer->Attribute(u"late", u"1"));
    ASSERT_TRUE(writer->Finish());
    EXPECT_EQ("a() c()", testing::Outline(*xml_.OpenReader(test_.folder.File("out.xml"))));
}

TEST_F(XmlWriterTest, HasNoWriterWhereNoFileCanBe) {
    EXPECT_EQ(nullptr, xml_.OpenWriter(test_.folder.Text()));
    EXPECT_EQ(nullptr, xml_.OpenWriter(test_.folder.File("missing/out.xml")));
}

}  // namespace
}  // namespace twr
