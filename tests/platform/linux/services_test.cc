// SPDX-License-Identifier: MIT
// What the small services of Linux do with its environment, signals, zones and terminals.
#include "platform/linux/services.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <fstream>

#include "base/wide_text.h"
#include "platform/linux/signal_queue.h"
#include "platform/linux/terminal/text.h"
#include "platform/linux/window_state.h"
#include "support/child_process.h"
#include "support/linux/pseudo_terminal.h"
#include "support/linux/signals.h"
#include "support/scripted_dialog.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

namespace fs = std::filesystem;

const Role kConsoleSize("console size", [](const std::vector<std::string>& arguments) {
    if (!arguments.empty()) dup2(open(arguments[0].c_str(), O_RDONLY), STDIN_FILENO);
    const auto screen = MakeConsole()->TakeScreen();
    if (!screen) return std::puts("no pictures");
    const ConsoleSize size = screen->Size();
    screen->Draw({{0, 0, std::to_string(size.columns) + "x" + std::to_string(size.rows)}});
    return std::getchar();
});

// Asks for signals only while its output is held up.
const Role kTicking("console ticking", [](const std::vector<std::string>&) {
    const auto console = MakeConsole();
    Output output = console->Wait(0) ? Output::kWritten : Output::kRefused;
    while (output == Output::kWritten) output = console->Write("tick ", [&] { return console->Wait(0); });
    return output == Output::kGivenUp ? 0 : 1;
});

TEST(PosixConsole, EndsByASignalWhileItsTerminalIsHeld) {
    PseudoTerminal terminal("console ticking", {});
    ASSERT_TRUE(terminal.Shows("tick"));
    terminal.Type("\x13");  // Ctrl-S
    terminal.Signal(SIGTERM);
    EXPECT_EQ(0, terminal.Wait());
}

// What its reader has left, and then its lines are taken, whatever is sent.
const Role kAsking("console asking", [](const std::vector<std::string>&) {
    const auto console = MakeConsole();
    const auto typed = console->ReadLine();
    std::printf("typed %s\n", typed ? typed->c_str() : "nothing");
    std::fflush(stdout);
    close(STDOUT_FILENO);
    int ends[2];
    if (pipe(ends) != 0) return 1;
    close(ends[0]);
    dup2(ends[1], STDOUT_FILENO);
    return console->Write("x", [] { return true; }) == Output::kReaderGone ? 0 : 1;
});

TEST(PosixConsole, ReadsALineAndTellsAReaderThatHasGone) {
    const auto child = StartRole("console asking", {});
    child->WriteLine("yes");
    EXPECT_EQ("typed yes", child->ReadLine());
    EXPECT_EQ(0, child->Wait());
}

const Role kArguments("answers", [](const std::vector<std::string>& arguments) {
    std::string name = "halyrig32", typed = arguments.at(0);
    char* argv[] = {name.data(), typed.data()};
    std::puts(AnswerArguments(2, argv) ? "answered" : "starts");
    return 0;
});

TEST(Arguments, AreAnsweredAtATerminalAlone) {
    for (const auto& [typed, shown, then] : {std::tuple("--version", "halyrig32 1.", "answered"),
                                             {"--help", "takes no options", "answered"},
                                             {"-x", "-x is no option and has no effect", "starts"}}) {
        PseudoTerminal terminal("answers", {typed});
        EXPECT_TRUE(terminal.Shows(shown) && terminal.Shows(then)) << terminal.Picture();
        EXPECT_EQ("starts", StartRole("answers", {typed})->ReadLine()) << "a service has none";
    }
}

TEST(PosixConsole, DrawsOnlyOnATerminalThatTakesPictures) {
    const std::pair<const char*, const char*> rows[] = {
        {"TERM=xterm", "80x24"}, {"TERM=dumb", "no pictures"}, {"TERM=", "no pictures"}};
    for (const auto& [term, shown] : rows) EXPECT_TRUE(PseudoTerminal("console size", {}, {term}).Shows(shown)) << term;
    EXPECT_TRUE(PseudoTerminal("console size", {"/dev/null"}).Shows("no pictures")) << "none that nobody can answer";
}

