// SPDX-License-Identifier: MIT
// The terminal host, in a process at a pseudo-terminal. Its dialog shows in the folder field what it is told.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <map>

#include "base/wide_text.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"
#include "support/child_process.h"
#include "support/linux/pseudo_terminal.h"
#include "support/scripted_dialog.h"

namespace twr::testing {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kEsc = "\033", kF1 = "\033OP", kRight = "\033OC";
constexpr int kTicks = 600;  // of some 180 bytes, far more than any terminal takes at once
constexpr int kCheck = 10, kField = 11, kButton = 12, kClose = 13;

constexpr ControlTemplate kControls[] = {{kButton, ControlKind::kPushButton, u"Ask", {10, 60, 40, 14}},
                                         {kCheck, ControlKind::kCheckBox, u"&Tick && tock", {10, 10, 80, 10}},
                                         {kField, ControlKind::kFolderField, u"", {10, 30, 200, 14}},
                                         {kClose, ControlKind::kDefaultButton, u"Close", {160, 60, 40, 14}}};
constexpr DialogTemplate kLayout{1, u"Host", 220, 90, kControls};

// A dialog whose button does what the first argument says. With a pipe as the second, each tick is told there and changes the
// picture, the first kTicks at least.
int Play(const std::vector<std::string>& arguments) {
    const auto system = MakeSystem({});
    Desktop& desktop = system->Core().desktop;
    ScriptedDialog dialog;
    const auto show = [&](std::u16string_view text) { dialog.window->SetText(kField, text); };
    const auto ask = [&](BoxButtons buttons) {
        static constexpr std::u16string_view kAnswers[] = {u"answer none", u"answer ok", u"answer yes", u"answer no"};
        show(kAnswers[static_cast<int>(desktop.ShowBox(u"Well?", u"Question", buttons, BoxIcon::kStop))]);
    };
    const auto remarkAndQuit = [&] {
        for (int i = 0; i < 3; ++i) desktop.Remark(u"It is gone.", u"Host");
        desktop.PostQuit();
    };
    const std::map<std::string, std::function<void()>> plays = {{"ask", [&] { ask(BoxButtons::kYesNo); }},
                                                                {"tell", [&] { ask(BoxButtons::kOk); }},
                                                                {"make services", [&] { show(MakeSystem({}) ? u"made" : u""); }},
                                                                {"remark and quit", remarkAndQuit},
                                                                {"abort", [] { std::abort(); }},
                                                                {"exit", [] { std::exit(3); }},
                                                                {"show", [&] { show(u"\u00A9 \u6D77\x1B[2J"); }}};
    const int told = std::stoi(arguments[1]);
    dialog.onInit = [&] {
        dialog.window->AddMenuItem(7, u"&Menu item");
        if (told >= 0) dialog.window->StartTimer(1, 1);
    };
    dialog.onTimer = [&] {
        show(dialog.ticks < kTicks ? std::u16string(60, dialog.ticks % 2 ? u'\u2588' : u'\u2592') : u"caught up");
        if (write(told, "", 1) != 1) std::abort();
    };
    dialog.onButton = plays.at(arguments[0]);
    dialog.onMenu = [&] { show(u"menu chosen"); };
    dialog.onOk = dialog.onCancel = [&] { dialog.window->End(DialogResult::kOk); };
    desktop.RunDialog(kLayout, dialog);
    return dialog.events.back() == "destroy" ? 0 : 1;
}

const Role host("terminal host", Play);

// A shell with one job. It tells of the job's stop, and brings it forward again when a line is typed, for which it has to wait.
const Role shell("shell", [](const std::vector<std::string>&) {
    constexpr const char* kScript = R"("$0" --run-role "terminal host" ask -1; echo "stopped: $?"; read line && fg)";
    return execl("/bin/sh", "sh", "-mc", kScript, OwnProgram().c_str(), nullptr);
});

struct TerminalHostTest : ::testing::Test {
    void Open(const std::string& play, const std::vector<std::string>& environment = {}, int told = -1,
              const char* role = "terminal host") {
        terminal = std::make_unique<PseudoTerminal>(role, std::vector<std::string>{play, std::to_string(told)}, environment);
    }
    void OpenAndAsk(const std::string& play, const std::vector<std::string>& environment = {}) {
        Open(play, environment);
        EXPECT_TRUE(terminal->Shows("[ Ask ]")) << terminal->Picture();
        terminal->Type("\r");
    }
    void OpenAndTick() {
        int ends[2];
        ASSERT_EQ(0, pipe(ends));
        fcntl(ends[0], F_SETFD, FD_CLOEXEC);
        const Descriptor told(ends[1]);
        ticks = Descriptor(ends[0]);
        Open("ask", {}, told.Get());
    }
    // Waits for so many more.
    bool Ticks(int count) {
        for (pollfd event{ticks.Get(), POLLIN, 0}; count > 0; --count) {
            char byte = 0;
            if (poll(&event, 1, 5000) != 1 || read(ticks.Get(), &byte, 1) != 1) return false;
        }
        return true;
    }

