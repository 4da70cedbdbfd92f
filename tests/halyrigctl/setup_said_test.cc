// SPDX-License-Identifier: MIT
// Set-ups in which much is wrong at once, or just right: every word of what check, explain, map, get, watch, boats and channels say
// of them.
#include <algorithm>
#include <cmath>
#include <filesystem>

#include "base/numbers.h"
#include "deckman/variable_file.h"
#include "displays/displays.h"
#include "halyrigctl/failing_files.h"
#include "halyrigctl/transcript.h"
#include "mapping/mapping_file.h"

namespace twr::testing {
namespace {

// The same place on each system.
struct SceneRegistry : FakeRegistry {
    RegistryPlace PlaceOf(std::u16string_view, std::u16string_view) const override { return {u"registry"}; }
    std::vector<std::u16string> Names(std::u16string_view key) const override {
        std::vector<std::u16string> names;
        for (const auto& [of, values] : keys) {
            for (const auto& [name, value] : values)
                if (EqualsIgnoringCase(of, key)) names.push_back(name);
        }
        return names;
    }
};

struct SetUpSaidTest : SceneTest {
    SetUpSaidTest() {
        registry = &saved;
        files = &failing;
        test.folder.Write("Deckman/ShDfW2" + ToUtf8(kLibrarySuffix), BytesOf(STAND_IN_LIBRARY));
        test.folder.Write("ProgramData/any", "");
        clock.AdvanceMs(66'599'000);  // 18:29:59 UTC; a second before midnight at UTC+5:30
        Save();
        happenings["the bridge starts"] = [this] { StartBridge(); };
        happenings["the bridge ends"] = [this] { bridge.reset(); };
    }
    void Save() { WriteSettings(saved, settings); }
    // 1e6 days is after all files were written.
    void StartBridge(double readAt = 1e6) {
        std::vector<MappedLine> lines;
        const auto list = FindVariableFile(Core().files, settings.dfwFolder, {});
        for (const MappingVar& row : LoadMapping(Core().xml, test.folder.File(kMapping), list.rows).varRows)
            lines.push_back({row.channel, row.boat, row.dfwId});
        bridge = std::make_unique<RunningBridge>(test);
        bridge->clock.ticks = clock.ticks;
        bridge->Ticked();
        bridge->LibraryLoaded(settings.dfwFolder, {true, true});
        bridge->MappingLoaded({14, static_cast<std::int32_t>(lines.size()), readAt}, lines);
        bridge->BoxesInForce(settings);
    }
    // What a screen of the size shows behind the keys.
    void Draw(Transcript& told, const std::string& command, const std::u32string& keys, ConsoleSize size) {
        console.size = size;
        console.keys = keys;
        Said(command);
        console.size.reset();
        std::string picture;
        for (std::string line : LinesOf(console.pictures.back())) picture += line.substr(0, line.find_last_not_of(' ') + 1) + "|\n";
        told.Tell("# $ " + command + " on a screen", picture);
    }

