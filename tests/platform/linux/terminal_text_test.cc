#include "platform/linux/terminal_text.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "bridge/controls.h"
#include "platform/linux/folder_list.h"
#include "platform/linux/terminal_layout.h"
#include "platform/linux/terminal_locale.h"
#include "support/linux/environment_variable.h"
#include "support/temp_folder.h"

namespace twr {
namespace {

class TerminalTextTest : public ::testing::Test {
    const testing::EnvironmentVariable utf8_{"LC_ALL", "C.UTF-8"};
    const TerminalLocale locale_;
};

TEST_F(TerminalTextTest, CutsToCells) {
    const struct {
        const wchar_t* text;
        int width;
        const wchar_t *head, *tail;
    } rows[] = {
        {L"abcdef", 6, L"abcdef", L"abcdef"}, {L"abcdef", 5, L"abcde", L"...ef"},
        {L"abcdef", 3, L"abc", L"..."},       {L"abcdef", 0, L"", L""},
        {L"海海海", 6, L"海海海", L"海海海"}, {L"海海海", 5, L"海海", L"...海"},
        {L"海海海", 4, L"海海", L"..."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.head, HeadThatFits(row.text, row.width)) << row.width;
        EXPECT_EQ(row.tail, TailThatFits(row.text, row.width)) << row.width;
    }
}

TEST_F(TerminalTextTest, WrapsAtBlanks) {
    const struct {
        const char16_t* text;
        int width;
        std::vector<std::wstring> lines;
    } rows[] = {
        {u"", 10, {L""}},
        {u"one two", 6, {L"one", L"two"}},
        {u"one two three", 7, {L"one two", L"three"}},
        {u"a\n\nb\n", 5, {L"a", L"", L"b", L""}},
        {u"abcdefgh", 3, {L"abc", L"def", L"gh"}},
        {u" abcdef", 3, {L" ab", L"cde", L"f"}},
        {u"海海", 1, {L"海", L"海"}},
        {u"\x1B[2Jab\t", 20, {L"?[2Jab?"}},
        {u"\U0001F6A2\xD83D", 20, {L"\U0001F6A2?"}},
    };
    for (const auto& row : rows) EXPECT_EQ(row.lines, Wrapped(row.text, row.width)) << row.width;
}

TEST_F(TerminalTextTest, FindsTheAccessKey) {
    const struct {
        const char16_t *marked, *text;
        char32_t key;
    } rows[] = {
        {u"&About", u"About", U'a'}, {u"Save &As", u"Save As", U'A'}, {u"R&&D", u"R&D", 0},
        {u"R&&&D", u"R&D", U'd'},    {u"End&", u"End&", 0},
    };
    for (const auto& row : rows) {
        const Caption caption = ParseCaption(row.marked);
        EXPECT_EQ(row.text, caption.text);
        for (const char32_t key : {U'a', U'A', U'd', U'&'}) {
            EXPECT_EQ((key | 32) == (row.key | 32), caption.HasKey(key)) << static_cast<unsigned>(key);
        }
    }
}

TEST(TerminalLayoutTest, NothingOverlapsOrLeavesTheFrame) {
    const CellSize least = SmallestForm(kMainTemplate);
    for (int rows = least.rows; rows < 30; ++rows) {
        for (int columns = least.columns; columns < 90; ++columns) {
            SCOPED_TRACE(::testing::Message() << rows << " by " << columns);
            const FormLayout cells = LayOutForm(kMainTemplate, {rows, columns});
            ASSERT_LE(cells.size.rows, rows);
            ASSERT_LE(cells.size.columns, columns);
            for (std::size_t i = 0; i < std::size(kMainControls); ++i) {
                const auto& [at, width] = cells.controls[i];
                ASSERT_GE(width, NaturalWidth(kMainControls[i]));
                ASSERT_GT(at.column, 0);
                ASSERT_LT(at.column + width, cells.size.columns) << kMainControls[i].id;
                ASSERT_LT(at.row, cells.size.rows - 1);
                for (std::size_t j = 0; j < std::size(kMainControls); ++j) {
                    const bool above = kMainControls[i].rect.top < kMainControls[j].rect.top;
                    ASSERT_TRUE(!above || at.row < cells.controls[j].at.row) << i << " and " << j;
                }
            }
            const auto &close = cells.controls.front(), &import = cells.controls.back();
            ASSERT_LT(import.at.column + import.width, close.at.column);
        }
    }
}

TEST(FolderListTest, ListsWhatATypedPathCanBecome) {
    const testing::TempFolder folder;
    const std::string root = folder.Path().string() + "/";
    for (const char* name : {"Deck", "Deckman", "Data", ".hidden", "x\xFF", "\xC3\x89lan", "\xC3\x88re"}) {
        std::filesystem::create_directory(root + name);
    }
    folder.Write("Decoy", "a file");
    std::filesystem::create_directory_symlink(root + "Data", root + "Dlink");
    const struct {
        const char* typed;
        std::vector<std::string> names;
        const char* common;
    } rows[] = {
        {"", {"Data", "Deck", "Deckman", "Dlink", "\xC3\x88re", "\xC3\x89lan"}, ""},
        {"De", {"Deck", "Deckman"}, "Deck"},
        {"D", {"Data", "Deck", "Deckman", "Dlink"}, "D"},
        {"Dl", {"Dlink"}, "Dlink"},
        {".", {".hidden"}, ".hidden"},
        {"\xC3", {"\xC3\x88re", "\xC3\x89lan"}, ""},
        {"x", {}, ""},
        {"nowhere/", {}, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.typed);
        const auto names = SubFolders(SplitTyped(root + row.typed));
        EXPECT_EQ(row.names, names);
        EXPECT_EQ(row.common, CommonBeginning(names));
    }
    EXPECT_EQ(root + "Deck", NearestFolder(root + "Deck/none/such"));
    EXPECT_EQ("/", NearestFolder("/nowhere-at-all/x/"));
    EXPECT_TRUE(NearestFolder("C:\\Deckman").starts_with('/'));
}

}  // namespace
}  // namespace twr
