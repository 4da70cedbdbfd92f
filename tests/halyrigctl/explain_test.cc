// SPDX-License-Identifier: MIT
// For each reason the real bridge over the stand-in is brought to it, and the reason is seen first, and no other.
#include <cmath>
#include <filesystem>

#include "bridge/bridge_fixture.h"
#include "halyrigctl/ctl_fixture.h"
#include "platform/files.h"

namespace twr::testing {
namespace {

class ExplainTest : public BridgeTest {
protected:
    ExplainTest() {
        machine.libraries = &test.system->GetLibraries();
        machine.console = &console;
    }

    // A set-up that is right, in folders of its own: a library at the same place would not be loaded again.
    void SetUpAll(int row) {
        folder = "Deckman" + std::to_string(row);
        stored = Settings{.dfwFolder = test.folder.File(folder), .depthInFeet = true};
        InstallLibrary(BytesOf(STAND_IN_LIBRARY));
        test.folder.Write(folder + "/Data/J_vars06.d", BytesOf(STAND_IN_VARIABLES));
        Recording("$IIVHW,,T,,M,6.5,N,,K\n$IIHDT,90,T\n$IIMWV,30,R,12,N,A\n$IIROT,2,A\n");
        MappingXml(kLines);
        test.folder.Write("ProgramData/Tidewright/config/alternate.csv", "0,0,0,1,1,1,1,1,1,1\n");
        console.goOn = [this] { return host.Tick(), true; };
        atStart = [] {};
    }
    void InstallLibrary(const std::string& bytes) {
        test.folder.Write(folder + "/ShDfW2" + std::string(kLibrarySuffix.begin(), kLibrarySuffix.end()), bytes);
    }
    void Recording(const std::string& lines) { test.folder.Write(folder + "/recording.nmea", lines); }
    // The library has not all of its functions.
    void Lacks(const char* function) {
        deckman.Install(stored->dfwFolder);
        deckman.missing = {function};
        machine.libraries = &deckman;
    }
    void Gives(int variable, float value) {
        Lacks("");
        deckman.variables[variable] = value;
    }
    std::string Explained(const std::string& typed) { return Answered("explain " + typed); }
    std::string Answered(const std::string& typed) {
        std::istringstream words(typed);
        console.written.clear();
        console.forgets = false;
        RunCommandLine(machine, {std::istream_iterator<std::string>(words), {}});
        return console.written;
    }
    void Publish(ChannelId channel, double value, BoatSlot boat = 0, double secondsAgo = 0.0) {
        other->SetChannel(channel, boat, value, machine.clock.Days() - secondsAgo / 86400);
    }
    void Mark(ChannelId channel, std::size_t byte) { record.Set<std::uint8_t>(RecordBytes::Channel(channel) + byte, 1); }

