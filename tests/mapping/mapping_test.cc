// SPDX-License-Identifier: MIT
// The files that map Deckman's variables and remotes: its own list of variables, the mapping, and the two files of old.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/byte_source.h"
#include "base/wide_text.h"
#include "deckman/variable_file.h"
#include "mapping/legacy_import.h"
#include "mapping/mapping_file.h"
#include "mapping/mapping_text.h"
#include "platform/files.h"
#include "support/child_process.h"
#include "support/fakes.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

using namespace std::string_literals;

DeckmanVariable Variable(std::int32_t id, std::u16string name) {
    return {.dfwId = id, .dfwName = std::move(name), .dfwColumn3 = u"u", .dfwColumn4 = 4, .dfwColumn6 = 6};
}

// Each row as "channel=numberNAME@boat ", and as "channel>remote@boat ", a damped one with a d.
std::string Told(const Mapping& mapping) {
    std::ostringstream told;
    for (const MappingVar& row : mapping.varRows) {
        told << row.channel << "=" << row.dfwId << ToBytes(row.dfwName) << "@" << row.boat << " ";
        EXPECT_TRUE(row.dfwColumn3 == u"u" && row.dfwColumn4 == 4 && row.dfwColumn6 == 6) << "columns of " << ToBytes(row.dfwName);
    }
    for (const MappingRemote& row : mapping.remoteRows) {
        told << row.channel << ">" << row.remote << (row.damp ? "d" : "") << "@" << row.boat << " ";
        EXPECT_TRUE(row.lastChannel == kNoInt && row.lastValue == kNoValue) << "nothing has been sent to " << row.remote;
    }
    return told.str();
}

struct MappingTest : ::testing::Test {
    Mapping Load(const std::string& document) { return LoadMapping(xml, folder.Write("halyrig.xml", document), catalogue); }

    // Puts a file into Deckman's folder, in the order in which the file system gives them.
    void Put(std::u16string_view name, std::string bytes, bool locked = false) {
        fakes.files.push_back({JoinPath(JoinPath(u"/dfw", u"Data"), name), std::move(bytes), locked});
    }
    // The rows found, each as the file gives it but for column 5, and then TIMER's number if it has one.
    std::string Found() {
        const DeckmanCatalogue found = FindVariableFile(fakes, u"/dfw", copy);
        std::ostringstream told;
        for (const DeckmanVariable& row : found.rows) {
            told << row.dfwId << " " << ToBytes(row.dfwName) << " " << ToBytes(row.dfwColumn3) << " " << row.dfwColumn4 << " "
                 << row.dfwColumn6 << ", ";
        }
        if (found.timerVariableId != -1) told << "timer " << found.timerVariableId;
        return told.str();
    }
    std::string FoundIn(std::string bytes) {
        fakes.files.clear();
        Put(u"J_vars06.d", std::move(bytes));
        return Found();
    }

    const std::u16string copy = u"/data/jvars.twr";
    FakeFiles fakes;
    TempFolder folder;
    std::unique_ptr<System> system = MakeSystem({});
    Xml& xml = system->Core().xml;
    std::vector<DeckmanVariable> catalogue{Variable(0, u"ZERO"), Variable(12, u"HDG"), Variable(17, u"BSP"), Variable(17, u"TWIN"),
                                           Variable(40, u"bsp2")};
};

