// The terminal host, in a process at a pseudo-terminal. Its dialog shows in the folder field what it is told.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <map>

#include "base/wide_text.h"
#include "platform/linux/services.h"
#include "support/child_process.h"
#include "support/linux/pseudo_terminal.h"
#include "support/scripted_dialog.h"

namespace twr::testing {
namespace {

constexpr std::string_view kEsc = "\033", kF1 = "\033OP";
constexpr int kCheck = 10, kField = 11, kButton = 12, kClose = 13;

constexpr ControlTemplate kControls[] = {
    {kCheck, ControlKind::kCheckBox, u"&Tick && tock", {10, 10, 80, 10}},
    {kField, ControlKind::kFolderField, u"", {10, 30, 200, 14}},
    {kButton, ControlKind::kPushButton, u"Ask", {10, 60, 40, 14}},
    {kClose, ControlKind::kDefaultButton, u"Close", {160, 60, 40, 14}},
};
constexpr DialogTemplate kLayout{1, u"Host", 220, 90, kControls};

std::u16string_view NameOf(BoxAnswer answer) {
    static constexpr std::u16string_view kNames[] = {u"none", u"ok", u"yes", u"no"};
    return kNames[static_cast<int>(answer)];
}

// What a test can have its dialog do.
struct Stage {
    Desktop& desktop;
    ScriptedDialog& dialog;

