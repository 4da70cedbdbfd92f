// SPDX-License-Identifier: MIT
// What check looks at beside what its scenes tell, and the dry run by which it sees what the suite will make of a set-up.
#include <cstring>
#include <filesystem>

#include "halyrigctl/ctl_fixture.h"
#include "halyrigctl/setup/dry_run.h"
#include "platform/files.h"

namespace twr::testing {
namespace {

TEST_F(CtlTest, CheckNamesAFileOfTheSuiteInOtherCapitals) {
    for (const std::string name : {"Channels.xml", "Boats.xml", "Alternate.csv"}) {
        if (kPathSeparator == u'\\') continue;  // where capitals don't count
        std::filesystem::remove_all(test.folder.Path() / "ProgramData");
        test.folder.Write("ProgramData/Tidewright/config/" + name, "");
        ExpectIn(Said("check", 1), {(name + " ").c_str()});
    }
}

TEST_F(CtlTest, ADryRunGivesTheRecordThatTheSuiteWillMakeAndLeavesNoTrace) {
    test.folder.Write("ProgramData/x", "");
    const auto compare = [&](const char* what) {
        const auto before = Snapshot(test.folder, Core().registry);
        const DryRun dryRun(Core());
        EXPECT_EQ(before, Snapshot(test.folder, Core().registry)) << what;
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
    const auto before = Snapshot(test.folder, Core().registry);
    DryRun dryRun(Core());
    const CoreServices services = dryRun.Services();
    const std::u16string file = test.folder.File("ProgramData/x"), other = test.folder.File("ProgramData/y");
    services.files.Remove(file);
    EXPECT_FALSE(services.files.Append(file, "x") || services.files.Copy(file, other) || services.files.Rename(file, other));
    EXPECT_FALSE(services.registry.Write(u"Software", u"x", DwordValue(1)));
    EXPECT_EQ(nullptr, services.xml.OpenWriter(other));
    EXPECT_EQ(nullptr, services.memory.OpenExisting(u"TwrCore_356_166784", sizeof(CoreRecord)));
    dryRun.Core().WriteSystemLog(u"x");
    EXPECT_EQ(before, Snapshot(test.folder, Core().registry));
}

}  // namespace
}  // namespace twr::testing