TEST_F(MappingTest, ElementsBecomeRows) {
    const std::pair<std::string, std::string> rows[] = {
        {R"(<var twr="1" dfw="17"/><var twr="1" dfw="17"/>)", "1=17BSP@0 1=17BSP@0 "},
        {R"(<var dfw="BSP" boat="3" twr="1"/><var twr="1" dfw="TWIN"/>)", "1=17BSP@3 1=17TWIN@0 "},
        {R"(<var twr="1" dfw="12abc" boat="abc"/>)", "1=12HDG@0 "},
        {R"(<var twr="0" dfw="17"/><var twr="413" dfw="17" boat="99"/>)", "0=17BSP@0 413=17BSP@99 "},
        {R"(<VAR TWR=" 1" Dfw="17" colour="red"/><p:var xmlns:p="urn:x" twr="2" p:dfw="12"/>)", "1=17BSP@0 2=12HDG@0 "},
        {R"(<a><b><var twr="1" dfw="17"><var twr="2" dfw="12"/></var></b></a>)", "1=17BSP@0 2=12HDG@0 "},
        {R"(<var twr="1" dfw="17"/><oops <var twr="2" dfw="12"/>)", "1=17BSP@0 "},
        {R"(<remote remote="1" twr="13"/><remote twr="117" remote="0" damp="true" boat="7"/>)", "13>1@0 117>0d@7 "},
        {R"(<remote remote="2" twr="13" damp="FALSE"/><remote remote="3" twr="13" damp=""/>)", "13>2@0 13>3d@0 "},
        {R"(<var twr="1" dfw="bsp"/><var twr="1" dfw="99"/><var twr="1" dfw=""/><var twr="1"/><var dfw="17"/>)", ""},
        {R"(<var twr="x" dfw="17"/><var twr="414" dfw="17"/><var twr="-1" dfw="17"/><variable twr="1" dfw="17"/>)", ""},
        {R"(<var twr="1" dfw="17" boat="100"/><var twr="1" dfw="17" boat="-1"/><remote remote="-2" twr="13"/>)", ""},
        {R"(<remote remote="32767" twr="13"/><remote twr="13"/><remote remote="2"/><remote remote="2" twr="13" boat="100"/>)", ""}};
    for (const auto& [elements, told] : rows) EXPECT_EQ(told, Told(Load("<x>" + elements + "</x>"))) << elements;
    catalogue.clear();
    EXPECT_EQ("13>1@0 ", Told(Load(R"(<x><var twr="1" dfw="17"/><remote remote="1" twr="13"/></x>)")));
    EXPECT_EQ("", Told(LoadMapping(xml, folder.File("missing.xml"), catalogue)));
}

// What else it tells, and where, stands with what the commands say.
TEST_F(MappingTest, TellsWhatItPassesOverOfARemote) {
    const std::tuple<std::string, Flaw, std::u16string> rows[] = {
        {"<remote remote='1' twr='1' colour='x'/>", Flaw::kUnknownAttribute, u"colour"},
        {"<remote remote='-2' twr='1'/>", Flaw::kNoSuchRemote, u"-2"}};
    for (const auto& [element, flaw, text] : rows) {
        CollectedFindings heard;
        LoadMapping(xml, folder.Write("halyrig.xml", "<x>" + element + "</x>"), catalogue, &heard);
        ASSERT_EQ(1u, heard.found.size()) << element;
        EXPECT_EQ(std::pair(flaw, text), std::pair(heard.found[0].flaw, heard.found[0].text));
    }
}

TEST_F(MappingTest, SavesTheSameBytesOnEverySystem) {
    const Mapping mapping = Load(R"(<x><var twr="13" dfw="HDG"/><var twr="13" dfw="12" boat="2"/>)"
                                 R"(<remote twr="117" remote="1"/><remote twr="117" remote="3" damp="true" boat="2"/></x>)");
    EXPECT_TRUE(SaveMapping(system->Core().files, xml, folder.Write("halyrig.xml", std::string(5000, 'x')), mapping));
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
}

// A disk that is full: what is begun can't be finished.
struct FullDisk : NoXml {
    struct Writer : XmlWriter {
        bool StartElement(std::u16string_view) override { return true; }
        bool Attribute(std::u16string_view, std::u16string_view) override { return true; }
        bool Comment(std::u16string_view) override { return true; }
        bool EndElement() override { return true; }
        bool Finish() override { return false; }
    };
    std::unique_ptr<XmlWriter> OpenWriter(std::u16string_view) override { return std::make_unique<Writer>(); }
};