// Another program may have left it so.
const Role kPours("console pours", [](const std::vector<std::string>&) {
    fcntl(STDOUT_FILENO, F_SETFL, O_NONBLOCK);
    return MakeConsole()->Write(std::string(1 << 20, 'x') + '\n', [] { return true; }) == Output::kWritten ? 0 : 1;
});

TEST(PosixConsole, WaitsForAPipeThatIsFull) {
    const auto child = StartRole("console pours", {});
    EXPECT_EQ(1u << 20, child->ReadLine().size());
    EXPECT_EQ(0, child->Wait());
}

// The part of a zone's rule that puts daylight time into force on the day that lies this many days from today, and ends it on
// another.
std::string Rule(int startFromToday, int endFromToday) {
    const std::time_t now = std::time(nullptr);
    std::tm today{};
    gmtime_r(&now, &today);
    const auto day = [&](int fromToday) { return ",J" + std::to_string((today.tm_yday + fromToday + 365) % 365 + 1); };
    return day(startFromToday) + day(endFromToday);
}

TEST(Zone, GivesBiasesAsMinutesToAddToLocalTime) {
    const TestSystem test;
    const auto told = [&](const std::string& zone) {
        SetVariable("TZ", zone.c_str());
        const auto state = test.system->Core().zone.Now();
        if (!state) return std::string("none");
        return std::to_string(state->bias) + ' ' + std::to_string(state->daylightBias) + (state->daylight ? " now" : "");
    };
    const std::string on = Rule(-60, 60), off = Rule(60, -60);
    const std::pair<std::string, const char*> rows[] = {{"UTC", "0 0"},
                                                        {"CET-1", "-60 0"},
                                                        {"<-0330>3:30", "210 0"},
                                                        {"EST5EDT" + on, "300 -60 now"},
                                                        {"EST5EDT" + off, "300 -60"},
                                                        {"<+1030>-10:30<+11>-11" + on, "-630 -30 now"},
                                                        {"IST-1GMT0" + on, "-60 60 now"},
                                                        {"EST5EDT,J1/0,J365/25", "300 -60 now"}};
    for (const auto& [zone, state] : rows) EXPECT_EQ(state, told(zone)) << zone;
    for (const char* name : {"Nowhere/Atlantis", "/dev/null", "x", "12", "<+03"}) EXPECT_EQ("none", told(name)) << name;
    SetVariable("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    const std::pair<std::int64_t, std::int32_t> moments[] = {
        {1774745999, -60}, {1774746000, -120}, {1792889999, -120}, {1792890000, -60}};  // 2026-03-29 and 10-25, 01:00 UTC
    for (const auto& [second, bias] : moments) EXPECT_EQ(bias, test.system->Core().zone.BiasAt(second * 10'000'000)) << second;
    if (!fs::exists("/usr/share/zoneinfo")) GTEST_SKIP() << "no zone data on this machine";
    for (const char* name : {"Asia/Kolkata", ":Asia/Kolkata"}) EXPECT_EQ("-330 0", told(name)) << name;
}

TEST(UserRoots, FollowTheEnvironment) {
    const std::string user = std::to_string(geteuid()), session = "/run/user/" + user;
    const std::string here = fs::exists(session) ? session + ' ' : "", always = here + "/tmp-" + user + " status ";
    const std::string usual = always + (here.empty() ? "/dev/shm-" + user + ' ' : here);
    const std::tuple<const char*, const char*, const char*, const char*, std::string> rows[] = {
        {"/h", nullptr, nullptr, nullptr, "/h/.config/tidewright/registry.reg /h/.local/share " + usual},
        {"/h", "/c", "/d", "/dev", "/c/tidewright/registry.reg /d /dev " + always + "/dev " + here},
        {"/h", "relative", "", "/no/such/folder", "/h/.config/tidewright/registry.reg /h/.local/share " + usual}};
    for (const auto& [home, config, data, runtime, expected] : rows) {
        for (const auto& [name, value] :
             {std::pair("HOME", home), {"XDG_CONFIG_HOME", config}, {"XDG_DATA_HOME", data}, {"XDG_RUNTIME_DIR", runtime}})
            SetVariable(name, value);
        const Roots roots = UserRoots();
        std::u16string all = roots.namePrefix + roots.registry + u' ' + roots.programData + u' ';
        for (const FilePlace& place : roots.locks) all += place.folder + place.tag + u' ';
        all += u"status ";
        for (const FilePlace& place : roots.status) all += place.folder + place.tag + u' ';
        EXPECT_EQ(expected, ToUtf8(all));
    }
    for (const char* name : {"HOME", "XDG_DATA_HOME"}) SetVariable(name, nullptr);
    EXPECT_TRUE(UserRoots().programData.ends_with(u"/.local/share")) << "from the list of users";
}

