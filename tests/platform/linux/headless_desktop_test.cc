#include <gtest/gtest.h>
#include <signal.h>

#include "platform/linux/services.h"
#include "platform/linux/signal_queue.h"
#include "platform/linux/timers.h"
#include "support/scripted_dialog.h"

namespace twr {
namespace {

class HeadlessDesktopTest : public ::testing::Test {
protected:
    // A dialog that asks before it closes, whose events are given with the answers.
    std::string Run() {
        dialog_.onCancel = [this] {
            const BoxAnswer answer = desktop_->ShowBox(u"Exit?", u"Test", BoxButtons::kYesNo, BoxIcon::kQuestion);
            dialog_.events.push_back(answer == BoxAnswer::kYes ? "yes" : "no");
            if (answer == BoxAnswer::kYes) dialog_.window->End(DialogResult::kCancel);
        };
        dialog_.events.clear();
        ::testing::internal::CaptureStderr();
        desktop_->RunDialog({1, u"Test", 0, 0, {}}, dialog_);
        errors_ = ::testing::internal::GetCapturedStderr();
        std::string events;
        for (const std::string& event : dialog_.events) events += event + ' ';
        return events;
    }

    std::unique_ptr<Desktop> desktop_ = MakeHeadlessDesktop();
    testing::ScriptedDialog dialog_;
    std::string errors_;
};

TEST_F(HeadlessDesktopTest, TicksUntilTheDialogEnds) {
    dialog_.onInit = [this] { EXPECT_EQ(1u, dialog_.window->StartTimer(1, 1)); };
    dialog_.onTimer = [this] {
        if (dialog_.ticks == 3) dialog_.window->End(DialogResult::kOk);
    };
    EXPECT_EQ("init destroy ", Run());
    EXPECT_EQ(3, dialog_.ticks);
}

TEST_F(HeadlessDesktopTest, TakesSignalsForAClosingThatIsMeant) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2, SIGVTALRM, SIGXCPU}) {
        SCOPED_TRACE(number);
        dialog_.onInit = [number] { raise(number); };
        EXPECT_EQ("init cancel yes destroy ", Run());
        EXPECT_EQ("Test: Exit?\n", errors_);
    }
}

TEST_F(HeadlessDesktopTest, ARepeatedSignalDoesNotEndTheProcess) {
    dialog_.onInit = [this] {
        dialog_.window->End(DialogResult::kOk);
        raise(SIGTERM);
    };
    EXPECT_EQ("init destroy ", Run());
}

TEST_F(HeadlessDesktopTest, FromTheMomentADialogIsExpectedSignalsWaitForItAndEndNothingBehindIt) {
    desktop_->ExpectDialog();
    raise(SIGTERM);
    EXPECT_EQ("init cancel yes destroy ", Run());
    raise(SIGTERM);
    desktop_.reset();
    sigset_t blocked;
    ASSERT_EQ(0, sigprocmask(SIG_BLOCK, nullptr, &blocked));
    for (const int number : kCloseSignals) EXPECT_FALSE(sigismember(&blocked, number)) << number;
}

TEST_F(HeadlessDesktopTest, AfterPostQuitTheDialogOpensAndEndsAtOnce) {
    dialog_.onInit = [this] { dialog_.window->StartTimer(1, 1); };
    dialog_.onTimer = [this] { desktop_->PostQuit(); };
    for (const int ticks : {0, 1}) {
        if (ticks == 0) desktop_->PostQuit();
        EXPECT_EQ("init destroy ", Run());
        EXPECT_EQ(ticks, dialog_.ticks);
    }
}

TEST_F(HeadlessDesktopTest, KeepsWhatItsControlsShow) {
    dialog_.onInit = [this] {
        DialogWindow& window = *dialog_.window;
        EXPECT_EQ(u"", window.Text(1000));
        window.SetText(1000, u"/opt");
        window.SetText(1000, u"/opt");
        EXPECT_EQ(u"/opt", window.Text(1000));
        window.SetChecked(1001, true);
        EXPECT_TRUE(window.Checked(1001));
        EXPECT_FALSE(window.Checked(1002));
        window.End(DialogResult::kOk);
    };
    EXPECT_EQ("init text 1000 text 1000 destroy ", Run());
}

TEST_F(HeadlessDesktopTest, NobodyAnswersAClosingWithoutASignalAndAStoppedTimerRaisesNothing) {
    dialog_.onInit = [this] {
        for (const std::uintptr_t id : {1u, 2u, 3u}) dialog_.window->StartTimer(id, 1);
        dialog_.window->StopTimer(1);
    };
    dialog_.onTimer = [this] {
        for (const std::uintptr_t id : {2u, 3u}) dialog_.window->StopTimer(id);
        dialog_.window->PostClose();
        raise(SIGTERM);
    };
    EXPECT_EQ("init cancel no cancel yes destroy ", Run());
    EXPECT_EQ(1, dialog_.ticks);
}

TEST(TimersTest, KeepTheBeatAndLeaveOutWhatWasMissed) {
    using namespace std::chrono_literals;
    const Steady::time_point begin{};
    Timers timers;
    timers.Start(1, 100, begin);
    const struct {
        std::chrono::milliseconds now, next;
        int raised;
    } rows[] = {{0ms, 100ms, 0}, {99ms, 100ms, 0}, {100ms, 200ms, 1}, {230ms, 300ms, 1}, {299ms, 300ms, 0}, {1000ms, 1100ms, 1}};
    for (const auto& row : rows) {
        int raised = 0;
        timers.RaiseDue(begin + row.now, [&](std::uintptr_t) { ++raised; });
        EXPECT_EQ(row.raised, raised) << row.now.count();
        EXPECT_EQ(begin + row.next, timers.NextDue(begin + row.now)) << row.now.count();
    }
}

}  // namespace
}  // namespace twr