TEST_F(MappingTest, TheFormerFileIsKept) {
    FullDisk full;
    Files& files = system->Core().files;
    const std::string whole = "<x></x>\r\n", wide("<\0/\0x\0>\0", 8);
    const Mapping incomplete{.varRows = {{catalogue[1]}}, .remoteRows = {{}}};  // rows without a channel are left out
    // then, bakThen: an empty `then` is the new mapping
    const std::tuple<Xml&, std::string, std::string, std::string, std::string> rows[] = {
        {xml, whole, "older", "", whole}, {xml, wide, "older", "", wide},       {xml, "<x><var/></", "older", "", "older"},
        {xml, "", "older", "", "older"},  {full, whole, "older", whole, whole}, {full, "<halyrig", whole, "<halyrig", whole}};
    for (const auto& [disk, former, bak, then, bakThen] : rows) {
        SCOPED_TRACE(::testing::Message() << former << " with " << bak);
        folder.Write("halyrig.xml.bak", bak);
        EXPECT_EQ(then.empty(), SaveMapping(files, disk, folder.Write("halyrig.xml", former), incomplete));
        const std::string now = folder.Read("halyrig.xml");
        EXPECT_TRUE(then.empty() ? now.ends_with("ids-->\r\n  <!--B&G remote ids are 1-n-->\r\n</halyrig>") : now == then) << now;
        EXPECT_EQ(bakThen, folder.Read("halyrig.xml.bak"));
        EXPECT_EQ(2u, files.List(folder.Text(), u"*").size());
    }
    EXPECT_FALSE(SaveMapping(files, xml, folder.File("missing/halyrig.xml"), {}));
    for (const char* taken : {"halyrig.xml.bak", "halyrig.xml.bak.new"}) {
        std::filesystem::remove(folder.Path() / "halyrig.xml.bak");
        folder.Write(std::string(taken) + "/x", "");
        EXPECT_FALSE(SaveMapping(files, xml, folder.Write("halyrig.xml", whole), {})) << taken;
        EXPECT_EQ(whole, folder.Read("halyrig.xml")) << "without a copy it is not touched";
        std::filesystem::remove_all(folder.Path() / taken);
    }
}

TEST_F(MappingTest, SavesIntoTheFileItself) {
    const std::filesystem::path link = folder.Path() / "halyrig.xml", real = folder.Path() / "real.xml";
    folder.Write("real.xml", "<x></x>");
    std::filesystem::create_hard_link(real, folder.Path() / "other.xml");
    std::error_code none;
    std::filesystem::create_symlink(real, link, none);
    if (none) GTEST_SKIP() << "this machine makes no symbolic links";
    EXPECT_TRUE(SaveMapping(system->Core().files, xml, folder.File("halyrig.xml"), {}));
    EXPECT_TRUE(std::filesystem::is_symlink(link) && std::filesystem::equivalent(real, folder.Path() / "other.xml"));
    EXPECT_TRUE(folder.Read("other.xml").ends_with("</halyrig>"));
    EXPECT_EQ("<x></x>", folder.Read("halyrig.xml.bak"));
}

TEST_F(MappingTest, AWriteProtectedFileAndItsCopyStayAsTheyAre) {
    folder.Write("halyrig.xml", "<x></x>");
    folder.Write("halyrig.xml.bak", "older");
    std::filesystem::permissions(folder.Path(), std::filesystem::perms::all);
    std::filesystem::permissions(folder.Path() / "halyrig.xml", std::filesystem::perms(0444));
    {
        const OrdinaryUser user(folder);
        if (std::ofstream(folder.Path() / "halyrig.xml", std::ios::app)) GTEST_SKIP() << "this user may write everything";
        EXPECT_FALSE(SaveMapping(system->Core().files, xml, folder.File("halyrig.xml"), {}));
    }
    EXPECT_EQ("<x></x>", folder.Read("halyrig.xml"));
    EXPECT_EQ("older", folder.Read("halyrig.xml.bak"));
    EXPECT_EQ(2u, system->Core().files.List(folder.Text(), u"*").size());
}

