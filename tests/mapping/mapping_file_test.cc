#include "mapping/mapping_file.h"

#include "mapping/row_text.h"
#include "platform/system.h"
#include "support/temp_folder.h"

namespace twr::testing {
namespace {

class MappingFileTest : public ::testing::Test {
protected:
    Mapping Load(const std::string& document) { return LoadMapping(xml, folder.Write("halyrig.xml", document), catalogue); }

    std::string Loaded(const std::string& document) {
        const Mapping mapping = Load(document);
        return Told(mapping.varRows) + Told(mapping.remoteRows);
    }

    TempFolder folder;
    std::unique_ptr<System> system = MakeSystem({});
    Xml& xml = system->Core().xml;
    Files& files = system->Core().files;
    std::vector<MappingVar> catalogue{Variable(12, u"HDG"), Variable(17, u"BSP"), Variable(17, u"TWIN"), Variable(40, u"bsp2")};
};

TEST_F(MappingFileTest, ElementsBecomeRows) {
    const std::pair<std::string, std::string> rows[] = {
        {R"(<var twr="1" dfw="17"/><var twr="1" dfw="17"/>)", "1=17BSP@0 1=17BSP@0 "},
        {R"(<var dfw="BSP" boat="3" twr="1"/>)", "1=17BSP@3 "},
        {R"(<var twr="1" dfw="TWIN"/>)", "1=17TWIN@0 "},
        {R"(<var twr="1" dfw="12abc" boat="abc"/>)", "1=12HDG@0 "},
        {R"(<var twr="0" dfw="17"/><var twr="413" dfw="17" boat="99"/>)", "0=17BSP@0 413=17BSP@99 "},
        {R"(<VAR TWR=" 1" Dfw="17" colour="red"/>)", "1=17BSP@0 "},
        {R"(<p:var xmlns:p="urn:x" twr="1" p:dfw="17"/>)", "1=17BSP@0 "},
        {R"(<a><b><var twr="1" dfw="17"><var twr="2" dfw="12"/></var></b></a>)", "1=17BSP@0 2=12HDG@0 "},
        {R"(<var twr="1" dfw="17"/><oops <var twr="2" dfw="12"/>)", "1=17BSP@0 "},
        {R"(<remote remote="1" twr="13"/>)", "13>1@0 "},
        {R"(<remote twr="117" remote="0" damp="true" boat="7"/>)", "117>0d@7 "},
        {R"(<remote remote="2" twr="13" damp="FALSE"/>)", "13>2@0 "},
        {R"(<remote remote="2" twr="13" damp="no"/><remote remote="3" twr="13" damp=""/>)", "13>2d@0 13>3d@0 "},
    };
    for (const auto& [elements, loaded] : rows) EXPECT_EQ(loaded, Loaded("<x>" + elements + "</x>")) << elements;
}

TEST_F(MappingFileTest, ElementsAreDropped) {
    for (const std::string element :
         {R"(<var twr="1" dfw="bsp"/>)", R"(<var twr="1" dfw="99"/>)", R"(<var twr="1" dfw=""/>)", R"(<var twr="1"/>)",
          R"(<var dfw="17"/>)", R"(<var twr="x" dfw="17"/>)", R"(<var twr="414" dfw="17"/>)", R"(<var twr="-1" dfw="17"/>)",
          R"(<var twr="1" dfw="17" boat="100"/>)", R"(<var twr="1" dfw="17" boat="-1"/>)", R"(<variable twr="1" dfw="17"/>)",
          R"(<remote remote="-2" twr="13"/>)", R"(<remote remote="32767" twr="13"/>)", R"(<remote twr="13"/>)",
          R"(<remote remote="2"/>)", R"(<remote remote="2" twr="13" boat="100"/>)"}) {
        EXPECT_EQ("", Loaded("<x>" + element + "</x>")) << element;
    }
}

TEST_F(MappingFileTest, WithoutACatalogueOnlyRemotesLoadAndWithoutAFileNothing) {
    catalogue.clear();
    EXPECT_EQ("13>1@0 ", Loaded(R"(<x><var twr="1" dfw="17"/><remote remote="1" twr="13"/></x>)"));
    EXPECT_TRUE(LoadMapping(xml, folder.File("missing.xml"), catalogue).remoteRows.empty());
}

TEST_F(MappingFileTest, SavesTheSameBytesOnEverySystem) {
    Mapping mapping = Load(R"(<x><var twr="13" dfw="HDG"/><var twr="13" dfw="12" boat="2"/>)"
                           R"(<remote twr="117" remote="1"/><remote twr="117" remote="3" damp="true" boat="2"/></x>)");
    mapping.varRows.push_back(catalogue[1]);  // no channel yet: left out
    mapping.remoteRows.push_back({});
    const std::u16string path = folder.Write("halyrig.xml", std::string(5000, 'x'));
    EXPECT_TRUE(SaveMapping(files, xml, path, mapping));
    EXPECT_EQ(
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
        "<halyrig version=\"1.0\" creator=\"Tidewright - https://tidewright.example\">\r\n"
        "  <!--See user_channels.h for Tidewright var ids-->\r\n"
        "  <var twr=\"13\" dfw=\"12\" />\r\n"
        "  <var twr=\"13\" dfw=\"12\" boat=\"2\" />\r\n"
        "  <!--B&G remote ids are 1-n-->\r\n"
        "  <remote remote=\"1\" twr=\"117\" damp=\"false\" />\r\n"
        "  <remote remote=\"3\" twr=\"117\" damp=\"true\" boat=\"2\" />\r\n"
        "</halyrig>",
        folder.Read("halyrig.xml"));
    EXPECT_EQ("13=12HDG@0 13=12HDG@2 117>1@0 117>3d@2 ", Loaded(folder.Read("halyrig.xml")));
    EXPECT_FALSE(SaveMapping(files, xml, folder.File("missing/halyrig.xml"), mapping));
}

// A disk on which no file can be begun, or none be finished.
class FullDisk : public Xml {
public:
    FullDisk(Xml& xml, const TempFolder& folder, bool begins) : xml_(xml), folder_(folder), begins_(begins) {}

