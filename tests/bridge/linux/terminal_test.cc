// The whole program as its user sees it at a terminal, in a process of its own.
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <functional>

#include "base/version.h"
#include "bridge/application.h"
#include "config/bridge_settings.h"
#include "core/core.h"
#include "support/child_process.h"
#include "support/linux/pseudo_terminal.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

constexpr std::string_view kEsc = "\033", kF1 = "\033OP", kDown = "\033OB", kLeft = "\033OD";

const Role bridge("bridge at a terminal", [](const std::vector<std::string>& arguments) {
    const auto system = SystemOf(arguments);
    CHalyrig32App(*system).InitInstance();
    return system->ExitStatus();
});

class TerminalTest : public ::testing::Test {
protected:
    void Open() {
        terminal = std::make_unique<PseudoTerminal>("bridge at a terminal", test.Arguments());
        ASSERT_TRUE(terminal->Shows("Esc Exit")) << terminal->Picture().All();
    }

    // With the names' box ticked and its focus there.
    void OpenAndTick() {
        WriteSettings(Stored(), {});
        Open();
        terminal->Type("\t\t ");
        ASSERT_TRUE(terminal->Shows("[x] Send names")) << terminal->Picture().All();
    }

    Registry& Stored() { return test.system->Core().registry; }
    Settings Saved() { return ReadSettings(Stored()); }
    std::u16string Folder(const char* name) const { return test.folder.File(name); }

    TestSystem test;
    std::unique_ptr<PseudoTerminal> terminal;
};

// The dialog itself, and what can stand on it: the keys that lead there from the names' box, and what it shows.
struct Opened {
    std::string_view keys, shows;
} const kOpened[] = {
    {"", "Esc Exit"},
    {kEsc, "Exit Halyrig?"},
    {kF1, "Halyrig32 v" HALYRIG_VERSION},
    {"\t\t\t\r", "Choose a folder"},
    {"\t\t\t\t\r", "Import legacy Halyrig mappings?"},
};

TEST_F(TerminalTest, ShowsTheDialogInItsTabOrderAtEverySize) {
    Open();
    for (const auto& [rows, columns] : {std::pair(24, 80), {18, 50}, {10, 50}, {60, 200}}) {
        terminal->Resize(rows, columns);
        EXPECT_SHOWS("─ Halyrig32 ─");
        EXPECT_SHOWS("Dfw folder:");
        EXPECT_SHOWS("F1 About Halyrig32...");
        for (const char* focused :
             {"[ Close ]", "[x] Depth in feet from Dfw", "[ ] Send names to remote channels",
              "[ ] Use Dfw 'TIMER' channel to set Twr timer", "[ ] Heading, twd and cog in degrees true", "[...]", "[ Import ]"}) {
            EXPECT_TRUE(terminal->Focuses(focused)) << focused << '\n' << terminal->Picture().All();
            terminal->Type("\t");
        }
    }
    terminal->Resize(9, 50);
    EXPECT_SHOWS("Too small");
    terminal->Type(" ");  // would press the Close button
    terminal->Resize(24, 80);
    EXPECT_SHOWS("Esc Exit");
    EXPECT_SHOWS_NO("Exit Halyrig?");
}

TEST_F(TerminalTest, EachWayOutSavesOrLeavesTheSettings) {
    const struct {
        std::vector<std::string_view> keys;  // that open and close the question in turn
        bool saves;
    } rows[] = {{{"\r", "n", "\r", "y"}, true}, {{kEsc, kEsc, kEsc, "\r"}, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.saves);
        OpenAndTick();
        for (std::size_t i = 0; i < row.keys.size(); ++i) {
            EXPECT_SHOWS(i % 2 == 0 ? "Esc Exit" : "Exit Halyrig?");
            terminal->Type(row.keys[i]);
        }
        EXPECT_EQ(0, terminal->Wait());
        EXPECT_EQ(row.saves, Saved().sendNames);
    }
}

TEST_F(TerminalTest, ThatSettingsAreLostStandsInTheTerminalWhenTheScreenHasGone) {
    OpenAndTick();
    const auto file = test.folder.Path() / "config/registry.reg";
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    terminal->Type("\r");
    EXPECT_SHOWS("Exit Halyrig?");
    terminal->Type("y");
    EXPECT_EQ(0, terminal->Wait());
    std::string shown = terminal->Picture().All();
    std::erase(shown, '\n');  // the path may be longer than a row
    EXPECT_NE(shown.npos, shown.find("registry.reg: the settings can't be read: it is not a plain file")) << shown;
    std::filesystem::remove(file);
}

