#include "platform/paths.h"
#include "support/core_fixture.h"

namespace twr::testing {
namespace {

class DataFoldersTest : public CoreTest {
protected:
    void Store(std::size_t offset, std::u16string_view text) {
        for (const char16_t c : text) record.Set(offset, c), offset += 2;
        record.Set(offset, u'\0');
    }
    const std::u16string suite = JoinPath(u"/data", u"Tidewright");
};

TEST_F(DataFoldersTest, ASubfolderIsMadeWhenMissing) {
    EXPECT_EQ(JoinPath(suite, u"instruments"), core->GetDataFolder(u"instruments"));
    EXPECT_TRUE(machine.files.Exists(JoinPath(suite, u"instruments")));
    const std::size_t folders = machine.files.folders.size();
    core->GetDataFolder(u"instruments");
    EXPECT_EQ(folders, machine.files.folders.size());
}

TEST_F(DataFoldersTest, ADefaultThatCantBeMadeIsTriedAgain) {
    Store(1068, u"");
    machine.files.folders.clear();
    machine.files.foldersFail = true;
    EXPECT_EQ(u"", core->GetDataFolder(u""));
    EXPECT_EQ(JoinPath(suite, u"config"), core->GetDataFolder(u"config")) << "a place where every file operation fails";
    machine.files.programData.clear();
    EXPECT_EQ(u"", core->GetDataFolder(u"config"));
    machine.files.programData = u"/data";
    machine.files.foldersFail = false;
    EXPECT_EQ(suite, core->GetDataFolder(u""));
    EXPECT_EQ(suite, record.Text(1068));
}

TEST_F(DataFoldersTest, OnlyADatabaseWithItsExtensionStays) {
    const std::u16string fallback = JoinPath(JoinPath(suite, u"database"), u"Tidewright.db");
    const struct {
        std::u16string stored, path;
    } rows[] = {
        {u"/x/race.db", u"/x/race.db"},
        {u"/x/race.DB", fallback},
        {u"/x/race.db3", fallback},
        {u"/x.db/race", fallback},
        {u"/x/.db", fallback},
        {u"/x/a.b.db", u"/x/a.b.db"},
        {u"", fallback},
    };
    for (const auto& row : rows) {
        Store(548, row.stored);
        EXPECT_TRUE(row.path == core->GetDatabasePath()) << "stored text of " << row.stored.size();
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