// Two starts of one user whose environments name different folders have one place in common.
TEST(LockFiles, LetOneStartWhateverItsEnvironmentAndGiveWayToNoForeignFile) {
    // plant: at the file in the common folder
    // second: may start too
    const std::tuple<const char*, std::function<void(const fs::path&)>, const char*, bool> rows[] = {
        {"nothing there", [](const auto&) {}, "", false},
        {"a link", [](const auto& path) { fs::create_symlink("/dev/null", path); }, "it is a link", true},
        {"a folder", [](const auto& path) { fs::create_directory(path); }, "it is not a plain file", true},
        {"a file of another user's",
         [](const auto& path) {
             std::ofstream(path).put('x');
             EXPECT_EQ(0, chown(path.c_str(), 12345, 12345));
         },
         "it belongs to another user", true}};
    for (const auto& [what, plant, told, second] : rows) {
        SCOPED_TRACE(what);
        if (geteuid() != 0 && std::string_view(what) == "a file of another user's") {
            LeaveOut(what, "only root can plant it");
            continue;
        }
        const TempFolder folder;
        for (const char* name : {"a", "b", "common"}) fs::create_directory(folder.Path() / name);
        const auto system = [&](const char* own) {
            Roots roots = TestRoots("x", folder.Text());
            roots.namePrefix.clear();
            roots.locks = {{folder.File(own)}, {folder.File("a/../common"), u"-7"}, {folder.File("common"), u"-7"}};
            return MakeSystem(roots);
        };
        plant(folder.Path() / "common/halyrig-7.lock");
        auto first = system("a");
        ::testing::internal::CaptureStderr();
        EXPECT_TRUE(first->GetInstance().Claim(u"Halyrig"));
        const std::string said = ::testing::internal::GetCapturedStderr();
        EXPECT_TRUE(said.empty() == !*told && said.find(told) != said.npos) << said;
        EXPECT_TRUE(fs::exists(folder.Path() / "a/halyrig.lock"));
        ::testing::internal::CaptureStderr();
        EXPECT_FALSE(system("a")->GetInstance().Claim(u"Halyrig"));
        EXPECT_EQ(NameLook::kTaken, system("a")->GetInstance().Look(u"Halyrig").state);
        const NameLook look = system("b")->GetInstance().Look(u"Halyrig");
        EXPECT_EQ(second ? NameLook::kUnknown : NameLook::kTaken, look.state);
        EXPECT_NE(std::string::npos, look.why.find(second ? told : "")) << look.why;
        EXPECT_EQ(second, system("b")->GetInstance().Claim(u"Halyrig"));
        const pid_t helper = fork();  // as a library's; it has no part in the locks
        while (helper == 0) raise(SIGSTOP);
        waitpid(helper, nullptr, WUNTRACED);
        first.reset();
        EXPECT_TRUE(system("b")->GetInstance().Claim(u"Halyrig"));
        kill(helper, SIGKILL);
        waitpid(helper, nullptr, 0);
        ::testing::internal::GetCapturedStderr();
    }
}