    static constexpr const char* kLines =
        "<var twr='1' dfw='BSP'/>\n<var twr='13' dfw='HDG'/><var twr='3' dfw='AWS'/><var twr='17' dfw='DEPTH'/>"
        "<remote remote='1' twr='1'/>";
    FakeConsole console;
    std::string folder;
    std::function<void()> atStart;
};

TEST_F(ExplainTest, NamesTheFirstBrokenLinkAndNoOther) {
    struct Row {
        const char* asked;
        const char* reason;
        std::function<void()> before = [] {};  // the bridge starts
        std::function<void()> during = [] {};
    };
    const auto remap = [&](const char* lines) { return [this, lines] { MappingXml(lines); }; };
    const auto choose = [&](const std::u16string& path) { return [this, path] { stored->dfwFolder = path; }; };
    const std::vector<Row> rows = {
        {"BSP", "all is well"},
        {"117", "all is well"},
        {"AWA", "all is well", [] {}, [&] { Publish(kAwa, 30.0); }},
        // the bridge and its library
        {"BSP", "the bridge stands still", [] {}, [&] { console.goOn = [] { return true; }; }},
        {"BSP", "nowhere does not exist", choose(test.folder.File("nowhere"))},
        {"BSP", "is no library but another kind of file", [&] { InstallLibrary("Read me\n"); }},
        {"BSP", "could not load Deckman's library when it looked", [&] { InstallLibrary(""); },
         [&] { InstallLibrary(BytesOf(STAND_IN_LIBRARY)); }},
        {"BSP", "has no function Usr_Read", [&] { InstallLibrary(BytesOf(LOADABLE)); }},
        {"Lat", "has no function Usr_GetPosition", [&] { Lacks("Usr_GetPosition"); }, [&] { record.SetInt(6, 3); }},
        {"BSP", "no functions Usr_SetISData", [&] { Lacks("Usr_SetISData"); }},
        {"Lat", "position source (Sys_i6) is 3, and it is 6"},
        // the variables and the mapping
        {"BSP", "no file of variables", [&] { test.folder.Write(folder + "/Data/J_vars06.d", "[variables]\n"); }},
        {"HDG", "xml:1: Deckman's list has no variable hdg", remap("<var twr='13' dfw='hdg'/>")},
        {"TWS", "feeds it\n  to do       'halyrigctl map add TWS 5' adds one"},
        {"RoT", "set Sys_b27 to 1 in the registry to have it computed from HDG (13)"},
        {"HDG", "but line 1: there is no channel 1300, and 1 more fault", remap("<var twr='1300' dfw='HDG'/><var/>")},
        {"BSP", "there is no mapping", [&] { std::filesystem::remove(test.folder.Path() / kMappingFile); }},
        {"TWS", "which the bridge has not read yet", [] {}, remap("<var twr='5' dfw='TWS'/>")},
        // Deckman and the boxes
        {"HDG", "Deckman has never given a value for its variable HDG", [&] { Recording("$IIVHW,,T,,M,6.5,N,,K\n"); }},
        {"Depth", "Deckman gives no value now for its variable DEPTH\n  to do       a depth of 9987 m"},
        {"HDG", "no variation (MagVar, channel 93) to make", [&] { stored->degreesTrue = true; }},
        {"AWS", "Deckman gives 200, outside the channel's range of 0 to 150", [&] { Recording("$IIMWV,30,R,200,N,A\n"); }},
        {"AWS", "not a number (NaN) for its variable AWS: a display shows NAN,", [&] { Gives(3, NAN); }},
        {"AWS", "an infinite value for its variable AWS: a display shows -0,", [&] { Gives(3, INFINITY); }},
        {"172", "an infinite value for its variable AWS: a display shows INF,",
         [&] { Gives(3, -INFINITY), MappingXml("<var twr='172' dfw='AWS'/>"); }},
        {"TWA", "its source gives what is not a number", [] {}, [&] { Publish(kTwa, NAN); }},
        // the suite
        {"BSP", "the channel is blocked", [] {}, [&] { Mark(kBsp, 1); }},
        {"BSP", "the channel is held", [] {}, [&] { Mark(kBsp, 4), record.SetFlag(52, true); }},
        {"RoT --boat 5", "boat 5 has no place for this channel"},
        {"TWA", "its source gives no value", [] {}, [&] { Publish(kTwa, kNoValue); }},
        {"TWA", "it is stale: last published 20.", [] {}, [&] { Publish(kTwa, 30.0, 0, 20.0); }},
        {"Cog", "and the limit is 10 s\n  to do       see whether the program that gives it still runs; Deckman", [] {},
         [&] { Publish(kCog, 30.0, 0, 20.0); }},
        {"HDG", "bearings are shown true", [] {}, [&] { record.SetFlag(3, false); }},
        {"Depth", "the unit chosen for it does not exist", [&] { Recording("$SDDPT,3.0,0\n"); }, [&] { record.SetInt(1, 7); }},
        {"118", "it stands for no channel now"},
        // the displays
        {"BSP", "and no program of the suite damps it", remap("<var twr='1' dfw='BSP'/><remote remote='2' twr='1' damp='true'/>")},
        // the record was made before; what is stored stays for the next row
        {"Lat", "made before the position source", [] {},
         [&] { Stored().Write(u"Software\\Tidewright\\core", u"Sys_i6", DwordValue(3)); }},
        {"118", "made before alternate.csv was changed", [] {},
         [&] { test.folder.Write("ProgramData/Tidewright/config/alternate.csv", "1,0,0,1,1,1,1,1,1,1\n"); }},
        {"TWS", "made before the data folder became", [] {},
         [&] {
             test.folder.Write("Ashore/x", "");
             Stored().Write(u"Software\\Tidewright\\core", u"DataFolder", StringValue(test.folder.File("Ashore")));
         }},
    };
    int number = 0;
    for (const auto& [asked, reason, before, during] : rows) {
        SCOPED_TRACE(reason);
        SetUpAll(++number);
        before();
        std::string said;
        Run([&, theSuite = during, typed = asked] {
            host.Tick(2);
            theSuite();
            said = Explained(typed);
        });
        machine.libraries = &test.system->GetLibraries();
        EXPECT_NE(std::string::npos, said.substr(0, said.find("\n  suite")).find(reason)) << said;
        EXPECT_EQ(reason == std::string("all is well"), said.find("\nx ") == said.npos) << said;
        EXPECT_EQ(said.find("\nx "), said.rfind("\nx ")) << said;
    }
    ExpectIn(Explained("BSP"), {"BSP (1): the bridge is not running\n  to do       start"});
}

// Of one value at one moment every command gives the same unit, state and reason.
TEST_F(ExplainTest, SaysTheSameInEveryVoice) {
    struct Row {
        const char *channel, *unit, *state, *reason, *words;
        std::function<void()> during = [] {};
        bool ticks = true;
        const char* recording = "$IIVHW,,T,,M,6.5,N,,K\n$IIHDT,90,T\n";
    };
    const std::vector<Row> rows = {
        {"BSP", "kn", "fresh", nullptr, ""},
        {"HDG", "deg", "fresh", nullptr, ""},
        {"HDG", "deg", "missing", "no-variation-shown", "bearings are shown true", [&] { record.SetFlag(3, false); }},
        {"TWA", "deg", "stale", "stale", "it is stale: last published 20.", [&] { Publish(kTwa, 30.0, 0, 20.0); }},
        {"BSP", "kn", "stale", "stands-still", "the bridge stands still", [&] { Publish(kBsp, 6.5, 0, 20.0); }, false},
        {"TWS", "kn", "refused", "blocked", "the channel is blocked", [&] { Mark(kTws, 1); }},
        {"AWS", "kn", "refused", "outside-range", "Deckman gives 200, outside", [] {}, true, "$IIMWV,30,R,200,N,A\n"},
        {"AWS", "kn", "missing", "never-a-reading", "Deckman has never given a value"},
        {"Sog", "kn", "missing", "position-source", "(Sys_i6) is 3, and it is 6"},
        {"Rudder", "deg", "missing", "not-mapped", "no line of the mapping"},
        {"118", nullptr, "missing", "stands-for-none", "it stands for no channel now"}};
    int number = 100;
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.channel) + " " + row.words);
        SetUpAll(++number);
        Recording(row.recording);
        const auto word = [](const char* key, const char* value) {
            return std::string("\"") + key + "\":" + (value ? std::string("\"") + value + "\"" : "null");
        };
        Run([&, name = std::string(row.channel)] {
            host.Tick(2);
            row.during();
            if (!row.ticks) console.goOn = [] { return true; };
            ExpectIn(Answered("get " + name + " --json"), {word("valueUnit", row.unit).c_str(), word("state", row.state).c_str(),
                                                           word("reason", row.reason).c_str(), row.words});
            ExpectIn(Answered("get " + name), {row.words, row.reason ? "has no value: " : row.unit});
            ExpectIn(Answered("explain " + name + " --json"), {word("reason", row.reason).c_str(), row.words});
            ExpectIn(Answered("explain " + name), {row.reason ? row.words : "all is well"});
            ExpectIn(Answered("watch --snapshots 1 " + name), {row.state, row.words});
            const std::string streamed = Answered("stream --seconds 1 --channels " + name);
            // A stream gives what the record holds, and a magnetic bearing needs no variation.
            const bool held = !row.reason || row.reason == std::string("no-variation-shown");
            EXPECT_EQ(held, streamed.find(word("unit", row.unit)) != streamed.npos) << streamed;
        });
    }
}

