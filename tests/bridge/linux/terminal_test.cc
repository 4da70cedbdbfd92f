// SPDX-License-Identifier: MIT
// The whole program as its user sees it at a terminal, in a process of its own.
#include <gtest/gtest.h>
#include <signal.h>

#include "base/version.h"
#include "bridge/application.h"
#include "config/bridge_settings.h"
#include "core/core.h"
#include "support/child_process.h"
#include "support/fakes.h"
#include "support/linux/pseudo_terminal.h"
#include "support/linux/signals.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

constexpr std::string_view kEsc = "\033", kF1 = "\033OP", kDown = "\033OB", kLeft = "\033OD";

// A system on which the program is asked to end while its dialog is being made, or whose log of last resort, which goes to the root
// of the drive, stays in memory.
class OddSystem : public System {
public:
    OddSystem(System& system, bool stopped, bool recordless) : system_(system), stopped_(stopped), recordless_(recordless) {}
    CoreServices Core() override {
        const CoreServices real = system_.Core();
        Files& files = recordless_ ? inMemory_ : real.files;
        return {real.clock, real.zone, real.memory, real.registry, files, real.xml, real.desktop};
    }
    Libraries& GetLibraries() override {
        if (stopped_) SendFromOutside(SIGTERM);
        return system_.GetLibraries();
    }
    Instance& GetInstance() override { return system_.GetInstance(); }
    StatusBoard& GetStatusBoard() override { return system_.GetStatusBoard(); }
    Executable& GetExecutable() override { return system_.GetExecutable(); }
    Console& GetConsole() override { return system_.GetConsole(); }
    CrashReports& GetCrashReports() override { return system_.GetCrashReports(); }

private:
    System& system_;
    bool stopped_, recordless_;
    FakeFiles inMemory_;
};

// With a third argument it is asked to end while it starts; under a name with a slash, which no block has, it gets no record.
const Role bridge("bridge", [](const std::vector<std::string>& arguments) {
    const auto system = SystemOf(arguments);
    OddSystem odd(*system, arguments.size() > 2, arguments[0].starts_with("no/"));
    CHalyrig32App(odd).InitInstance();
    return system->ExitStatus();
});

struct TerminalTest : ::testing::Test {
    void Open() {
        terminal = std::make_unique<PseudoTerminal>("bridge", test.Arguments());
        ASSERT_TRUE(terminal->Shows("Esc Exit")) << terminal->Picture();
    }

    // With the names' box ticked and its focus there.
    void OpenAndTick() {
        WriteSettings(Stored(), {});
        Open();
        terminal->Type("\t\t ");
        ASSERT_TRUE(terminal->Shows("[x] Send names")) << terminal->Picture();
    }

    Registry& Stored() { return test.system->Core().registry; }
    Settings Saved() { return ReadSettings(Stored()); }

    TestSystem test;
    std::unique_ptr<PseudoTerminal> terminal;
};

// The dialog itself, and what can stand on it: the keys that lead there from the names' box, and what it shows.
constexpr std::pair<std::string_view, std::string_view> kOpened[] = {{"", "Esc Exit"},
                                                                     {kEsc, "Exit Halyrig?"},
                                                                     {kF1, "Halyrig32 v" HALYRIG_VERSION},
                                                                     {"\t\t\t\r", "Choose a folder"},
                                                                     {"\t\t\t\t\r", "Import legacy Halyrig mappings?"}};

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
            EXPECT_TRUE(terminal->Focuses(focused)) << focused << '\n' << terminal->Picture();
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

TEST_F(TerminalTest, EscAsksAndLeavesTheSettings) {
    OpenAndTick();
    for (const std::string_view answer : {kEsc, std::string_view("\r")}) {
        terminal->Type(kEsc);
        EXPECT_SHOWS("Exit Halyrig?");
        terminal->Type(answer);
        EXPECT_SHOWS_NO("Exit Halyrig?");
    }
    EXPECT_EQ(0, terminal->Wait());
    EXPECT_FALSE(Saved().sendNames);
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
    std::string shown = terminal->Picture();
    std::erase(shown, '\n');  // the path may be longer than a row
    EXPECT_NE(shown.npos, shown.find("registry.reg: the settings can't be read: it is not a plain file")) << shown;
    std::filesystem::remove(file);
}

TEST_F(TerminalTest, SaysWhyItEndsAtOnceInASuiteThatIsAskedToClose) {
    const CCore other(test.system->Core());
    other.View()->sysFlag[kFlagQuitRequest] = 1;
    for (const std::string type : {"TERM=xterm", "TERM=dumb"}) {
        terminal = std::make_unique<PseudoTerminal>("bridge", test.Arguments(), std::vector{type});
        EXPECT_SHOWS("Halyrig32: The suite has been asked to close");
        EXPECT_EQ(0, terminal->Wait());
    }
}