// Nothing that lies in its place is taken for a status, nor keeps a program from anything.
TEST(StatusFiles, AreOfARunningProgramOfThisUser) {
    const std::tuple<const char*, bool, std::function<void(const fs::path&)>> rows[] = {
        {"a file of 8 bytes, as one that was killed leaves it", true, [](const auto& path) { std::ofstream(path) << "killed.."; }},
        {"a link", true, [](const auto& path) { fs::create_symlink("../victim", path); }},
        {"a pipe", true, [](const auto& path) { EXPECT_EQ(0, mkfifo(path.c_str(), 0600)); }},
        {"a folder", false, [](const auto& path) { fs::create_directory(path); }},
        {"no folder", false, [](const auto& path) { fs::remove_all(path.parent_path()); }}};
    for (const auto& [what, posts, plant] : rows) {
        SCOPED_TRACE(what);
        const TempFolder folder;
        Roots roots = TestRoots("x", folder.Text());
        roots.status = {{folder.File("own"), u"-7"}};
        const auto system = MakeSystem(roots), other = MakeSystem(roots);
        const fs::path path = folder.Path() / "own/HalyrigTest_x_halyrig-status-7";
        fs::create_directory(path.parent_path());
        folder.Write("victim", "whatever");
        plant(path);
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(nullptr, other->GetStatusBoard().See(u"Halyrig", 8));
        {
            fs::create_directory(folder.Path() / "elsewhere");
            Roots second = roots, both = roots;
            second.status = {{folder.File("elsewhere")}};
            both.status.push_back(second.status[0]);
            const auto elsewhere = MakeSystem(second);
            const auto posted = elsewhere->GetStatusBoard().Post(u"Halyrig", 8);
            EXPECT_NE(nullptr, MakeSystem(both)->GetStatusBoard().See(u"Halyrig", 8)) << "one that runs is behind it";
        }
        auto posted = system->GetStatusBoard().Post(u"Halyrig", 8);
        EXPECT_EQ(posts, posted != nullptr);
        EXPECT_EQ(posts, other->GetStatusBoard().See(u"Halyrig", 8) != nullptr);
        EXPECT_TRUE(!posts || fs::status(path).permissions() == fs::perms(0600));
        if (geteuid() == 0 && posts) {
            EXPECT_EQ(0, chown(path.c_str(), 12345, 12345));
            EXPECT_EQ(nullptr, other->GetStatusBoard().See(u"Halyrig", 8)) << "another user's";
        }
        posted.reset();
        EXPECT_TRUE(!posts || !fs::exists(path)) << "removed with the program";
        EXPECT_EQ("", ::testing::internal::GetCapturedStderr());
        EXPECT_EQ(0, system->ExitStatus());
        EXPECT_EQ("whatever", folder.Read("victim"));
    }
}

struct HeadlessDesktopTest : ::testing::Test {
    // A dialog that asks before it closes, whose events are given with the answers and the number of ticks.
    std::string Run(std::function<void()> onInit, std::function<void()> onTimer = {}) {
        dialog_ = {};
        dialog_.onInit = std::move(onInit);
        dialog_.onTimer = std::move(onTimer);
        dialog_.onCancel = [this] {
            const BoxAnswer answer = desktop_->ShowBox(u"Exit?", u"Test", BoxButtons::kYesNo, BoxIcon::kQuestion);
            dialog_.events.push_back(answer == BoxAnswer::kYes ? "yes" : "no");
            if (std::ranges::count(dialog_.events, std::string("yes")) == yesses_) End();
        };
        ::testing::internal::CaptureStderr();
        desktop_->RunDialog({1, u"Test", 0, 0, {}}, dialog_);
        errors_ = ::testing::internal::GetCapturedStderr();
        std::string events;
        for (const std::string& event : dialog_.events) events += event + ' ';
        return events + std::to_string(dialog_.ticks);
    }
    void End() { dialog_.window->End(DialogResult::kOk); }

    std::unique_ptr<Desktop> desktop_ = MakeHeadlessDesktop();
    ScriptedDialog dialog_;
    std::ptrdiff_t yesses_ = 1;  // until it ends
    std::string errors_;
};

TEST_F(HeadlessDesktopTest, TakesSignalsForAClosingThatIsMeantAndNoneEndsTheProcess) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2, SIGVTALRM, SIGXCPU}) {
        EXPECT_EQ("init cancel yes destroy 0", Run([number] { SendFromOutside(number); })) << number;
        EXPECT_EQ("", errors_) << "nobody is asked";
    }
    EXPECT_EQ("init destroy 0", Run([this] { End(), SendFromOutside(SIGTERM); })) << "a repeated one";
    // From the moment that a dialog is expected they wait for it, and behind it for the end of the desktop, and are gone with that.
    desktop_->ExpectDialog();
    SendFromOutside(SIGTERM);
    EXPECT_EQ("init cancel yes destroy 0", Run({}));
    SendFromOutside(SIGTERM);
    desktop_.reset();
}

