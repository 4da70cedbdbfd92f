// SPDX-License-Identifier: MIT
// Set-ups in which much is wrong at once, or just right: every word of what check, explain, map, get, watch, boats and channels say
// of them.
#include <algorithm>
#include <cmath>
#include <filesystem>

#include "config/bridge_settings.h"
#include "config/saved_settings.h"
#include "displays/displays.h"
#include "halyrigctl/failing_files.h"
#include "halyrigctl/transcript.h"

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

struct SetUpSaidTest : CtlTest {
    SetUpSaidTest() {
        test.folder.Write("Deckman/ShDfW2" + ToUtf8(kLibrarySuffix), BytesOf(STAND_IN_LIBRARY));
        test.folder.Write("ProgramData/any", "");
        clock.AdvanceMs(66'599'000);  // 18:29:59 UTC; a second before midnight at UTC+5:30
        Save();
    }
    CoreServices Core() override {
        const CoreServices real = test.system->Core();
        return {clock, zone, real.memory, registry, files, real.xml, real.desktop};
    }
    void Save() { WriteSettings(registry, settings); }
    void Set(std::u16string_view name, std::uint32_t to) { registry.Write(kSavedSettingsKey, name, DwordValue(to)); }
    void List(const std::string& lines) { test.folder.Write("Deckman/Data/J_vars06.d", "[variables]\n" + lines); }
    void Map(const std::string& lines) { test.folder.Write(kMapping, "<halyrig>\n" + lines + "</halyrig>\n"); }
    void Give(ChannelId channel, BoatSlot boat, double value, double secondsAgo) {
        suite->SetChannel(channel, boat, value, clock.Days() - secondsAgo / kSecondsPerDay);
    }
    // 1e6 days is after all files were written.
    void StartBridge(const std::vector<MappedLine>& lines, double readAt = 1e6) {
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
    FakeClock clock;
    FakeZone zone;
    SceneRegistry registry;
    FailingFiles files{test.system->Core().files};
    std::unique_ptr<RunningBridge> bridge;
};

TEST_F(SetUpSaidTest, MuchIsWrongAtOnce) {
    zone.state->bias = -330;
    Transcript told("setup", *this);
    told.Play("Much is wrong");
    for (const auto& [name, to] : {std::pair(u"Sys_i1", 1u), {u"Sys_i2", 2u}, {u"Sys_b3", 1u}, {u"Sys_b27", 1u}}) Set(name, to);
    StartSuite();
    settings.useTimer = true;
    StartBridge({{1, 0, 1},
                 {13, 0, 2},
                 {17, 0, 5},
                 {3, 7, 3},
                 {1, 12, 1},
                 {50, 0, 7},
                 {15, 0, 9},
                 {172, 7, 4},
                 {6, 0, 6},
                 {237, 0, 11},
                 {0, 0, 3},
                 {118, 0, 3},
                 {172, 0, 8},
                 {4, 0, 4}},
                1.0);
    settings = {settings.dfwFolder, true, true, false, true};  // saved, but not in force: all boxes but that for feet
    Save();
    for (const auto& [line, given] :
         {std::pair(0, 6.5f), {1, NAN}, {2, 32767.0f}, {3, 151.0f}, {8, 185.0f}, {9, 400.0f}, {13, 32767.0f}})
        bridge->Noted(static_cast<std::size_t>(line), given);
    const std::tuple<ChannelId, BoatSlot, double, double> values[] = {{kBsp, 0, 6.5, 0.4},   {kTwd, 0, 185.0, 21.0},
                                                                      {kTws, 0, 14.2, 2.0},  {kBsp, 12, 5.25, 3.0},
                                                                      {kAws, 7, 12.5, 30.0}, {kSet, 0, 40.0, 65.0}};
    for (const auto& [channel, boat, value, ago] : values) Give(channel, boat, value, ago);
    registry.Write(kSavedSettingsKey, u"Sys_v0", StringValue(u"long"));
    registry.Write(kSavedSettingsKey, u"Sys_v1", StringValue(u"3.5"));
    Set(u"Sys_i2", 3), Set(u"Sys_i99", 3);
    registry.Write(kSavedSettingsKey, u"Sys_b4", StringValue(u"1"));
    registry.Write(kBridgeSettingsKey, u"DfwDept", DwordValue(0));
    files.lockedFor = 1 << 20;  // by a recorder that has just begun
    files.room = 5ULL << 30;

    told.Play("More has become wrong since");
    bridge.reset();
    told.Play("The bridge has ended");
    suite.reset();
    files.lockedFor = 0;
    files.room = 1ULL << 29;
    told.Play("The suite too");
    std::filesystem::remove_all(test.folder.File("Deckman"));
    told.Play("Deckman has gone");
}

TEST_F(SetUpSaidTest, NothingOfTheMappingCanBeUsed) {
    const auto mapping = test.folder.File(kMapping);
    settings.degreesTrue = true;  // of no bearing
    StartSuite();
    StartBridge({});
    Give(kBsp, 0, 6.5, 61.5);
    Transcript told("nothing", *this);
    for (const char* what :
         {"Remotes, and lines for variables that there aren't", "Nothing", "Remotes alone", "No XML behind a remote"})
        told.Play(what);
    std::filesystem::remove(mapping);
    std::filesystem::create_directory(mapping);
    told.Play("A folder in its place");
    files.forbidden = mapping;
    told.Play("It is another user's");
    files.forbidden.clear();
    std::filesystem::remove(mapping);
    Give(kBsp, 0, 6.5, 0.1);
    bridge->MappingLoaded({1, 1, 1e6}, std::vector<MappedLine>{{1, 0, 1}});
    bridge->Noted(0, 6.5f);
    told.Play("All is well but for a line that names no channel");
    bridge->LibraryLoaded(settings.dfwFolder, {});
    bridge->MappingLoaded({1, 1, 1.0});
    told.Play("The bridge has not loaded the library, and has read older files");
    told.Play("The list is cut short, which costs no line; then there is none");
    std::filesystem::remove_all(test.folder.File("Deckman"));
    told.Play("Deckman has gone");
}

// Each unit feeds what is in it, and then what no channel is in is fed.
TEST_F(SetUpSaidTest, EachUnitAndEachFaultOfAFileOfTheSuite) {
    std::istringstream fed(
        "kn 1 KT 5 kts 51 deg 18 deg 2 deg 161 deg 162 degM 13 degT 6 deg/s 32 ft 17 m 45 m 25 m 173 nm 105 degC 15 hPa 16 % 58 "
        "day 34 "
        "V 30 t 27 u 21 kn 9 deg 55 degT 19 m 33 s 88 min 37 degF 14 km 91 m/s 3 mph 12 A 29 T 46 m 72");
    std::string list, lines, unit;
    for (int number = 1, channel = 0; fed >> unit >> channel; ++number) {
        const std::string of = std::to_string(number);
        list += of + " V" + of + " " + unit + " 0 0 1\n";
        lines += "<var twr='" + std::to_string(channel) + "' dfw='V" + of + "'/>\n";
    }
    Set(u"Sys_i6", 3);
    List(list);
    Map(lines);
    Transcript told("files", *this);
    told.Play("Each unit, and faults in each file of the suite");
    console.written.clear();
    EXPECT_EQ(1, RunCommandLine(*this, {"check", "--summary", " " + ToUtf8(settings.dfwFolder) + "\t"}));
    told.Tell("# $ check --summary, of a folder as it was pasted", console.written);
}

TEST_F(SetUpSaidTest, AMappingIsMadeByCommand) {
    settings.dfwFolder = u"";
    Save();
    Transcript told("mapping", *this);
    test.folder.Write("Bare/ShDfW2" + ToUtf8(kLibrarySuffix), BytesOf(STAND_IN_LIBRARY));
    told.Play("Nothing runs");
    Set(u"Sys_i6", 3);
    StartSuite();
    const std::tuple<ChannelId, BoatSlot, double, double> values[] = {
        {kBsp, 0, 6.5, 0.4}, {kBsp, 7, 5.25, 1.0}, {kHdg, 0, 87.0, 0.3}, {kMagVar, 0, -3.0, 0.5}, {172, 1, 4.5, 0.2}};
    for (const auto& [channel, boat, value, ago] : values) Give(channel, boat, value, ago);
    told.Play("The suite runs");
    Set(u"Sys_i6", 6);
    told.Play("A source of the position is chosen that is not in force");
    Set(u"Sys_i6", 3);
    settings = {
        .dfwFolder = test.folder.File("Deckman"), .sendNames = true, .degreesTrue = true, .depthInFeet = false, .useTimer = true};
    StartBridge({{93, 0, 4}, {1, 0, 1}, {13, 0, 2}, {237, 0, 11}, {3, 0, 19}, {172, 1, 10}});
    bridge->Noted(2, 84.0f);
    told.Play("The bridge runs");
    bridge.reset();
    told.Play("It has ended");
    EXPECT_TRUE(test.system->GetInstance().Claim(kBridgeName));
    ExpectIn(Said("map add COG 50"), {"The running " HALYRIG_PROGRAM " still has the former mapping"});  // though it tells nothing
}

TEST_F(SetUpSaidTest, ValuesOfEachStateAndUnit) {
    zone.state->bias = -330;
    Transcript told("values", *this);
    told.Play("Boats, units and alternating channels");
    StartSuite();
    Record().SetInt(2, 2);       // km/h
    Record().SetInt(1, 2);       // feet
    Record().SetFlag(3, false);  // true bearings
    Record().SetFlag(1, true);   // local time
    Draw(told, "watch bsp", U"", {40, 4});
    EXPECT_EQ(Look::kRed, console.LookOf("the bridge is not running"));
    StartBridge({{1, 0, 1}, {13, 0, 2}, {3, 3, 3}, {5, 0, 4}});
    bridge->Noted(3, 151.0f);
    const std::tuple<ChannelId, BoatSlot, double, double> values[] = {
        {kBsp, 0, 10.0, 0.4},      {kAwa, 0, -30.0, 20.0},
        {kTwa, 0, kNoValue, 0.9},  {kHdg, 0, 90.0, 0.7},
        {kMagVar, 0, -3.0, 1.3},   {kDepth, 0, 12.5, 8.5},
        {kHeel, 0, -15.0, 70.0},   {kTrim, 0, 2.5, 80.0},
        {kLat, 0, -45.2057, 3.0},  {kLon, 0, 5.5, 3.1},
        {kTmOnS, 0, 0.52, 2.0},    {kGpsTime, 0, 46345.5, 0.6},
        {kSeaTemp, 0, 18.31, 4.0}, {172, 0, 3.5, 5.0},
        {kAws, 3, 12.5, 33000.0},  {kHdg, 3, 271.0, 65.0},
        {kBsp, 1, 7.75, 8.0},      {kAwa, 1, 33.0, 2.5},
        {kTws, 1, kNoValue, 0.1},  {kMkLat, 0, 45.5, 0.8},
        {kSail, 0, 1.0, 0.9},      {kDepth, 3, 32767.0f / 3.2808f, 0.5}};
    for (const auto& [channel, boat, value, ago] : values) Give(channel, boat, value, ago);
    Record().Set<std::uint8_t>(RecordBytes::Channel(kHeel) + 1, 1);  // blocked
    Record().Set<std::uint8_t>(RecordBytes::Channel(kTrim) + 4, 1);  // held
    EXPECT_EQ(std::string::npos, Said("channels --live --tsv").find("\t1\n")) << "held, while that is not in force";
    Record().SetFlag(52, true);
    Record().SetText(RecordBytes::Channel(173) + 76, u"Lead\a");
    told.Play("Values of each age");
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
        Give(kBsp, 0, 5.0 + step, 0.2);
        Give(kHdg, 0, step < 2 ? 340.0 + 15 * step : 15.0 * step, 0.2);
        Give(kTwa, 0, step < 2 ? 178.0 : -178.0, 0.2);
        Give(kSet, 0, 20.0 + 0.1 * step, 0.2);
        return ++step < 5;
    };
    Draw(told, "watch --interval 100 bsp hdg twa set", U"", {200, 7});
}

}  // namespace
}  // namespace twr::testing