TEST_F(MappingTest, LinesOfTheOldFilesBecomeRows) {
    EXPECT_FALSE(ImportLegacyVars(fakes, u"/old.csv", catalogue)) << "there is no file";
    EXPECT_TRUE(ImportLegacyRemotes(fakes, u"/old.csv").empty());
    const std::pair<std::string, std::string> vars[] = {
        {"12,5,7\r\n17,1,0\r\n12,5\n12,5,\n", "5=12HDG@7 1=17BSP@0 5=12HDG@0 5=12HDG@0 "},
        {" 12, 5, 7 and more\n12,5,7,8,9\n0,413,99", "5=12HDG@7 5=12HDG@7 413=0ZERO@99 "},
        {"\n\nchannel,variable\n99,5\n12,5\n;12,6\n", "5=12HDG@0 "},
        {"\uFEFF12,5\n17,1\n", "1=17BSP@0 "},
        {"4294967308,5", "5=12HDG@0 "},
        {"12 ,5\n12;5\n12", "failed"},
        {"12,0\n12,414\n12,-1\n12,5,100\n12,5,-1\n13,5", "failed"}};
    for (const auto& [bytes, told] : vars) {
        fakes.files = {{u"/old.csv", bytes}};
        const auto rows = ImportLegacyVars(fakes, u"/old.csv", catalogue);
        EXPECT_EQ(told, rows ? Told({*rows, {}}) : "failed") << bytes;
    }
    const std::pair<std::string, std::string> remotes[] = {{"0,0,0,1\n4,13,2,0,9\r\n1,117,0,-3\r\n", "0>1d@0 13>5@2 117>2d@0 "},
                                                           {"0,13,0\n0,414,0,1\n0,-1,0,1\n0,13,100,1\n0,13,-1,1\nx,13,0,1\n", ""},
                                                           {"2147483647,13,0,0\n", "13>-2147483648@0 "}};
    for (const auto& [bytes, told] : remotes) {
        fakes.files = {{u"/old.csv", bytes}};
        EXPECT_EQ(told, Told({{}, ImportLegacyRemotes(fakes, u"/old.csv")})) << bytes;
    }
    fakes.files = {{u"/old.csv", "\uFEFF12,5\n"}};
    CollectedFindings heard;
    ImportLegacyVars(fakes, u"/old.csv", catalogue, &heard);
    EXPECT_TRUE(heard.found.size() == 1 && heard.found[0].flaw == Flaw::kByteOrderMark);
}