// A library may use its timers and signals; and one that takes a signal to end for itself is overruled.
TEST_F(HeadlessDesktopTest, TakesNoSignalOfItsOwnProcessForAClosing) {
    const auto disturb = [this] {
        for (const int number : kCloseSignals) raise(number), kill(getpid(), number);
        const itimerval soon{{0, 5000}, {0, 5000}};
        for (const auto which : {ITIMER_REAL, ITIMER_VIRTUAL}) setitimer(which, &soon, nullptr);
        signal(SIGTERM, SIG_IGN);
        dialog_.window->StartTimer(1, 1);
    };
    const auto rest = [this] {
        if (dialog_.ticks != 20) return;
        const itimerval none{};
        for (const auto which : {ITIMER_REAL, ITIMER_VIRTUAL}) setitimer(which, &none, nullptr);
        SendFromOutside(SIGTERM);
    };
    EXPECT_EQ("init cancel yes destroy 20", Run(disturb, rest));
}

TEST_F(HeadlessDesktopTest, TicksUntilTheDialogEndsAndKeepsWhatItsControlsShow) {
    const auto tick = [this] { EXPECT_EQ(1u, dialog_.window->StartTimer(1, 1)); };
    EXPECT_EQ("init destroy 3", Run(tick, [this] {
                  if (dialog_.ticks == 3) End();
              }));
    EXPECT_EQ("init destroy 1", Run(tick, [this] { desktop_->PostQuit(); }));
    desktop_->PostQuit();
    EXPECT_EQ("init destroy 0", Run(tick)) << "it opens and ends at once";

    const auto three = [this] {
        for (const std::uintptr_t id : {1u, 2u, 3u}) dialog_.window->StartTimer(id, 1);
        dialog_.window->StopTimer(1);
        SendFromOutside(SIGTERM);
    };
    const auto stopped = [this] {
        for (const std::uintptr_t id : {2u, 3u}) dialog_.window->StopTimer(id);
        dialog_.window->PostClose();
        SendFromOutside(SIGTERM);
    };
    yesses_ = 2;
    EXPECT_EQ("init cancel yes cancel no cancel yes destroy 1", Run(three, stopped))
        << "one question for each signal is answered, no other";

    EXPECT_EQ("init text 1000 text 1000 destroy 0", Run([this] {
                  DialogWindow& window = *dialog_.window;
                  EXPECT_EQ(u"", window.Text(1000));
                  for (int time = 0; time < 2; ++time) window.SetText(1000, u"/opt");
                  window.SetChecked(1001, true);
                  EXPECT_TRUE(window.Text(1000) == u"/opt" && window.Checked(1001) && !window.Checked(1002));
                  End();
              }));
}

TEST(TerminalTextTest, IsCutOrWrappedToCells) {
    SetVariable("LC_ALL", "C.UTF-8");
    const TerminalLocale locale;
    const std::tuple<const wchar_t*, int, const wchar_t*, const wchar_t*> rows[] = {
        {L"abcdef", 6, L"abcdef", L"abcdef"}, {L"abcdef", 5, L"abcde", L"...ef"}, {L"abcdef", 8, L"abcdef  ", L"abcdef"},
        {L"海海海", 6, L"海海海", L"海海海"}, {L"海海海", 5, L"海海 ", L"...海"}, {L"海海海", 4, L"海海", L"..."}};
    for (const auto& [text, width, head, tail] : rows) {
        EXPECT_EQ(head, Fitted(text, width)) << width;
        EXPECT_EQ(tail, TailThatFits(text, width)) << width;
    }
    const std::tuple<const char16_t*, int, std::vector<std::wstring>> wrapped[] = {{u"", 10, {L""}},
                                                                                   {u"one two three", 7, {L"one two", L"three"}},
                                                                                   {u"a\n\nb\n", 5, {L"a", L"", L"b", L""}},
                                                                                   {u" abcdef", 3, {L" ab", L"cde", L"f"}},
                                                                                   {u"海海", 1, {L"海", L"海"}},
                                                                                   {u"\x1B[2Jab\t", 20, {L"?[2Jab?"}},
                                                                                   {u"\U0001F6A2\xD83D", 20, {L"\U0001F6A2?"}}};
    for (const auto& [text, width, lines] : wrapped) EXPECT_EQ(lines, Wrapped(text, width)) << width;
}

