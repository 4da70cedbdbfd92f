// The whole program as its user sees it at a terminal, in a process of its own.
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <functional>

#include "bridge/application.h"
#include "config/bridge_settings.h"
#include "core/core.h"
#include "support/child_process.h"
#include "support/linux/pseudo_terminal.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

constexpr std::string_view kEsc = "\033", kF1 = "\033OP", kDown = "\033OB";

const Role bridge("bridge at a terminal", [](const std::vector<std::string>& arguments) {
    const auto system = SystemOf(arguments);
    CHalyrig32App(*system).InitInstance();
    return 0;
});

// Its record can't be created: no name of a block has a slash in it.
const Role recordless("bridge without a record", [](const std::vector<std::string>& arguments) {
    const auto system = SystemOf({"no/" + arguments[0], arguments[1]});
    CHalyrig32App(*system).InitInstance();
    return system->ExitStatus();
});

class TerminalTest : public ::testing::Test {
protected:
    TerminalTest() {
        for (const char* name : {"Ashore", "Deckman"}) std::filesystem::create_directory(test.folder.Path() / name);
        SaveDefaults();
    }

    void SaveDefaults() {
        Settings settings;
        settings.dfwFolder = test.folder.Text();
        WriteSettings(Stored(), settings);
    }

    void Open() {
        terminal = std::make_unique<PseudoTerminal>("bridge at a terminal", test.Arguments());
        ASSERT_TRUE(terminal->Shows("Esc Exit")) << terminal->Picture().All();
    }

    Registry& Stored() { return test.system->Core().registry; }
    Settings Saved() { return ReadSettings(Stored()); }
    std::u16string Folder(const char* name) const { return test.folder.File(name); }

    TestSystem test;
    std::unique_ptr<PseudoTerminal> terminal;
};

#define EXPECT_SHOWS(text) EXPECT_TRUE(terminal->Shows(text)) << text << " is not in\n" << terminal->Picture().All()
#define EXPECT_SHOWS_NO(text) EXPECT_TRUE(terminal->ShowsNo(text)) << text << " is in\n" << terminal->Picture().All()

TEST_F(TerminalTest, ShowsTheDialogInItsTabOrder) {
    Open();
    EXPECT_SHOWS("─ Halyrig32 ─");
    EXPECT_SHOWS("Dfw folder:");
    for (const char* focused :
         {"[  Close   ]", "[x] Depth in feet from Dfw", "[ ] Send names to remote channels",
          "[ ] Use Dfw 'TIMER' channel to set Twr timer", "[ ] Heading, twd and cog in degrees true", "[...]", "[  Import  ]"}) {
        EXPECT_TRUE(terminal->Focuses(focused)) << terminal->Picture().Reversed();
        terminal->Type("\t");
    }
    EXPECT_TRUE(terminal->Focuses("[  Close   ]")) << "round and round";
    terminal->Type("\033[Z");
    EXPECT_TRUE(terminal->Focuses("[  Import  ]")) << "and back";
}