TEST_F(MappingTest, TheSectionOfTheVariableFileIsReadUpToItsEnd) {
    const std::string row1 = "1 BSP kt 1 2 3\n", row2 = "2 AWA d 4 5 6\n", one = "1 BSP kt 1 3, ";
    const std::pair<std::string, std::string> rows[] = {
        {"\r\n1 BSP kt 1 2 3\r\n\r\n  2 AWA d 4 5 6\t\r\n", one + "2 AWA d 4 6, "},
        {row2 + row2 + row1, "2 AWA d 4 6, 2 AWA d 4 6, "},
        {"-1 BSP kt 1 2 3\n" + row1, ""},
        {"0 BSP kt 1 2 3 7 8 junk\n90 AWA deg 1 2 3", "0 BSP kt 1 3, 90 AWA deg 1 3, "},
        {"5 TIMER s 1 2 3\n6 AWA d 1 2 3\n7 TIMER s 1 2 3\n", "6 AWA d 1 3, timer 7"},
        {"5 timer s 1 2 3\n", "5 timer s 1 3, "},
        {"7 D\xE9pth m 40000 5 -3 9\n", "7 D\xE9pth m -25536 -3, "},  // 16 bits with their sign
        {"5 ABCDEFGHIJKLMNO 1234567 1 2 3\n6 ABCDEFGHIJKLMNOP x 1 2 3\n", "5 ABCDEFGHIJKLMNO 1234567 1 3, "},
        {"5 ABCDEFGHIJKLMNOPQ 1 2 3 4\n", "5 ABCDEFGHIJKLMNO PQ 1 3, "},  // the rest of a name is column 3
        {"5 A 12345678 2 3 4\n", "5 A 1234567 8 3, "},
        {"1 BSP kt 1 2 3" + std::string(2 * kLongestLine, ' ') + "!\n" + row2, one + "2 AWA d 4 6, "},
        {std::string("1 B\0SP kt 1 2 3\n", 16) + row2, ""}};
    for (const auto& [bytes, told] : rows) EXPECT_EQ(told, FoundIn("[variables]\n" + bytes)) << bytes;
    for (const std::string& end : {"[other]"s, "# a comment"s, "2 AWA deg 4 5"s, "\x1A"s, std::string(5000, '7')})
        EXPECT_EQ(one, FoundIn("[variables]\n" + row1 + end + "\n" + row2)) << end;
    for (const std::string& before : {"; notes\n[units]\n9 X y 1 1 1\n\n[variables]\n"s, " \t[variables]\v\f\r\n"s,
                                      std::string(3 * kLongestLine, '!') + "\n[variables]\n"})
        EXPECT_EQ(one, FoundIn(before + row1)) << before.substr(0, 40);
    for (const std::string before : {"", "[Variables]\n", "[variables] \x01\n", "\uFEFF[variables]\n"})
        EXPECT_EQ("", FoundIn(before + row1)) << before;
    FoundIn("[variables]\n" + row1 + "[other]\n9");
    CollectedFindings heard;
    FindVariableFile(fakes, u"/dfw", copy, &heard);
    EXPECT_TRUE(heard.found.empty()) << "another section is no fault";
}

TEST_F(MappingTest, TheFirstVariableFileWithRowsCountsIfNeedBeFromACopy) {
    const std::string empty = "[variables]\n", good = empty + "1 BSP kt 1 2 3\n", other = empty + "2 AWA kt 1 2 3\n";
    const std::string timerOnly = empty + "3 TIMER s 1 2 3\n", goodFound = "1 BSP kt 1 3, ";
    const std::pair<std::vector<std::pair<std::u16string, std::string>>, std::string> rows[] = {
        {{{u"J_vars05.d", other}, {u"J_vars06.d", good}}, goodFound},
        {{{u"J_vars07.d", good}, {u"J_vars05.d", other}}, goodFound},
        {{{u"J_vars07.d", empty}, {u"J_vars06.d", empty}, {u"J_vars01.d", good}, {u"J_vars02.d", other}}, goodFound},
        {{{u"J_vars.d", good}}, goodFound},
        {{{u"J_var06.d", good}, {u"J_vars06.dat", good}}, ""},
        {{{u"J_vars06.d", timerOnly}, {u"J_vars08.d", good}}, goodFound},
        {{{u"J_vars06.d", timerOnly}}, "timer 3"}};
    for (const auto& [files, found] : rows) {
        fakes.files.clear();
        for (const auto& [name, bytes] : files) Put(name, bytes);
        EXPECT_EQ(found, Found()) << ToUtf8(files[0].first) << " of " << files.size();
    }
    fakes.files.clear();
    Put(u"J_vars06.d", good, true);
    fakes.files.push_back({copy, "an older copy"});
    EXPECT_EQ(goodFound, Found());
    EXPECT_FALSE(fakes.Exists(copy));
    fakes.copiesFail = true;
    fakes.removed.clear();
    EXPECT_EQ("", Found());
    EXPECT_FALSE(fakes.removed.empty()) << "removed even when the copying failed";
}

// The text of the mapping, changed element by element.

std::string Added(const std::string& text, const char* kind) {
    const auto elements = FindElements(text);
    return elements ? WithElement(text, *elements, kind, "<NEW/>") : "refused";
}