    std::unique_ptr<XmlReader> OpenReader(std::u16string_view path) override { return xml_.OpenReader(path); }
    std::unique_ptr<XmlWriter> OpenWriter(std::u16string_view) override {
        if (!begins_) return nullptr;
        folder_.Write("halyrig.xml", "<halyrig");
        return std::make_unique<Writer>();
    }

private:
    class Writer : public XmlWriter {
        bool StartElement(std::u16string_view) override { return true; }
        bool Attribute(std::u16string_view, std::u16string_view) override { return true; }
        bool Comment(std::u16string_view) override { return true; }
        bool EndElement() override { return true; }
        bool Finish() override { return false; }
    };

    Xml& xml_;
    const TempFolder& folder_;
    const bool begins_;
};

TEST_F(MappingFileTest, TheFormerFileIsKept) {
    FullDisk beginsNone(xml, folder, false), endsNone(xml, folder, true);
    const std::string whole = "<x></x>\r\n", wide("<\0/\0x\0>\0", 8);
    const struct {
        Xml& disk;
        std::string former, bak;
        std::string then, bakThen;  // an empty `then` is the new mapping
    } rows[] = {
        {xml, whole, "", "", whole},
        {xml, whole, "older", "", whole},
        {xml, wide, "older", "", wide},
        {xml, "<x><var/></", "older", "", "older"},
        {xml, "", "older", "", "older"},
        {endsNone, whole, "older", "<halyrig", whole},
        {endsNone, "<halyrig", whole, "<halyrig", whole},
        {beginsNone, whole, "", whole, ""},
        {beginsNone, "<halyrig", whole, "<halyrig", whole},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.former << " with " << row.bak);
        folder.Write("halyrig.xml.bak", row.bak);
        const bool saved = SaveMapping(files, row.disk, folder.Write("halyrig.xml", row.former), {});
        EXPECT_EQ(row.then.empty(), saved);
        EXPECT_TRUE(saved ? folder.Read("halyrig.xml").ends_with("</halyrig>") : folder.Read("halyrig.xml") == row.then);
        EXPECT_EQ(row.bakThen, folder.Read("halyrig.xml.bak"));
    }
}

}  // namespace
}  // namespace twr::testing