// It does not come back to its queue, as below a library that hangs.
const Role hangs("hangs", [](const std::vector<std::string>&) {
    SignalQueue queue;
    queue.WaitUntil(std::chrono::steady_clock::now());
    for (SendFromOutside(SIGTERM);; pause()) continue;
    return 0;
});

TEST(SignalQueueTest, ASignalToCloseEndsWhatHangs) { EXPECT_EQ(128 + SIGTERM, StartRole("hangs", {})->Wait()); }

TEST(SignalQueueTest, LeavesSignalsAsTheyWere) {
    sigset_t before, after;
    sigprocmask(SIG_SETMASK, nullptr, &before);
    { const SignalQueue queue({SIGWINCH}); }
    sigprocmask(SIG_SETMASK, nullptr, &after);
    for (int number = 1; number < 32; ++number) EXPECT_EQ(sigismember(&before, number), sigismember(&after, number)) << number;
}

// What a library's thread runs on in, and what the navigator has put in its place.
TEST(LinuxLibrary, StaysMappedAndIsLoadedAfreshIfItsFileHasChanged) {
    const TestSystem test;
    const auto original = fs::read_symlink("/proc/self/exe").parent_path() / "loadable.so";
    const fs::path file = test.folder.Path() / "loadable.so", other = test.folder.Path() / "other.so";
    const auto touch = [&] { fs::last_write_time(file, fs::last_write_time(file) + std::chrono::hours(1)); };
    const std::tuple<const char*, std::function<void()>, int> rows[] = {
        {"new", [&] { fs::copy_file(original, file); }, 1},
        {"the same", [] {}, 2},
        {"another in its place", [&] { fs::copy_file(original, other), fs::rename(other, file); }, 1},
        {"and another", [&] { fs::copy_file(original, other), fs::rename(other, file); }, 1},
        {"overwritten", touch, 1}};
    for (const auto& [what, change, counted] : rows) {
        SCOPED_TRACE(what);
        change();
        auto library = test.system->GetLibraries().Load(FromUtf8(file.string()));
        ASSERT_NE(nullptr, library);
        const auto count = reinterpret_cast<int (*)()>(library->Find("Count"));
        EXPECT_EQ(test.folder.Text(), ModuleFolder(library->Find("Answer")));
        library.reset();
        EXPECT_EQ(counted, count());
    }
    std::string bytes = BytesOf(original);
    bytes[bytes.find("pthread_create") + 13] = 'X';
    const auto lacking = test.folder.Write("lacking.so", bytes);
    EXPECT_EQ(nullptr, test.system->GetLibraries().Load(lacking)) << "rather than that its first call of another's ends the bridge";
}

TEST(TimersTest, KeepTheBeatAndLeaveOutWhatWasMissed) {
    using namespace std::chrono_literals;
    const Steady::time_point begin{};
    Timers timers;
    timers.Start(1, 100, begin);
    const std::tuple<std::chrono::milliseconds, std::chrono::milliseconds, int> rows[] = {
        {0ms, 100ms, 0}, {99ms, 100ms, 0}, {100ms, 200ms, 1}, {230ms, 300ms, 1}, {299ms, 300ms, 0}, {1000ms, 1100ms, 1}};
    for (const auto& [now, next, raised] : rows) {
        int count = 0;
        timers.RaiseDue(begin + now, [&](std::uintptr_t) { ++count; });
        EXPECT_EQ(raised, count) << now.count();
        EXPECT_EQ(begin + next, timers.NextDue(begin + now)) << now.count();
    }
}

}  // namespace
}  // namespace twr::testing
