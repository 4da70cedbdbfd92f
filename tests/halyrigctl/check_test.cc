// SPDX-License-Identifier: MIT
// Set-ups with one fault each: what is said of it first, and that nothing is changed by looking.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>

#include "base/byte_source.h"
#include "base/wide_text.h"
#include "config/bridge_settings.h"
#include "config/saved_settings.h"
#include "halyrigctl/ctl_fixture.h"
#include "halyrigctl/setup/dry_run.h"
#include "platform/files.h"
#include "status/bridge_status.h"

namespace twr::testing {
namespace {

constexpr const char* kMappingFile = "ProgramData/Tidewright/instruments/halyrig.xml";
constexpr const char* kList = "Deckman/Data/J_vars06.d";
const std::string kLibrary = "Deckman/ShDfW2" + std::string(kLibrarySuffix.begin(), kLibrarySuffix.end());

// Paths with the sizes of files and when they were written last, and the registry's values, where it is no file.
std::map<std::string, std::string> Snapshot(const TestSystem& test) {
    std::map<std::string, std::string> all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(test.folder.Path())) {
        const std::string name = entry.path().lexically_relative(test.folder.Path()).generic_string();
        all[name] = entry.is_regular_file() ? std::to_string(entry.file_size()) + " " +
                                                  std::to_string(entry.last_write_time().time_since_epoch().count())
                                            : "";
    }
    const Registry& registry = test.system->Core().registry;
    for (const auto& key : {u"Software\\Tidewright\\core", u"Software\\Tidewright\\Halyrig32\\settings"}) {
        for (const std::u16string& name : registry.Names(key)) {
            const auto data = registry.Read(key, name).value_or(RegistryValue{}).data;
            all[ToUtf8(key) + ToUtf8(name)].assign(data.begin(), data.end());
        }
    }
    return all;
}

struct CheckTest : CtlTest {
    CheckTest() {
        SetUpWell();
        Save();
    }

    void SetUpWell() {
        if (!std::filesystem::exists(test.folder.Path() / kLibrary)) test.folder.Write(kLibrary, BytesOf(STAND_IN_LIBRARY));
        test.folder.Write(kList, "[variables]\n1 BSP u 0 0 0\n2 HDG u 0 0 0\n3 VARIATION u 0 0 0\n9 TIMER u 0 0 0\n");
        Map("<var twr='1' dfw='BSP'/>\n<var twr='13' dfw='HDG'/>\n<remote remote='1' twr='13'/>");
    }
    void Map(const std::string& lines) { test.folder.Write(kMappingFile, "<halyrig>\n" + lines + "</halyrig>"); }
    void Save() { WriteSettings(Core().registry, settings); }
    void Remove(const char* name) { std::filesystem::remove_all(test.folder.Path() / name); }

    // What is found in the set-up, line by line, without the verdict and the table.
    std::vector<std::string> Found(int status, const std::string& typed = "check") {
        const auto before = Snapshot(test);
        std::istringstream said(Said(typed, status));
        EXPECT_EQ(before, Snapshot(test)) << "looking changes nothing";
        std::vector<std::string> lines;
        std::getline(said, verdict);
        for (std::string line; std::getline(said, line) && !line.empty();) lines.push_back(line);
        return lines;
    }
    void Start() {
        StartSuite();
        bridge = std::make_unique<RunningBridge>(test);
        bridge->LibraryLoaded(settings.dfwFolder, {true, true});
        bridge->MappingLoaded({3, 2, UtcNowDays(Core().clock) + 1.0});
        bridge->BoxesInForce(settings);
    }