    Descriptor ticks;
    std::unique_ptr<PseudoTerminal> terminal;
};

TEST_F(TerminalHostTest, AnswersABoxByKey) {
    const std::tuple<const char*, std::string_view, std::string_view> rows[] = {
        {"ask", "y", "yes"},        {"ask", "Y", "yes"},      {"ask", "n", "no"},  {"ask", "\r", "yes"},
        {"ask", "\t\r", "no"},      {"ask", "\033[Z ", "no"}, {"ask", kEsc, "no"}, {"tell", "\r", "ok"},
        {"ask", "x\033OC\r", "no"}, {"tell", "yn\t ", "ok"},  {"tell", kEsc, "ok"}};
    for (const auto& [play, keys, answer] : rows) {
        SCOPED_TRACE(::testing::Message() << play << " keys " << keys);
        OpenAndAsk(play);
        EXPECT_SHOWS("─ Question ─");
        EXPECT_SHOWS(play == std::string_view("ask") ? "Esc Back" : "Enter OK");  // stands in the last row, which is drawn last
        terminal->Type(keys);
        EXPECT_SHOWS("answer " + std::string(answer));
    }
}

// Keys that have waited while the program was held up come in one piece. Ctrl-S stops nothing.
TEST_F(TerminalHostTest, KeysThatComeTogetherAllCount) {
    Open("ask");
    EXPECT_SHOWS("[ ] Tick & tock");
    terminal->Type("\x13\033OQ\t ");  // F2, for which the menu has no item
    EXPECT_SHOWS("[x] Tick & tock");
    EXPECT_SHOWS_NO("menu chosen");
    terminal->Type(kF1);
    EXPECT_SHOWS("menu chosen");
    terminal->Type("\033n\033x" + std::string(kRight) + "\t\r");  // Alt and a key are no wish to leave
    EXPECT_EQ(0, terminal->Wait());
}

TEST_F(TerminalHostTest, DrawsAnewWhatOthersHaveSpoilt) {
    Open("ask");
    for (const bool continued : {true, false}) {
        EXPECT_SHOWS("Space Tick or press");  // in the last row, which is drawn last
        terminal->Spoil();
        continued ? terminal->Signal(SIGCONT) : terminal->Type("\x0C");
        EXPECT_SHOWS("[ ] Tick & tock");
    }
}

// Deckman's stand-in does so, when it is loaded.
TEST_F(TerminalHostTest, ALibraryWithServicesOfItsOwnLeavesTheScreenAlone) {
    OpenAndAsk("make services");
    EXPECT_SHOWS("made");
    terminal->Type(kF1);
    EXPECT_SHOWS("menu chosen");
}

TEST_F(TerminalHostTest, EachEndGivesTheTerminalBack) {
    const std::tuple<const char*, int, bool> rows[] = {
        {"abort", 128 + SIGABRT, false}, {"exit", 3, false}, {"remark and quit", 0, true}};
    for (const auto& [play, status, remarks] : rows) {
        SCOPED_TRACE(play);
        OpenAndAsk(play);
        EXPECT_FALSE(terminal->GivenBack());
        EXPECT_EQ(status, terminal->Wait());
        EXPECT_TRUE(terminal->GivenBack());
        const std::string left = terminal->Picture();
        EXPECT_EQ(remarks, left.find("Host: It is gone.") != left.npos) << left;
        EXPECT_EQ(left.find("It is gone."), left.rfind("It is gone.")) << "once, however often it came\n" << left;
    }
}

TEST_F(TerminalHostTest, ShowsWhatTheTerminalsEncodingCan) {
    OpenAndAsk("show", {"LC_ALL=xx_XX.UTF-8"});  // not installed
    EXPECT_SHOWS("© 海?[2J");
    EXPECT_SHOWS("│");
    OpenAndAsk("show", {"LC_ALL=C", "TERM=screen"});
    EXPECT_SHOWS("? ??[2J");
    EXPECT_SHOWS("│");
}

TEST_F(TerminalHostTest, ATerminalThatIsNotDrainedHoldsUpNeitherTicksNorSignals) {
    for (const bool drainedAtLast : {true, false}) {
        OpenAndTick();
        ASSERT_TRUE(Ticks(kTicks + 50)) << "with far more to show than the terminal takes";
        if (drainedAtLast) {
            EXPECT_SHOWS("caught up");
            EXPECT_SHOWS("[ ] Tick & tock");
            EXPECT_LT(terminal->Taken(), 80000u) << "pictures that nobody has seen are left out";
        }
        const auto begun = std::chrono::steady_clock::now();
        terminal->Signal(SIGTERM);
        EXPECT_EQ(0, drainedAtLast ? terminal->Wait() : terminal->WaitBlindly());
        EXPECT_LT(std::chrono::steady_clock::now() - begun, 1s);
    }
}

TEST_F(TerminalHostTest, BelievesNoAbsurdSize) {
    OpenAndTick();
    for (const auto& [rows, columns] : {std::pair(65535, 80), {65535, 65535}, {0, 0}, {1, 1}, {5, 30}, {24, 10}}) {
        SCOPED_TRACE(::testing::Message() << rows << " by " << columns);
        terminal->Resize(rows, columns);
        terminal->Signal(SIGCONT);  // which makes it take the screen again
        ASSERT_TRUE(Ticks(50));
        terminal->Resize(24, 80);
        EXPECT_SHOWS("[ ] Tick & tock");
        EXPECT_SHOWS("Esc Exit");
    }
}

TEST_F(TerminalHostTest, StopsAndComesBackAsAnyJob) {
    Open("ask", {}, -1, "shell");
    terminal->Type("\t");
    EXPECT_TRUE(terminal->Focuses("Tick"));
    terminal->Type("\x1A");
    EXPECT_SHOWS("stopped: " + std::to_string(128 + SIGTSTP));
    EXPECT_TRUE(terminal->GivenBack());
    terminal->Type("\n");
    EXPECT_SHOWS("[ ] Tick & tock");
    terminal->Type(" ");
    EXPECT_SHOWS("[x] Tick & tock");
    terminal->Type(kEsc);
    EXPECT_EQ(0, terminal->Wait());
}

}  // namespace
}  // namespace twr::testing