    static constexpr const char* kMapping = "ProgramData/Tidewright/instruments/halyrig.xml";
    Settings settings{.dfwFolder = test.folder.File("Deckman")};
    SceneRegistry saved;
    FailingFiles failing{test.system->Core().files};
    std::unique_ptr<RunningBridge> bridge;
};

TEST_F(SetUpSaidTest, MuchIsWrongAtOnce) {
    zone.state->bias = -330;
    Transcript told("setup", *this);
    told.Play("Much is wrong");
    settings.useTimer = true;
    StartBridge(1.0);
    settings = {settings.dfwFolder, true, true, false, true};  // saved, but not in force: all boxes but that for feet
    Save();
    for (const auto& [line, given] :
         {std::pair(0, 6.5f), {1, NAN}, {2, 32767.0f}, {3, 151.0f}, {10, 185.0f}, {11, 400.0f}, {13, 32767.0f}})
        bridge->Noted(static_cast<std::size_t>(line), given);
    saved.Write(kSavedSettingsKey, u"Sys_b4", StringValue(u"1"));
    saved.Write(kBridgeSettingsKey, u"DfwDept", DwordValue(0));
    failing.lockedFor = 1 << 20;  // by a recorder that has just begun
    failing.room = 5ULL << 30;

    told.Play("More has become wrong since");
    failing.lockedFor = 0;
    failing.room = 1ULL << 29;
    told.Play("The suite ends too, and then Deckman goes");
}

TEST_F(SetUpSaidTest, NothingOfTheMappingCanBeUsed) {
    const auto mapping = test.folder.File(kMapping);
    settings.degreesTrue = true;  // of no bearing
    Transcript told("nothing", *this);
    told.Play("Not a line can be used, or there is none");
    std::filesystem::remove(mapping);
    std::filesystem::create_directory(mapping);
    told.Play("A folder in its place");
    failing.forbidden = mapping;
    told.Play("It is another user's");
    failing.forbidden.clear();
    std::filesystem::remove(mapping);
    const std::vector<MappedLine> lines{{1, 0, 1}};
    bridge->MappingLoaded({1, 1, 1e6}, lines);
    bridge->Noted(0, 6.5f);
    told.Play("All is well but for a line that names no channel");
    bridge->MappingLoaded({1, 1, 1e6}, lines);
    told.Play("The same mapping has been loaded again");
    bridge->LibraryLoaded(settings.dfwFolder, {});
    bridge->MappingLoaded({1, 1, 1.0});
    told.Play("The bridge has not loaded the library, and has read older files");
    told.Play("The list is cut short, which costs no line; then there is none, and then Deckman goes");
}

TEST_F(SetUpSaidTest, EachUnitAndEachFaultOfAFileOfTheSuite) {
    Transcript told("files", *this);
    told.Play("Each unit, and faults in each file of the suite");
    console.written.clear();
    EXPECT_EQ(1, RunCommandLine(*this, {"check", "--summary", " " + ToUtf8(settings.dfwFolder) + "\t"}));
    told.Tell("# $ check --summary, of a folder as it was pasted", console.written);
}

TEST_F(SetUpSaidTest, WhatIsSavedIsNotWhatIsInForce) {
    Transcript told("differing", *this);
    told.Play("Each attribute, and each kind of setting");
    bridge->MappingLoaded({3, 2, 1.0});
    told.Play("The files of the folder in force are newer than the bridge, and another folder is saved");
}

TEST_F(SetUpSaidTest, AMappingIsMadeByCommand) {
    settings.dfwFolder = u"";
    Save();
    Transcript told("mapping", *this);
    happenings["the user answers n"] = [&] { console.answer = "n"; };
    test.folder.Write("Bare/ShDfW2" + ToUtf8(kLibrarySuffix), BytesOf(STAND_IN_LIBRARY));
    told.Play("Nothing runs");
    settings = {
        .dfwFolder = test.folder.File("Deckman"), .sendNames = true, .degreesTrue = true, .depthInFeet = false, .useTimer = true};
    StartBridge();
    bridge->Noted(2, 84.0f);
    told.Play("The bridge runs, and ends");
    told.Play("Only what is sure is proposed, and what would not work is refused");
    EXPECT_TRUE(test.system->GetInstance().Claim(kBridgeName));
    ExpectIn(Said("map add COG 50"), {"The running " HALYRIG_PROGRAM " still has the former mapping"});  // though it tells nothing
}

TEST_F(SetUpSaidTest, ValuesOfEachStateAndUnit) {
    zone.state->bias = -330;
    Transcript told("values", *this);
    told.Play("Boats, units and alternating channels");
    Draw(told, "watch bsp", U"", {40, 4});
    EXPECT_EQ(Look::kRed, console.LookOf("the bridge is not running"));
    told.Play("Values of each age");
    bridge->Noted(3, 151.0f);
    Record().Set<std::uint8_t>(RecordBytes::Channel(kHeel) + 1, 1);  // blocked
    Record().Set<std::uint8_t>(RecordBytes::Channel(kTrim) + 4, 1);  // held
    EXPECT_EQ(std::string::npos, Said("channels --live --tsv").find("\t1\n")) << "held, while that is not in force";
    Record().SetFlag(52, true);
    Record().SetText(RecordBytes::Channel(173) + 76, u"Lead\a");
    told.Play("As they are watched");
    DisplayWriter displays(Core().memory, settings.dfwFolder);
    displays.ShowValue(3, "18.52");
    displays.ShowName(3, "BSP");
    displays.ShowValue(12, "3.00\xB0W");
    told.Play("Displays are told");
    clock.AdvanceMs(1000);  // midnight
    bridge->clock.ticks = clock.ticks;
    bridge->Ticked();
    Draw(told, "watch --sort age", U"", {122, 16});
    for (const auto& [state, look] :
         {std::pair("fresh", Look::kGreen), {"stale", Look::kYellow}, {"refused", Look::kRed}, {"missing", Look::kFaint}})
        EXPECT_EQ(look, console.LookOf(state)) << state;
    Draw(told, "watch --sort name bsp hdg awa heel 172 lat", {Key::kDown, Key::kDown, Key::kDown, Key::kEnter}, {64, 18});

    told.Play("All that is asked of them");
    EXPECT_EQ(101u, LinesOf(Said("boats --all")).size());
    for (const char* form : {"", " --json", " --live", " --live --tsv", " --live --json"}) {
        const auto lines = LinesOf(Said(std::string("channels") + form));
        std::string some;
        for (const std::size_t id : {0, 1, 18, 19, 48, 173}) some += lines[1 + id] + "\n";
        told.Tell(std::string("# $ channels") + form + ", some", lines[0] + "\n" + some);
    }
    console.goOn = [&, step = 0]() mutable {
        clock.AdvanceMs(3000);
        bridge->clock.ticks = clock.ticks;
        for (int tick = 0; tick < 30; ++tick) bridge->Ticked();
        Publish(Printed("BSP=%d, HDG=%d, TWA=%d, Set=%g", 5 + step, step < 2 ? 340 + 15 * step : 15 * step, step < 2 ? 178 : -178,
                        20.0 + 0.1 * step),
                0.2);
        return ++step < 5;
    };
    Draw(told, "watch --interval 100 bsp hdg twa set", U"", {200, 7});
}

}  // namespace
}  // namespace twr::testing