    Settings settings{.dfwFolder = test.folder.File("Deckman")};
    std::string verdict;
    std::unique_ptr<RunningBridge> bridge;
};

TEST_F(CheckTest, NotesAloneAreNoFault) {
    Map("<var twr='1' dfw='BSP'/>\n<remote remote='7' twr='31'/>");
    const std::string summary = Said("check --summary");
    EXPECT_TRUE(summary.starts_with("All is well: ") && std::ranges::count(summary, '\n') == 1) << summary;
    EXPECT_TRUE(Said("check --json").starts_with(R"({"status":"well",)")) << console.written;
    for (const std::string name : {"Channels.xml", "Boats.xml", "Alternate.csv"}) {
        if (kPathSeparator == u'\\') continue;  // where capitals don't count
        Remove("ProgramData/Tidewright/config");
        test.folder.Write("ProgramData/Tidewright/config/" + name, "");
        ExpectIn(Found(1).at(0), {name.c_str()});
    }
}

TEST_F(CheckTest, NamesWhatIsNewerInTheFolderInForceAlone) {
    Start();
    test.folder.Write("ProgramData/Tidewright/config/channels.xml", "<channels><channel id='172' user='Jib'/></channels>");
    bridge->MappingLoaded({3, 2, UtcNowDays(Core().clock) - 1.0});
    test.folder.Write("elsewhere/config/channels.xml", "<channels><channel id='172' user='Jib'/></channels>");
    Core().registry.Write(kSavedSettingsKey, u"DataFolder", StringValue(test.folder.File("elsewhere")));
    const auto lines = Found(1);
    ASSERT_EQ(3u, lines.size()) << "the files of the other folder are not those in force\n" << console.written;
    ExpectIn(lines[0], {"(DataFolder)"});
}

TEST_F(CheckTest, ComparesEachAttributeAndEachKindOfSetting) {
    Start();
    const std::string channel = "<channels><channel id='172' ", boat = "<boats><boat id='7' ";
    const std::tuple<const char*, std::string, RegistryValue, const char*> rows[] = {
        {"channels.xml", channel + "prec='3'/></channels>", {}, "(channel 172)"},
        {"channels.xml", channel + "log='false'/></channels>", {}, "(channel 172)"},
        {"channels.xml", channel + "damp='7'/></channels>", {}, "(channel 172)"},
        {"channels.xml", channel + "type='12'/></channels>", {}, "(channel 172)"},
        {"channels.xml", channel + "user='J'/></channels>", {}, "(channel 172)"},
        {"channels.xml", channel + "/></channels>", {}, nullptr},
        {"boats.xml", boat + "name='A'/></boats>", {}, "(boat 7)"},
        {"boats.xml", boat + "mmsi='211000000'/></boats>", {}, "(boat 7)"},
        {"boats.xml", boat + "b='9'/></boats>", {}, "(boat 7)"},
        {"boats.xml", boat + "/></boats>", {}, nullptr},
        {"alternate.csv", "9,0,0,0,0,0,0,0,0,1\n", {}, "(row 9)"},
        // the first that differs is told
        {"MarksXml", "", StringValue(u"/x"), "(MarksXml)"},
        {"Database2", "", StringValue(u"/x"), "(Database2)"},
        {"Sys_i3", "", DwordValue(1), "(Sys_i3)"},
        {"Sys_b33", "", DwordValue(1), "(Sys_b33)"},
        {"Sys_b3", "", DwordValue(0), "(Sys_b3)"},
        {"Sys_v1", "", StringValue(u"3.5"), "(Sys_v1)"}};
    for (const auto& [name, content, value, first] : rows) {
        SCOPED_TRACE(name + content);
        const std::string file = std::string("ProgramData/Tidewright/config/") + name;
        if (content.empty()) Core().registry.Write(kSavedSettingsKey, FromUtf8(name), value);
        if (!content.empty()) test.folder.Write(file, content);
        const auto lines = Found(first ? 1 : 0);
        ASSERT_EQ(first ? 1u : 0u, lines.size()) << console.written;
        if (first) ExpectIn(lines[0], {"it says other than what is in force", first});
        Remove(file.c_str());
    }
}

TEST_F(CtlTest, ADryRunGivesTheRecordThatTheSuiteWillMakeAndLeavesNoTrace) {
    test.folder.Write("ProgramData/x", "");
    const auto compare = [&](const char* what) {
        const auto before = Snapshot(test);
        const DryRun dryRun(Core());
        EXPECT_EQ(before, Snapshot(test)) << what;
        EXPECT_FALSE(Held()) << what;
        StartSuite();
        EXPECT_EQ(0, std::memcmp(&dryRun.Record(), suite->View(), offsetof(CoreRecord, fullBlocks))) << what;
        suite.reset();
    };
    compare("nothing there");
    constexpr std::u16string_view kKey = u"Software\\Tidewright\\core";
    test.folder.Write("elsewhere/config/channels.xml", R"(<channels><channel id="172" user="Jib" type="3"/></channels>)");
    test.folder.Write("elsewhere/config/boats.xml", R"(<boats><boat id="3" name="Aurora" r="1"/></boats>)");
    test.folder.Write("elsewhere/config/alternate.csv", "3,13,14,0,0,0,0,0,0,0\n");
    Core().registry.Write(kKey, u"DataFolder", StringValue(test.folder.File("elsewhere")));
    Core().registry.Write(kKey, u"Sys_i2", DwordValue(9));
    Core().registry.Write(kKey, u"Sys_v0", StringValue(u"14.2"));
    compare("all there");
}

TEST_F(CtlTest, WhatADryRunIsAskedToWriteIsNotWritten) {
    test.folder.Write("ProgramData/x", "");
    const auto before = Snapshot(test);
    DryRun dryRun(Core());
    const CoreServices services = dryRun.Services();
    const std::u16string file = test.folder.File("ProgramData/x"), other = test.folder.File("ProgramData/y");
    services.files.Remove(file);
    EXPECT_FALSE(services.files.Append(file, "x") || services.files.Copy(file, other) || services.files.Rename(file, other));
    EXPECT_FALSE(services.registry.Write(u"Software", u"x", DwordValue(1)));
    EXPECT_EQ(nullptr, services.xml.OpenWriter(other));
    EXPECT_EQ(nullptr, services.memory.OpenExisting(u"TwrCore_356_166784", sizeof(CoreRecord)));
    dryRun.Core().WriteSystemLog(u"x");
    EXPECT_EQ(before, Snapshot(test));
}

}  // namespace
}  // namespace twr::testing
