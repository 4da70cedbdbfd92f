#include <gtest/gtest.h>
#include <signal.h>

#include <functional>

#include "platform/linux/services.h"

namespace twr {
namespace {

constexpr DialogTemplate kLayout{1, u"Test", 0, 0, {}};

// A dialog that writes down what it is told and asks before it closes.
class ScriptedDialog final : public Dialog {
public:
    explicit ScriptedDialog(Desktop& desktop) : desktop_(desktop) {}

    std::function<void(DialogWindow&)> onInit = [](DialogWindow&) {};
    std::function<void()> onTimer = [] {};
    std::string events;
    int ticks = 0;

    void OnInit(DialogWindow& window) override {
        window_ = &window;
        events += "init ";
        onInit(window);
    }
    void OnTimer(std::uintptr_t) override {
        ++ticks;
        onTimer();
    }
    void OnTextChange(int control) override { events += "text" + std::to_string(control) + ' '; }
    void OnButton(int) override { events += "button "; }
    void OnMenu(int) override { events += "menu "; }
    void OnOk() override { events += "ok "; }
    void OnCancel() override {
        const BoxAnswer answer = desktop_.ShowBox(u"Exit?", u"Test", BoxButtons::kYesNo, BoxIcon::kQuestion);
        events += answer == BoxAnswer::kYes ? "cancel:yes " : "cancel:no ";
        if (answer == BoxAnswer::kYes) window_->End(DialogResult::kCancel);
    }
    void OnDestroy() override { events += "destroy"; }

    DialogWindow& Window() { return *window_; }

private:
    Desktop& desktop_;
    DialogWindow* window_ = nullptr;
};

class HeadlessDesktopTest : public ::testing::Test {
protected:
    const std::string& Run() {
        ::testing::internal::CaptureStderr();
        desktop_->RunDialog(kLayout, dialog_);
        errors_ = ::testing::internal::GetCapturedStderr();
        return dialog_.events;
    }

    std::unique_ptr<Desktop> desktop_ = MakeHeadlessDesktop();
    ScriptedDialog dialog_{*desktop_};
    std::string errors_;
};

TEST_F(HeadlessDesktopTest, TicksUntilTheDialogEnds) {
    dialog_.onInit = [](DialogWindow& window) { EXPECT_EQ(1u, window.StartTimer(1, 1)); };
    dialog_.onTimer = [this] {
        if (dialog_.ticks == 3) dialog_.Window().End(DialogResult::kOk);
    };
    EXPECT_EQ("init destroy", Run());
    EXPECT_EQ(3, dialog_.ticks);
}

TEST_F(HeadlessDesktopTest, TakesSignalsForAClosingThatIsMeant) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(number);
        dialog_.events.clear();
        dialog_.onInit = [number](DialogWindow&) { raise(number); };
        EXPECT_EQ("init cancel:yes destroy", Run());
        EXPECT_EQ("Test: Exit?\n", errors_);
    }
}

TEST_F(HeadlessDesktopTest, ARepeatedSignalDoesNotEndTheProcess) {
    dialog_.onInit = [](DialogWindow& window) {
        window.End(DialogResult::kOk);
        raise(SIGTERM);
    };
    EXPECT_EQ("init destroy", Run());
}

TEST_F(HeadlessDesktopTest, NobodyAnswersAnyOtherClosing) {
    dialog_.onInit = [](DialogWindow& window) {
        window.PostClose();
        window.StartTimer(1, 1);
    };
    dialog_.onTimer = [this] { dialog_.Window().End(DialogResult::kOk); };
    EXPECT_EQ("init cancel:no destroy", Run());
}

TEST_F(HeadlessDesktopTest, AfterPostQuitTheDialogOpensAndEndsAtOnce) {
    dialog_.onInit = [](DialogWindow& window) { window.StartTimer(1, 1); };
    desktop_->PostQuit();
    EXPECT_EQ("init destroy", Run());
    EXPECT_EQ(0, dialog_.ticks);
    dialog_.events.clear();
    dialog_.onTimer = [this] { desktop_->PostQuit(); };
    EXPECT_EQ("init destroy", Run());
    EXPECT_EQ(1, dialog_.ticks);
}

TEST_F(HeadlessDesktopTest, KeepsWhatItsControlsShow) {
    dialog_.onInit = [](DialogWindow& window) {
        EXPECT_EQ(u"", window.Text(1000));
        window.SetText(1000, u"/opt");
        window.SetText(1000, u"/opt");
        EXPECT_EQ(u"/opt", window.Text(1000));
        EXPECT_FALSE(window.Checked(1001));
        window.SetChecked(1001, true);
        EXPECT_TRUE(window.Checked(1001));
        EXPECT_FALSE(window.Checked(1002));
        window.End(DialogResult::kOk);
    };
    EXPECT_EQ("init text1000 text1000 destroy", Run());
}

TEST_F(HeadlessDesktopTest, AStoppedTimerRaisesNothing) {
    dialog_.onInit = [](DialogWindow& window) {
        window.StartTimer(1, 1);
        window.StartTimer(2, 1);
        window.StopTimer(1);
    };
    dialog_.onTimer = [this] {
        dialog_.Window().StopTimer(2);
        dialog_.Window().PostClose();
        raise(SIGTERM);
    };
    EXPECT_EQ("init cancel:no cancel:yes destroy", Run());
    EXPECT_EQ(1, dialog_.ticks);
}

}  // namespace
}  // namespace twr
