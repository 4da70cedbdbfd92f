// SPDX-License-Identifier: MIT
#include <filesystem>
#include <map>
#include <random>

#include "base/wide_text.h"
#include "config/bridge_settings.h"
#include "deckman/variable_file.h"
#include "halyrigctl/ctl_fixture.h"
#include "halyrigctl/failing_files.h"
#include "mapping/mapping_file.h"

namespace twr::testing {
namespace {

constexpr const char* kPath = "ProgramData/Tidewright/instruments/halyrig.xml";
constexpr const char* kBak = "ProgramData/Tidewright/instruments/halyrig.xml.bak";
constexpr const char* kVariables = "[variables]\n1 BSP kn 2 0 1\n2 HDG degT 0 0 1\n3 TWD degT 0 0 1\n12 HEADING deg 0 0 1\n";
constexpr const char* kMapped =
    "<?xml version=\"1.0\"?>\n<halyrig>\n  <!-- one -->\n  <var twr=\"13\" dfw=\"HDG\" />  <!-- two -->\n"
    "  <note>kept</note>\n  <var twr=\"9\" dfw=\"course\" x=\"1\"/>\n  <remote remote=\"1\" twr=\"117\"/>\n  <!-- three -->\n"
    "</halyrig>\n<!-- four -->\n";

struct MapTest : TimedCtlTest {
    MapTest() {
        files = &failing;
        test.folder.Write("dfw/Data/J_vars06.d", kVariables);
        test.folder.Write("ProgramData/any", "");
        WriteSettings(Core().registry, {.dfwFolder = u" " + test.folder.File("dfw") + u"\t"});
    }
    // New files that have not taken their place.
    std::vector<std::u16string> LeftOver() {
        return Core().files.List(test.folder.File("ProgramData/Tidewright/instruments"), u"*.new");
    }
    std::string File() { return test.folder.Read(kPath); }
    Mapping Rows() {
        const auto list = FindVariableFile(Core().files, test.folder.File("dfw"), {});
        return LoadMapping(Core().xml, test.folder.File(kPath), list.rows);
    }
    FailingFiles failing{test.system->Core().files};
};

TEST_F(MapTest, LeavesAFileAloneThatItCanNotChangeSafely) {
    using namespace std::string_literals;
    const std::pair<std::string, const char*> refused[] = {
        {"\xFF\xFE" + Utf16Bytes(u"<r/>", false), "is not in UTF-8"},
        {"<?xml version='1.0' encoding='ISO-8859-1'?><r a='\xE9'/>", "another encoding than UTF-8"},
        {"<r>\n<var></r>", "line 2, column "},
        {"<!DOCTYPE r><r/>", "line 1, column "},
        {"<r a='\xE9'/>", "it is not XML"}};
    for (const auto& [text, why] : refused) {
        test.folder.Write(kPath, text);
        for (const char* command : {"map add HDG 13", "map remove HDG", "map add-remote 1 1"})
            ExpectIn(Said(command, 1), {"halyrig.xml can't be changed by command: ", why});
        EXPECT_EQ(text, File()) << why;
    }
    EXPECT_TRUE(LeftOver().empty());
    for (const std::string text : {"\xEF\xBB\xBF<r a='\u00E9'/>", "<?xml version='1.0' encoding='ISO-8859-1'?><r/>"}) {
        test.folder.Write(kPath, text);
        Said("map add HDG 13");
        EXPECT_EQ(text.substr(0, text.size() - 2) + ">\n  <var twr=\"13\" dfw=\"HDG\" />\n</r>", File());
    }
}

TEST_F(MapTest, ManyChangesLoseNothingElse) {
    test.folder.Write(kPath, kMapped);
    Said("map remove HDG");
    Said("map remove-remote 1");
    const char* names[] = {"BSP", "HDG", "TWD", "HEADING"};
    std::map<std::pair<int, int>, std::string> fed;
    std::map<int, int> shown;
    std::mt19937 random(7);
    const auto below = [&](int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); };
    for (int step = 0; step < 200; ++step) {
        const int channel = 1 + below(6), boat = below(3), remote = 1 + below(5);
        const std::string name = names[below(4)], onBoat = std::to_string(channel) + " --boat " + std::to_string(boat);
        switch (below(4)) {
            case 0:
                Said("map add " + name + " " + onBoat, fed.try_emplace({channel, boat}, name).second ? 0 : 1);
                break;
            case 1:
                Said("map remove " + onBoat, fed.erase({channel, boat}) ? 0 : 1);
                break;
            case 2:
                Said("map add-remote " + std::to_string(remote) + " " + std::to_string(channel),
                     shown.try_emplace(remote, channel).second ? 0 : 1);
                break;
            default:
                Said("map remove-remote " + std::to_string(remote), shown.erase(remote) ? 0 : 1);
        }
        const Mapping rows = Rows();
        std::map<std::pair<int, int>, std::string> fedNow;
        std::map<int, int> shownNow;
        for (const MappingVar& row : rows.varRows) fedNow[{row.channel, row.boat}] = ToUtf8(row.dfwName);
        for (const MappingRemote& row : rows.remoteRows) shownNow[row.remote] = row.channel;
        ASSERT_TRUE(fed == fedNow && shown == shownNow) << step << "\n" << File();
        ASSERT_EQ(fed.size() + shown.size(), rows.varRows.size() + rows.remoteRows.size()) << step;
        const std::string text = File();
        for (const char* kept : {"  <!-- one -->\n", "<!-- two -->\n  <note>kept</note>\n",
                                 "<var twr=\"9\" dfw=\"course\" x=\"1\"/>\n", "  <!-- three -->\n", "</halyrig>\n<!-- four -->\n"})
            ASSERT_NE(std::string::npos, text.find(kept)) << step << " " << kept << "\n" << text;
    }
}

TEST_F(MapTest, AtEveryMomentTheOldOrTheNewFileIsWhole) {
    test.folder.Write(kPath, kMapped);
    Said("map add BSP 1");
    const std::string changed = File();
    for (const bool stopped : {false, true}) {
        failing.stopped = stopped;
        int tried = 0;
        for (std::string said = "halyrigctl: "; said.starts_with("halyrigctl: "); ++tried) {
            test.folder.Write(kPath, kMapped);
            test.folder.Write(kBak, "older");
            failing.calls = 0;
            failing.failing = tried;
            std::istringstream words("map add BSP 1");
            console.written.clear();
            const Status status = RunCommandLine(*this, {std::istream_iterator<std::string>(words), {}});
            said = console.written;
            EXPECT_EQ(said.starts_with("halyrigctl: ") ? kFailed : kDone, status);
            const std::string bak = test.folder.Read(kBak);
            EXPECT_EQ(status == kDone ? changed : kMapped, File()) << tried;
            EXPECT_TRUE(bak == "older" || bak == kMapped) << tried << bak;
            EXPECT_TRUE(status != kDone || bak == kMapped);
            EXPECT_TRUE((stopped && status != kDone) || LeftOver().empty()) << tried;
            if (status != kDone) ExpectIn(said, {"; nothing is changed\n"});
            ASSERT_LT(tried, 20);
        }
        EXPECT_LE(4, tried) << "each operation has failed once";
    }
}

TEST_F(MapTest, OneChangeAtATime) {
    test.folder.Write(kPath, kMapped);
    const std::u16string path = test.folder.File(kPath);
    console.goOn = [] { return true; };
    auto lock = Core().files.Lock(path);
    ExpectIn(Said("map add BSP 1", 1), {"another halyrigctl is changing ", "halyrig.xml; try again"});
    EXPECT_LE(5000, console.waited);
    EXPECT_EQ(kMapped, File());
    lock.reset();
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(std::filesystem::path(path).parent_path()), {})) << "litter";
    failing.lockedFor = 3;
    ExpectIn(Said("map add BSP 1"), {"BSP feeds"});
    const std::string changed = File();
    failing.lockedFor = 1000;
    console.goOn = [] { return false; };
    Said("map add TWD 6", 1);
    failing.lockedFor = 0;
    failing.beforeRename = [&] { test.folder.Write(kPath, kMapped); };
    ExpectIn(Said("map add TWD 6", 1), {"has changed ", " meanwhile; try again; nothing is changed"});
    EXPECT_EQ(kMapped, File());
    EXPECT_TRUE(LeftOver().empty());
}

}  // namespace
}  // namespace twr::testing