// Nobody answers what is asked. That the record's request is seen shows that ticks go on.
TEST_F(TerminalTest, WhateverIsOpenItEndsFromOutside) {
    constexpr int kAskedByTheRecord = 0, kTerminalVanishes = -1;  // the others are signals
    for (const auto& [keys, shows] : kOpened) {
        for (const int end : {kAskedByTheRecord, SIGTERM, SIGINT, SIGHUP, SIGQUIT, kTerminalVanishes}) {
            SCOPED_TRACE(::testing::Message() << shows << ", " << end);
            OpenAndTick();
            terminal->Type(keys);
            EXPECT_SHOWS(shows);
            if (end == kAskedByTheRecord) CCore(test.system->Core(), Attachment::kOpenOnly).View()->sysFlag[kFlagQuitRequest] = 1;
            if (end == kTerminalVanishes) terminal->HangUp();
            if (end > 0) terminal->Signal(end);
            EXPECT_EQ(0, terminal->Wait());
            EXPECT_EQ(end == kAskedByTheRecord, Saved().sendNames);
        }
    }
}

TEST_F(TerminalTest, BeforeThereIsAScreenOrWithoutAnyItTellsOnALine) {
    std::vector<std::string> stopped = test.Arguments();
    stopped.emplace_back("stopped");
    EXPECT_EQ(0, PseudoTerminal("bridge", stopped).Wait());
    EXPECT_EQ(0, StartRole("bridge", stopped)->Wait());
    std::vector<std::string> recordless = test.Arguments();
    recordless[0].insert(0, "no/");  // no name of a block has a slash in it
    const std::tuple<const char*, const char*, const char*, int> rows[] = {
        {"TERM=xterm", "Press Enter to continue.", "\003", 128 + SIGINT},
        {"TERM=xterm", "Press Enter to continue.", "\n", 1},  // the dialog then opens and ends at once
        {"TERM=dumb", "it can't be opened: ", "", 1},
        {"TERM=", "Halyrig32: ", "", 1},
        {"TERM=never-heard-of", "Halyrig32: ", "", 1}};
    for (const auto& [type, shows, keys, status] : rows) {
        SCOPED_TRACE(::testing::Message() << type << " " << status);
        terminal = std::make_unique<PseudoTerminal>("bridge", recordless, std::vector<std::string>{type});
        EXPECT_SHOWS(shows);
        terminal->Type(keys);
        EXPECT_EQ(status, terminal->Wait());
    }
}

TEST_F(TerminalTest, AFolderIsChosenFromTheList) {
    const auto& root = test.folder.Path();
    for (const char* name : {"Ashore", ".hidden", "Deck", "Deckman", "x\xFF"}) std::filesystem::create_directory(root / name);
    std::filesystem::create_directory_symlink(root / "Ashore", root / "Zlink");
    test.folder.Write("Decoy", "a file");
    test.folder.Write("Deck/ShDfW2.so", "");
    WriteSettings(Stored(), {.dfwFolder = test.folder.File("Ashore/none/such")});
    Open();
    terminal->Type("\t\t\t\t\t\r");
    constexpr std::string_view kSmall = "a smaller terminal";
    const std::pair<std::string_view, std::string_view> steps[] = {
        {"", "Choose this folder"}, {kDown, ".."},           {"\r", "Ashore/"},     {kDown, "*Deck/"},
        {kDown, " Deckman/"},       {kDown, "ProgramData/"}, {kDown, "Zlink/"},     {kDown, "config/"},
        {kDown, ".hidden/"},        {"d", "Deck/"},          {"D", "Deckman/"},     {"\033[6~", ".hidden/"},
        {"\033[5~", "Choose this"}, {"a", "Ashore/"},        {"\r", "Choose this"}, {kLeft, "Ashore/"},
        {kDown, "Deck/"},           {kSmall, "Deck/"},       {kDown, "Deckman/"},   {kDown, "ProgramData/"},
        {kDown, "Zlink/"},          {kDown, "config/"},      {kDown, ".hidden/"},   {"dD", "Deckman/"},
        {"\r", "Choose this"}};
    for (const auto& [keys, focuses] : steps) {
        if (keys == kSmall) {
            terminal->Resize(10, 50);  // three rows of the list
        } else {
            terminal->Type(keys);
        }
        EXPECT_TRUE(terminal->Focuses(focuses)) << focuses << '\n' << terminal->Picture();
    }
    terminal->Type("\r");
    EXPECT_SHOWS_NO("Choose a folder");
    EXPECT_SHOWS("/Deckman");
    terminal->Type("\t\t\r");
    EXPECT_SHOWS("Exit Halyrig?");
    terminal->Type("y");
    EXPECT_EQ(0, terminal->Wait());
    EXPECT_EQ(test.folder.File("Deckman"), Saved().dfwFolder);
}

}  // namespace
}  // namespace twr::testing