TEST_F(ExplainTest, TellsALibraryThatDoesNotReturnFromOneThatIsSlow) {
    SetUpAll(0);
    Gives(1, 6.5f);
    Run([&] {
        deckman.onRead = [&] {
            machine.clock.AdvanceMs(20000);
            deckman.onRead = [&] { machine.clock.AdvanceMs(150); };
            console.goOn = [] { return true; };
            ExpectIn(Explained("BSP"), {"Deckman's library, which it has called, has not returned for 20.0 s\n  to do"});
            RunCommandLine(machine, {"get", "BSP"});
            ExpectIn(console.written, {"BSP has no value: the bridge stands still: Deckman's library"});
        };
        host.Tick(2);
        console.goOn = [this] { return host.Tick(), true; };
        ExpectIn(Explained("BSP"), {"all is well", "held up by Deckman's library, which takes 0.6 s"});
    });
}

TEST_F(ExplainTest, TellsOfAllThatIsMappedGroupedByWhatIsToBeDone) {
    SetUpAll(1);
    std::string overview, lines;
    Run([&] {
        host.Tick(2);
        Publish(kHdg, kNoValue);
        overview = Explained(""), lines = Explained("HDG BSP --json");
    });
    ExpectIn(overview, {"HDG (13): ", "\n  to do: ", "all is well: BSP (1)"});
    EXPECT_EQ(overview.find("HDG"), overview.rfind("HDG")) << overview;
    const std::size_t second = lines.find('\n') + 1;
    ExpectIn(lines.substr(0, second), {R"("id":13,)", R"("state":"broken")", R"("toDo":")"});
    ExpectIn(lines.substr(second), {R"("id":1,)", R"("fault":null,"toDo":null)", R"("state":"holds")"});
    ExpectIn(Explained("nosuch"), {"nosuch"});
    MappingXml("");
    ExpectIn(Explained(""), {"no line of the mapping", "halyrigctl check"});
}

}  // namespace
}  // namespace twr::testing