// Without every element of the name `gone`.
std::string Removed(const std::string& text) {
    const auto elements = FindElements(text);
    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < elements->size(); ++i) {
        if (LocalName((*elements)[i]) != "gone") continue;
        if (!IsRemovable(text, *elements, i)) return "refused";
        indices.push_back(i);
    }
    return WithoutElements(text, *elements, indices);
}

TEST(MappingTextTest, AnAddedLineStandsBehindThoseOfItsKind) {
    const std::vector<const char*> rows[] = {
        {"var", "<r>\n  <var/>\n  <remote/>\n</r>", "<r>\n  <var/>\n  <NEW/>\n  <remote/>\n</r>"},
        {"var", "<r>\r\n\t<VAR a='>'/>\r\n</r>\r\n", "<r>\r\n\t<VAR a='>'/>\r\n\t<NEW/>\r\n</r>\r\n"},
        {"var", "<r>\n <p:var></p:var> <!-- a -->  <!--b-->\n</r>", "<r>\n <p:var></p:var> <!-- a -->  <!--b-->\n <NEW/>\n</r>"},
        {"var", "<r>\n <var/> <!-- two\nlines -->\n</r>", "<r>\n <var/>\n <NEW/> <!-- two\nlines -->\n</r>"},
        {"var", "<r>\n <var/> <x/>\n</r>", "<r>\n <var/>\n <NEW/> <x/>\n</r>"},
        {"var", "<r><var/><remote/></r>", "<r><var/><NEW/><remote/></r>"},
        {"var", "<r>\n<!-- <var/> --><![CDATA[<var/>]]><?var <var/> ?>\n</r>",
         "<r>\n<!-- <var/> --><![CDATA[<var/>]]><?var <var/> ?>\n  <NEW/>\n</r>"},
        {"remote", "<r>\n    <var/>\n</r>", "<r>\n    <var/>\n    <NEW/>\n</r>"},
        {"remote", "<?xml?>\r\n<r></r>", "<?xml?>\r\n<r>\r\n  <NEW/>\r\n</r>"},
        {"remote", "\xEF\xBB\xBF<r a=\"/>\" />", "\xEF\xBB\xBF<r a=\"/>\">\n  <NEW/>\n</r>"},
        {"var", "<var/>", "<var>\n  <NEW/>\n</var>"},
        {"var", "<!DOCTYPE r><r/>", "refused"},
        {"var", "<r><var></r>", "refused"},
        {"var", "<r></r></r>", "refused"},
        {"var", "<r><!-- ", "refused"},
    };
    for (const auto& row : rows) EXPECT_EQ(row[2], Added(row[1], row[0])) << row[1];
}

TEST(MappingTextTest, ARemovedElementTakesOnlyItsOwnLine) {
    const std::pair<const char*, const char*> rows[] = {
        {"<r>\n  <gone/>\n  <var/>\n</r>", "<r>\n  <var/>\n</r>"},
        {"<r>\r\n  <gone\r\n a=''> </gone> \r\n</r>", "<r>\r\n</r>"},
        {"<r>\n  <gone/> <!-- why -->\n</r>", "<r>\n   <!-- why -->\n</r>"},
        {"<r>\n  <gone/> <gone/>\n</r>", "<r>\n</r>"},
        {"<r><gone/><var/><gone/></r>", "<r><var/></r>"},
        {"<r><gone>text</gone></r>", "refused"},
        {"<r><gone><!-- why --></gone></r>", "refused"},
        {"<gone/>", "refused"},
    };
    for (const auto& [text, left] : rows) EXPECT_EQ(left, Removed(text)) << text;
}

TEST(MappingTextTest, ANameIsWrittenInAsciiAlone) {
    const std::vector<DeckmanVariable> list = {Variable(2, u"A&<\">\u00E9")};
    MappingVar row{list[0]};
    row.channel = 13;
    EXPECT_EQ("<var twr=\"13\" dfw=\"A&#38;&#60;&#34;&#62;&#233;\" />", VarText(row, list));
}

}  // namespace
}  // namespace twr::testing