    void Show(std::u16string_view text) const { dialog.window->SetText(kField, text); }
    void ShowAnswer(BoxButtons buttons) const {
        const auto answer = desktop.ShowBox(u"Well?", u"Question", buttons, BoxIcon::kStop);
        Show(u"answer " + std::u16string(NameOf(answer)));
    }
    void AskAndTell() const {
        const auto answer = desktop.ShowBox(u"Well?", u"Host", BoxButtons::kYesNo, BoxIcon::kNone);
        desktop.ShowBox(answer == BoxAnswer::kYes ? u"Yes it is." : u"It is not.", u"Host", BoxButtons::kOk, BoxIcon::kStop);
    }
};

const std::map<std::string, void (*)(const Stage&)> plays = {
    {"ask", [](const Stage& stage) { stage.dialog.onButton = [stage] { stage.ShowAnswer(BoxButtons::kYesNo); }; }},
    {"tell", [](const Stage& stage) { stage.dialog.onButton = [stage] { stage.ShowAnswer(BoxButtons::kOk); }; }},
    // The third tick after the box has been opened ends the dialog: ticks go on in it.
    {"end in a box",
     [](const Stage& stage) {
         stage.dialog.onButton = [stage] {
             stage.dialog.window->StartTimer(1, 1);
             if (stage.desktop.ShowBox(u"Well?", u"", BoxButtons::kYesNo, BoxIcon::kNone) != BoxAnswer::kNone) std::abort();
         };
         stage.dialog.onTimer = [stage] {
             if (stage.dialog.ticks == 3) stage.dialog.window->End(DialogResult::kOk);
         };
     }},
    {"close in a box",
     [](const Stage& stage) {
         stage.dialog.onButton = [stage] {
             stage.dialog.window->PostClose();
             stage.ShowAnswer(BoxButtons::kOk);
         };
         stage.dialog.onCancel = [stage] { stage.desktop.ShowBox(u"Closing.", u"", BoxButtons::kOk, BoxIcon::kNone); };
     }},
    {"count",
     [](const Stage& stage) {
         stage.dialog.onInit = [stage] { stage.dialog.window->StartTimer(1, 1); };
         stage.dialog.onTimer = [stage] { stage.Show(std::u16string(stage.dialog.ticks % 2 ? u"odd" : u"even")); };
     }},
    {"make services",
     [](const Stage& stage) {
         stage.dialog.onButton = [stage] {
             MakeSystem({});
             stage.Show(u"made");
         };
     }},
    {"quit", [](const Stage& stage) { stage.dialog.onButton = [stage] { stage.desktop.PostQuit(); }; }},
    {"abort", [](const Stage& stage) { stage.dialog.onButton = [] { std::abort(); }; }},
    {"exit", [](const Stage& stage) { stage.dialog.onButton = [] { std::exit(3); }; }},
    {"copyright", [](const Stage& stage) { stage.dialog.onInit = [stage] { stage.Show(u"\u00A9 \u6D77\x1B[2J"); }; }},
    {"ask first", [](const Stage& stage) { stage.AskAndTell(); }},
    {"ask when open", [](const Stage& stage) { stage.dialog.onInit = [stage] { stage.AskAndTell(); }; }},
};

int Play(const std::string& play) {
    const auto system = MakeSystem({});
    Desktop& desktop = system->Core().desktop;
    ScriptedDialog dialog;
    dialog.onMenu = [&] { dialog.window->SetText(kField, u"menu chosen"); };
    dialog.onOk = dialog.onCancel = [&] { dialog.window->End(DialogResult::kOk); };
    plays.at(play)({desktop, dialog});
    dialog.onInit = [&, more = dialog.onInit] {
        dialog.window->AddMenuItem(7, u"&Menu item");
        if (more) more();
    };
    desktop.RunDialog(kLayout, dialog);
    return dialog.events.back() == "destroy" ? 0 : 1;
}

const Role host("terminal host", [](const std::vector<std::string>& arguments) { return Play(arguments[0]); });

// A shell with one job. It tells of the job's stop and brings it forward again when a line is typed.
const Role shell("shell", [](const std::vector<std::string>& arguments) {
    signal(SIGTTOU, SIG_IGN);
    const pid_t job = fork();
    if (job == 0) {
        setpgid(0, 0);
        tcsetpgrp(STDIN_FILENO, getpid());
        signal(SIGTTOU, SIG_DFL);
        _exit(Play(arguments[0]));
    }
    int status = 0;
    while (waitpid(job, &status, WUNTRACED) == job && WIFSTOPPED(status)) {
        tcsetpgrp(STDIN_FILENO, getpid());
        std::printf("stopped by %s\n", WSTOPSIG(status) == SIGTSTP ? "a key" : "something else");
        std::fflush(stdout);
        std::getchar();
        tcsetpgrp(STDIN_FILENO, job);
        kill(-job, SIGCONT);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
});

class TerminalHostTest : public ::testing::Test {
protected:
    void Open(const std::string& play, const std::vector<std::string>& environment = {}) {
        terminal = std::make_unique<PseudoTerminal>("terminal host", std::vector<std::string>{play}, environment);
    }
    void OpenAndAsk(const std::string& play) {
        Open(play);
        EXPECT_TRUE(terminal->Shows("Ask  ")) << terminal->Picture().All();
        terminal->Press("Ask");
    }

    std::unique_ptr<PseudoTerminal> terminal;
};

#define EXPECT_SHOWS(text) EXPECT_TRUE(terminal->Shows(text)) << text << " is not in\n" << terminal->Picture().All()

TEST_F(TerminalHostTest, AnswersABoxByKeyAndMouse) {
    const struct {
        const char* play;
        std::string_view keys, press, answer;
    } rows[] = {
        {"ask", "y", "", "yes"},     {"ask", "Y", "", "yes"},      {"ask", "n", "", "no"},     {"ask", "\r", "", "yes"},
        {"ask", "\t\r", "", "no"},   {"ask", "\033[Z ", "", "no"}, {"ask", kEsc, "", "no"},    {"ask", "x\033OC\r", "", "no"},
        {"ask", "", "[ Yes", "yes"}, {"ask", "", "[ No", "no"},    {"ask", "", "n No", "no"},  {"tell", "\r", "", "ok"},
        {"tell", kEsc, "", "ok"},    {"tell", "yn\t ", "", "ok"},  {"tell", "", "[ OK", "ok"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.play << " keys " << row.keys << " press " << row.press);
        OpenAndAsk(row.play);
        EXPECT_SHOWS("─ Question ─");
        const std::string_view hint = row.play == std::string_view("ask") ? "Esc Back" : "Enter OK";
        EXPECT_SHOWS(hint);  // stands in the last row, which is drawn last
        terminal->Type(row.keys);
        if (!row.press.empty()) terminal->Press(row.press);
        EXPECT_SHOWS("answer " + std::string(row.answer));
    }
}

// Each event of the mouse comes by itself, as from a hand.
TEST_F(TerminalHostTest, TicksGoOnWhateverTheMouseDoes) {
    Open("count");
    for (const char* event : {"0;5;5M", "0;5;5m", "0;5;5m", "1;5;5M", "1;5;5m", "2;5;5M", "2;5;5m", "35;5;5M", "64;5;5M", "65;5;5M",
                              "66;5;5M", "67;5;5M", "4;5;5M", "4;5;5m", "128;5;5M", "128;5;5m"}) {
        SCOPED_TRACE(event);
        terminal->Type(std::string("\033[<") + event);
        for (int i = 0; i < 20; ++i) {
            ASSERT_TRUE(terminal->Shows("even")) << terminal->Picture().All();
            ASSERT_TRUE(terminal->Shows("odd")) << terminal->Picture().All();
        }
    }
}

// A click and a key that have waited while the program was held up come in one piece.
TEST_F(TerminalHostTest, ClicksAndKeysThatComeTogetherAllCount) {
    Open("ask");
    EXPECT_SHOWS("[ ] Tick & tock");
    const std::string click = terminal->Click("[ ] Tick & tock");
    terminal->Type(click + click + click + "\t\t\r");
    EXPECT_SHOWS("Well?");
    EXPECT_SHOWS("[x] Tick &");  // what the box leaves of it
}

TEST_F(TerminalHostTest, APostedCloseIsRaisedInABox) {
    OpenAndAsk("close in a box");
    EXPECT_SHOWS("Closing.");
    terminal->Type("\r");
    EXPECT_SHOWS("Well?");
    terminal->Type("\r");
    EXPECT_SHOWS("answer ok");
    terminal->Press("Close");
    EXPECT_EQ(0, terminal->Wait());
}

// Deckman's stand-in does so, when it is loaded.
TEST_F(TerminalHostTest, ALibraryWithServicesOfItsOwnLeavesTheScreenAlone) {
    OpenAndAsk("make services");
    EXPECT_SHOWS("made");
    terminal->Type(kF1);
    EXPECT_SHOWS("Menu item");
}

TEST_F(TerminalHostTest, AccessKeysAndTheMenu) {
    Open("ask");
    EXPECT_SHOWS("[ ] Tick & tock");
    terminal->Type("t");
    EXPECT_SHOWS("[x] Tick & tock");
    terminal->Type("T");
    EXPECT_SHOWS("[ ] Tick & tock");
    terminal->Press("F1 Menu");
    EXPECT_SHOWS("Menu item");
    terminal->Type("m");
    EXPECT_SHOWS("menu chosen");
    terminal->Type("\r");  // from the check box to the default button
    EXPECT_EQ(0, terminal->Wait());
}

TEST_F(TerminalHostTest, EachEndRestoresTheTerminal) {
    const struct {
        const char* play;
        int status;
    } rows[] = {{"end in a box", 0}, {"quit", 0}, {"abort", 128 + SIGABRT}, {"exit", 3}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.play);
        OpenAndAsk(row.play);
        EXPECT_EQ(row.status, terminal->Wait());
        EXPECT_FALSE(terminal->Picture().OnOwnScreen());
    }
}

TEST_F(TerminalHostTest, ShowsWhatTheTerminalsEncodingCan) {
    Open("copyright");
    EXPECT_SHOWS("© 海?[2J");
    EXPECT_SHOWS("│");
    Open("copyright", {"LC_ALL=C"});
    EXPECT_SHOWS("? ??[2J");
}

TEST_F(TerminalHostTest, WithoutAPlaceableCursorItIsHeadless) {
    for (const char* type : {"TERM=dumb", "TERM=", "TERM=never-heard-of"}) {
        SCOPED_TRACE(type);
        Open("ask when open", {type});
        EXPECT_SHOWS("Host: It is not.");
        terminal->Signal(SIGTERM);
        EXPECT_EQ(0, terminal->Wait());
    }
}

TEST_F(TerminalHostTest, BeforeTheDialogABoxIsAskedOnALine) {
    Open("ask first");
    EXPECT_SHOWS("Host: Well?");
    terminal->Type("what\ny\n");
    EXPECT_SHOWS("Host: Yes it is.");
    EXPECT_FALSE(terminal->Picture().OnOwnScreen());
    terminal->Type("\n");
    EXPECT_SHOWS("Ask  ");
    EXPECT_TRUE(terminal->Picture().OnOwnScreen());
}

TEST_F(TerminalHostTest, StopsAndComesBackAsAnyJob) {
    terminal = std::make_unique<PseudoTerminal>("shell", std::vector<std::string>{"ask"});
    EXPECT_SHOWS("[ ] Tick & tock");
    terminal->Type("\x1A");
    EXPECT_SHOWS("stopped by a key");
    EXPECT_FALSE(terminal->Picture().OnOwnScreen());
    terminal->Type("\n");
    EXPECT_SHOWS("[ ] Tick & tock");
    EXPECT_TRUE(terminal->Picture().OnOwnScreen());
    terminal->Type(" ");
    EXPECT_SHOWS("[x] Tick & tock");
    terminal->Type(kEsc);
    EXPECT_EQ(0, terminal->Wait());
}

}  // namespace
}  // namespace twr::testing