TEST_F(TerminalTest, EachWayOutSavesOrLeavesTheSettings) {
    // A picture can be seen half drawn. Its last row, which has the hints, comes last.
    const auto expectBox = [&] {
        EXPECT_SHOWS("Exit Halyrig?");
        EXPECT_SHOWS("Esc Back");
    };
    const auto ask = [&] {
        terminal->Type(kEsc);
        expectBox();
    };
    const auto answer = [&](std::string_view keys) {
        terminal->Type(keys);
        EXPECT_SHOWS("Esc Exit");
        EXPECT_SHOWS_NO("Exit Halyrig?");
    };
    const struct {
        const char* name;
        std::function<void()> leave;
        bool saves;
    } rows[] = {
        {"Close by mouse, No, Close by key, Yes by mouse",
         [&] {
             terminal->Press("[  Close");
             expectBox();
             answer("n");
             terminal->Type("\r");
             expectBox();
             terminal->Press("[ Yes ]");
         },
         true},
        {"Esc twice, Alt and a key, Esc, Yes",
         [&] {
             ask();
             answer(kEsc);
             terminal->Type("\033n");  // no wish to leave
             ask();
             terminal->Type("\r");
         },
         false},
        {"asked to quit below an open box",
         [&] {
             ask();
             CCore(test.system->Core(), Attachment::kOpenOnly).View()->sysFlag[kFlagQuitRequest] = 1;
         },
         true},
        {"SIGTERM", [&] { terminal->Signal(SIGTERM); }, false},
        {"SIGINT", [&] { terminal->Signal(SIGINT); }, false},
        {"SIGHUP", [&] { terminal->Signal(SIGHUP); }, false},
        {"SIGQUIT", [&] { terminal->Signal(SIGQUIT); }, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        SaveDefaults();
        Open();
        terminal->Press("[ ] Send names");
        EXPECT_SHOWS("[x] Send names");
        row.leave();
        EXPECT_EQ(0, terminal->Wait());
        EXPECT_FALSE(terminal->Picture().OnOwnScreen());
        EXPECT_EQ(row.saves, Saved().sendNames);
    }
}

TEST_F(TerminalTest, ThatSettingsAreLostStandsInTheTerminalWhenTheScreenHasGone) {
    Open();
    const auto file = test.folder.Path() / "config/registry.reg";
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    terminal->Press("[  Close");
    EXPECT_SHOWS("Exit Halyrig?");
    terminal->Type("y");
    EXPECT_EQ(0, terminal->Wait());
    std::string shown = terminal->Picture().All();
    std::erase(shown, '\n');  // the path may be longer than a row
    EXPECT_NE(shown.npos, shown.find("registry.reg: the settings can't be read: it is no plain file")) << shown;
}

TEST_F(TerminalTest, EndsWhenItIsToldToBeforeThereIsAScreen) {
    EXPECT_EQ(0, PseudoTerminal("bridge stopped at its start", test.Arguments()).Wait());
    terminal = std::make_unique<PseudoTerminal>("bridge without a record", test.Arguments());
    EXPECT_SHOWS("Press Enter to go on.");
    terminal->Type("\003");
    EXPECT_EQ(128 + SIGINT, terminal->Wait());
    terminal = std::make_unique<PseudoTerminal>("bridge without a record", test.Arguments());
    EXPECT_SHOWS("it can't be opened: ");
    EXPECT_SHOWS("Press Enter to go on.");
    terminal->Type("\r");
    EXPECT_NE(0, terminal->Wait());
}

TEST_F(TerminalTest, SaysWhyItEndsAtOnceInASuiteThatIsAskedToClose) {
    const CCore other(test.system->Core());
    other.View()->sysFlag[kFlagQuitRequest] = 1;
    terminal = std::make_unique<PseudoTerminal>("bridge at a terminal", test.Arguments());
    EXPECT_SHOWS("Halyrig32: The suite has been asked to close");
    EXPECT_EQ(0, terminal->Wait());
}

TEST_F(TerminalTest, ATerminalThatVanishesEndsItWithTheSettingsLeft) {
    for (const std::string_view keys : {std::string_view(), kEsc, kF1}) {
        Open();
        terminal->Press("[ ] Send names");
        EXPECT_SHOWS("[x] Send names");
        terminal->Type(keys);
        EXPECT_TRUE(keys.empty() || terminal->ShowsNo("Esc Exit"));
        terminal->HangUp();
        EXPECT_EQ(0, terminal->Wait());
        EXPECT_FALSE(Saved().sendNames);
    }
}

TEST_F(TerminalTest, AFolderIsChosenFromTheList) {
    Open();
    terminal->Press("[...]");
    EXPECT_SHOWS("Deckman/");
    terminal->Type(kEsc);
    EXPECT_SHOWS_NO("Choose a folder");
    terminal->Type("\r");  // the field has the focus
    EXPECT_SHOWS("Ashore/");
    terminal->Type(kDown);
    EXPECT_TRUE(terminal->Focuses(" .."));
    terminal->Type(kDown);
    EXPECT_TRUE(terminal->Focuses("Ashore/")) << terminal->Picture().Reversed();
    terminal->Type("\r");
    EXPECT_SHOWS_NO("Choose a folder");
    EXPECT_SHOWS("/Ashore");
    terminal->Type(" ");
    EXPECT_SHOWS("Choose a folder");
    terminal->Type("\033OD");  // up, where the folder that was left is selected
    EXPECT_TRUE(terminal->Focuses("Ashore/")) << terminal->Picture().Reversed();
    terminal->Type("\177\177\177\177\177\177De\t\r");
    EXPECT_SHOWS_NO("Choose a folder");
    EXPECT_SHOWS("/Deckman");
    terminal->Press("[  Close");
    EXPECT_SHOWS("Exit Halyrig?");
    terminal->Type("y");
    EXPECT_EQ(0, terminal->Wait());
    EXPECT_EQ(Folder("Deckman"), Saved().dfwFolder);
}

TEST_F(TerminalTest, AFolderThatIsNotThereIsNotChosen) {
    Open();
    terminal->Press("[...]");
    EXPECT_SHOWS("Choose a folder");
    terminal->Type("nowhere");
    EXPECT_SHOWS("/nowhere");
    terminal->Press("Enter Choose");
    EXPECT_SHOWS("There is no such folder.");
}

TEST_F(TerminalTest, TheMenuShowsTheAboutBox) {
    Open();
    for (const std::string_view choice : {"\r", "a"}) {
        terminal->Type(kF1);
        EXPECT_SHOWS("About Halyrig32...");
        terminal->Type(choice);
        EXPECT_SHOWS("Halyrig32 v" HALYRIG_VERSION);
        EXPECT_SHOWS("©");
        terminal->Type(kEsc);
        EXPECT_SHOWS_NO("Halyrig32 v");
    }
}

// The import button, answered both ways, with the mapping file that results.
TEST_F(TerminalTest, ImportsALegacyMappingOrSaysThatItCant) {
    const std::string data = "ProgramData/Tidewright/";
    test.folder.Write("Data/J_vars06.d", "[variables]\n7 BSP kt 1 1 1\n");
    test.folder.Write(data + "instruments/halyrig.xml", "<halyrig/>");
    const struct {
        const char* line;
        const char* answer;
        bool saved, message;
    } rows[] = {{"7,1\n", "n", false, false}, {"8,1\n", "y", false, true}, {"7,1\n", "y", true, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.line) + row.answer);
        test.folder.Write(data + "halyrig/halyrig.csv", row.line);
        Open();
        terminal->Press("[  Import");
        EXPECT_SHOWS("Import legacy Halyrig mappings?");
        terminal->Type(row.answer);
        EXPECT_SHOWS_NO("Import legacy Halyrig mappings?");
        if (row.message) {
            EXPECT_SHOWS("Unable to import legacy mappings.");
            terminal->Type("\r");
            EXPECT_SHOWS_NO("Unable to import");
        }
        terminal->Type(kEsc);
        EXPECT_SHOWS("Exit Halyrig?");
        terminal->Type("y");
        EXPECT_EQ(0, terminal->Wait());
        const std::string mapping = test.folder.Read(data + "instruments/halyrig.xml");
        EXPECT_EQ(row.saved, mapping.find("<var twr=\"1\" dfw=\"7\" />") != std::string::npos) << mapping;
        EXPECT_EQ(!row.saved, mapping == "<halyrig/>");
    }
}

TEST_F(TerminalTest, FollowsTheSizeOfTheWindow) {
    Open();
    terminal->Resize(10, 52);
    EXPECT_SHOWS("[ Import ]");
    EXPECT_TRUE(terminal->Shows("─┐")) << terminal->Picture().All();
    terminal->Resize(5, 30);
    EXPECT_SHOWS("too small");
    terminal->Type(" ");  // would press the Close button
    terminal->Resize(40, 120);
    EXPECT_SHOWS("[  Close");
    EXPECT_SHOWS_NO("too small");
    EXPECT_SHOWS_NO("Exit Halyrig?");
    EXPECT_SHOWS("Esc Exit");
}

}  // namespace
}  // namespace twr::testing
