#include "mapping/mapping_file.h"

#include <gtest/gtest.h>

#include "platform/system.h"
#include "platform/wide_text.h"
#include "support/temp_folder.h"

namespace twr::testing {
namespace {

MappingVar Variable(std::int32_t id, std::u16string name) {
    MappingVar variable;
    variable.dfwId = id;
    variable.dfwName = std::move(name);
    variable.dfwColumn3 = u"u";
    variable.dfwColumn4 = 4;
    variable.dfwColumn6 = 6;
    return variable;
}

class MappingFileTest : public ::testing::Test {
protected:
    MappingFileTest() : system(MakeSystem({})), xml(system->Core().xml), path(folder.File("halyrig.xml")) {}

    // The rows of the mapping that a document gives, one text.
    std::string Loaded(const std::string& document) {
        folder.Write("halyrig.xml", document);
        std::string shown;
        const Mapping mapping = LoadMapping(xml, path, catalogue);
        for (const MappingVar& row : mapping.varRows) {
            shown += "v" + std::to_string(row.channel) + "=" + std::to_string(row.dfwId) + ToBytes(row.dfwName) + "@" +
                     std::to_string(row.boat) + " ";
        }
        for (const MappingRemote& row : mapping.remoteRows) {
            shown += "r" + std::to_string(row.remote) + "=" + std::to_string(row.channel) + (row.damp ? "d" : "") + "@" +
                     std::to_string(row.boat) + " ";
            EXPECT_EQ(kNoInt, row.lastChannel);
            EXPECT_EQ(kNoValue, row.lastValue);
        }
        return shown;
    }

    TempFolder folder;
    std::unique_ptr<System> system;
    Xml& xml;
    std::u16string path;
    std::vector<MappingVar> catalogue = {Variable(12, u"HDG"), Variable(17, u"BSP"), Variable(17, u"TWIN"), Variable(40, u"bsp2")};
};

TEST_F(MappingFileTest, ElementsBecomeRowsOrAreDropped) {
    const struct {
        std::string element, loaded;
    } rows[] = {
        {R"(<var twr="1" dfw="17"/>)", "v1=17BSP@0 "},
        {R"(<var dfw="BSP" boat="3" twr="1"/>)", "v1=17BSP@3 "},
        {R"(<var twr="1" dfw="TWIN"/>)", "v1=17TWIN@0 "},
        {R"(<var twr="1" dfw="bsp"/>)", ""},
        {R"(<var twr="1" dfw="99"/>)", ""},
        {R"(<var twr="1" dfw="12abc"/>)", "v1=12HDG@0 "},
        {R"(<var twr="1" dfw=""/>)", ""},
        {R"(<var twr="1"/>)", ""},
        {R"(<var dfw="17"/>)", ""},
        {R"(<var twr="x" dfw="17"/>)", ""},
        {R"(<var twr="0" dfw="17"/>)", "v0=17BSP@0 "},
        {R"(<var twr="413" dfw="17"/>)", "v413=17BSP@0 "},
        {R"(<var twr="414" dfw="17"/>)", ""},
        {R"(<var twr="-1" dfw="17"/>)", ""},
        {R"(<var twr="1" dfw="17" boat="99"/>)", "v1=17BSP@99 "},
        {R"(<var twr="1" dfw="17" boat="100"/>)", ""},
        {R"(<var twr="1" dfw="17" boat="-1"/>)", ""},
        {R"(<var twr="1" dfw="17" boat="abc"/>)", "v1=17BSP@0 "},
        {R"(<VAR TWR=" 1" Dfw="17" colour="red"/>)", "v1=17BSP@0 "},
        {R"(<var twr="1" dfw="17"/><var twr="1" dfw="17"/>)", "v1=17BSP@0 v1=17BSP@0 "},
        {R"(<variable twr="1" dfw="17"/>)", ""},
        {R"(<p:var xmlns:p="urn:x" twr="1" p:dfw="17"/>)", "v1=17BSP@0 "},
        {R"(<a><b><var twr="1" dfw="17"><var twr="2" dfw="12"/></var></b></a>)", "v1=17BSP@0 v2=12HDG@0 "},
        {R"(<remote remote="1" twr="13"/>)", "r1=13@0 "},
        {R"(<remote twr="117" remote="0" damp="true" boat="7"/>)", "r0=117d@7 "},
        {R"(<remote remote="2" twr="13" damp="FALSE"/>)", "r2=13@0 "},
        {R"(<remote remote="2" twr="13" damp="no"/>)", "r2=13d@0 "},
        {R"(<remote remote="2" twr="13" damp=""/>)", "r2=13d@0 "},
        {R"(<remote remote="-2" twr="13"/>)", ""},
        {R"(<remote remote="32767" twr="13"/>)", ""},
        {R"(<remote twr="13"/>)", ""},
        {R"(<remote remote="2"/>)", ""},
        {R"(<remote remote="2" twr="13" boat="100"/>)", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.loaded, Loaded("<halyrig>" + row.element + "</halyrig>")) << row.element;
    }
}

TEST_F(MappingFileTest, AFaultKeepsWhatCameBefore) {
    const std::string good = R"(<var twr="1" dfw="17"/>)", later = R"(<var twr="2" dfw="12"/>)";
    const struct {
        std::string document, loaded;
    } rows[] = {
        {"<x>" + good + later + "</x>", "v1=17BSP@0 v2=12HDG@0 "},
        {"<x>" + good + "<oops " + later + "</x>", "v1=17BSP@0 "},
        {"<x>" + good + "</y>" + later + "</x>", "v1=17BSP@0 "},
        {"<x>" + good + "&nothing;" + later + "</x>", "v1=17BSP@0 "},
        {"<x>" + good, "v1=17BSP@0 "},
        {"<!DOCTYPE x><x>" + good + "</x>", ""},
        {"", ""},
        {"no document", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(row.loaded, Loaded(row.document)) << row.document;
    EXPECT_TRUE(LoadMapping(xml, folder.File("missing.xml"), catalogue).remoteRows.empty());
}

TEST_F(MappingFileTest, WithoutACatalogueOnlyRemotesLoad) {
    catalogue.clear();
    EXPECT_EQ("r1=13@0 ", Loaded(R"(<x><var twr="1" dfw="17"/><remote remote="1" twr="13"/></x>)"));
}

TEST_F(MappingFileTest, SavesTheSameBytesOnEverySystem) {
    Mapping mapping;
    for (const std::int32_t boat : {0, 2}) {
        MappingVar row = catalogue[0];
        row.channel = 13;
        row.boat = boat;
        mapping.varRows.push_back(row);
        MappingRemote remote;
        remote.channel = 117;
        remote.remote = 1 + boat;
        remote.boat = boat;
        remote.damp = boat / 2;
        mapping.remoteRows.push_back(remote);
    }
    mapping.varRows.push_back(catalogue[1]);  // no channel yet: left out
    mapping.remoteRows.push_back(MappingRemote{});
    folder.Write("halyrig.xml", std::string(5000, 'x'));
    EXPECT_TRUE(SaveMapping(xml, path, mapping));
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
    EXPECT_EQ("v13=12HDG@0 v13=12HDG@2 r1=117@0 r3=117d@2 ", Loaded(folder.Read("halyrig.xml")));
}

TEST_F(MappingFileTest, SavingWhereItCantFails) { EXPECT_FALSE(SaveMapping(xml, folder.File("missing/halyrig.xml"), {})); }

}  // namespace
}  // namespace twr::testing
