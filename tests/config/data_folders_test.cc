#include <algorithm>

#include "base/wide_text.h"
#include "platform/paths.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

class DataFoldersTest : public CoreTest {
protected:
    const std::u16string suite = JoinPath(u"/data", u"Tidewright");
};

TEST_F(DataFoldersTest, ASubfolderIsMadeWhenMissing) {
    const std::u16string subfolder = JoinPath(suite, u"instruments");
    EXPECT_EQ(subfolder, core->GetDataFolder(u"instruments"));
    EXPECT_EQ(subfolder, core->GetDataFolder(u"instruments"));
    EXPECT_EQ(1, std::ranges::count(machine.files.folders, subfolder));
}

TEST_F(DataFoldersTest, ADefaultThatCantBeMadeIsTriedAgain) {
    record.SetText(1068, u"");
    machine.files.folders.clear();
    machine.files.foldersFail = true;
    EXPECT_EQ(u"", core->GetDataFolder(u""));
    EXPECT_EQ(JoinPath(suite, u"config"), core->GetDataFolder(u"config")) << "a place where every file operation fails";
    machine.files.programData.clear();
    EXPECT_EQ(u"", core->GetDataFolder(u"config"));
    EXPECT_EQ(u"", core->GetDataFile(u"config", u"boats.xml")) << "not in the root of the drive";
    machine.files.programData = u"/data";
    machine.files.foldersFail = false;
    EXPECT_EQ(suite, core->GetDataFolder(u""));
    EXPECT_EQ(suite, record.Text(1068));
}

TEST_F(DataFoldersTest, WhoHasJoinedLeavesItToTheCreatorForASecond) {
    CCore second(machine.Services());
    const struct {
        int ms;  // since it has joined
        std::u16string stored;
    } rows[] = {{0, u""}, {1000, u""}, {1001, suite}, {-1001, suite}};
    const std::int64_t joined = machine.clock.ticks;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.ms);
        record.SetText(1068, u"");
        machine.clock.ticks = joined;
        machine.clock.AdvanceMs(row.ms);
        EXPECT_EQ(suite, second.GetDataFolder(u""));
        EXPECT_EQ(JoinPath(suite, u"config"), second.GetDataFolder(u"config"));
        EXPECT_EQ(row.stored, record.Text(1068));
        EXPECT_EQ(row.stored == suite, second.DataFolderIs(suite));
    }
}

TEST_F(DataFoldersTest, OnlyADatabaseWithItsExtensionStays) {
    for (const std::u16string stored : {u"/x/race.db", u"/x/a.b.db", u"/x/a.db:stream", u"C:a.db"}) {
        record.SetText(548, stored);
        EXPECT_EQ(stored, core->GetDatabasePath());
    }
    for (const std::u16string stored : {u"/x/race.DB", u"/x/race.db3", u"/x.db/race", u"/x/.db", u"/x/r:1.db", u""}) {
        record.SetText(548, stored);
        EXPECT_EQ(JoinPath(JoinPath(suite, u"database"), u"Tidewright.db"), core->GetDatabasePath()) << ToUtf8(stored);
    }
}

TEST_F(DataFoldersTest, AnEmptyMarksPathLeavesTheOldOne) {
    core->SetMarksPath(u"/m.xml");
    core->SetMarksPath(u"");
    EXPECT_EQ(u"/m.xml", record.Text(28));
    core->SetMarksPath(std::u16string(300, u'm'));
    EXPECT_EQ(std::u16string(259, u'm'), record.Text(28));
}

}  // namespace
}  // namespace twr::testing