TEST_F(TerminalTest, SaysWhyItEndsAtOnceInASuiteThatIsAskedToClose) {
    const CCore other(test.system->Core());
    other.View()->sysFlag[kFlagQuitRequest] = 1;
    terminal = std::make_unique<PseudoTerminal>("bridge at a terminal", test.Arguments());
    EXPECT_SHOWS("Halyrig32: The suite has been asked to close");
    EXPECT_EQ(0, terminal->Wait());
}

// Nobody answers what is asked. That the record's request is seen shows that ticks go on.
TEST_F(TerminalTest, WhateverIsOpenItEndsFromOutside) {
    const struct {
        const char* name;
        std::function<void()> end;
        bool saves;
    } rows[] = {
        {"asked by the record", [&] { CCore(test.system->Core(), Attachment::kOpenOnly).View()->sysFlag[kFlagQuitRequest] = 1; },
         true},
        {"SIGTERM", [&] { terminal->Signal(SIGTERM); }, false},
        {"SIGINT", [&] { terminal->Signal(SIGINT); }, false},
        {"SIGHUP", [&] { terminal->Signal(SIGHUP); }, false},
        {"SIGQUIT", [&] { terminal->Signal(SIGQUIT); }, false},
        {"its terminal vanishes", [&] { terminal->HangUp(); }, false},
    };
    for (const Opened& opened : kOpened) {
        for (const auto& row : rows) {
            SCOPED_TRACE(::testing::Message() << opened.shows << ", " << row.name);
            OpenAndTick();
            terminal->Type(opened.keys);
            EXPECT_SHOWS(opened.shows);
            row.end();
            EXPECT_EQ(0, terminal->Wait());
            EXPECT_EQ(row.saves, Saved().sendNames);
        }
    }
}

TEST_F(TerminalTest, BeforeThereIsAScreenOrWithoutAnyItTellsOnALine) {
    EXPECT_EQ(0, PseudoTerminal("bridge stopped at its start", test.Arguments()).Wait());
    std::vector<std::string> recordless = test.Arguments();
    recordless[0].insert(0, "no/");  // no name of a block has a slash in it
    const struct {
        const char *type, *shows, *keys;
        int status;
    } rows[] = {
        {"TERM=xterm", "Press Enter to continue.", "\003", 128 + SIGINT},
        {"TERM=xterm", "Press Enter to continue.", "\n", 1},  // the dialog then opens and ends at once
        {"TERM=dumb", "it can't be opened: ", "", 1},
        {"TERM=", "Halyrig32: ", "", 1},
        {"TERM=never-heard-of", "Halyrig32: ", "", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.type << " " << row.status);
        terminal = std::make_unique<PseudoTerminal>("bridge at a terminal", recordless, std::vector<std::string>{row.type});
        EXPECT_SHOWS(row.shows);
        terminal->Type(row.keys);
        EXPECT_EQ(row.status, terminal->Wait());
    }
}

TEST_F(TerminalTest, AFolderIsChosenFromTheList) {
    for (const char* name : {"Ashore", ".hidden", "Deck", "Deckman", "x\xFF"})
        std::filesystem::create_directory(test.folder.Path() / name);
    std::filesystem::create_directory_symlink(test.folder.Path() / "Ashore", test.folder.Path() / "Zlink");
    test.folder.Write("Decoy", "a file");
    Settings settings;
    settings.dfwFolder = Folder("Ashore/none/such");
    WriteSettings(Stored(), settings);
    Open();
    terminal->Type("\t\t\t\t\t\r");
    const struct {
        std::string_view keys, focuses;
    } steps[] = {
        {"", "Choose this folder"}, {kDown, ".."},           {"\r", "Ashore/"},     {kDown, "Deck/"},
        {kDown, "Deckman/"},        {kDown, "ProgramData/"}, {kDown, "Zlink/"},     {kDown, "config/"},
        {kDown, ".hidden/"},        {"d", "Deck/"},          {"D", "Deckman/"},     {"\033[6~", ".hidden/"},
        {"\033[5~", "Choose this"}, {"a", "Ashore/"},        {"\r", "Choose this"}, {kLeft, "Ashore/"},
        {kDown, "Deck/"},           {kDown, "Deckman/"},     {"\r", "Choose this"},
    };
    for (const auto& step : steps) {
        terminal->Type(step.keys);
        EXPECT_TRUE(terminal->Focuses(step.focuses)) << step.focuses << '\n' << terminal->Picture().All();
    }
    terminal->Type("\r");
    EXPECT_SHOWS_NO("Choose a folder");
    EXPECT_SHOWS("/Deckman");
    terminal->Type("\t\t\r");
    EXPECT_SHOWS("Exit Halyrig?");
    terminal->Type("y");
    EXPECT_EQ(0, terminal->Wait());
    EXPECT_EQ(Folder("Deckman"), Saved().dfwFolder);
}

}  // namespace
}  // namespace twr::testing
