// SPDX-License-Identifier: MIT
// The host of a dialog without a screen: it ticks, and treats the signals that end a program as the closing of its window.

#include <optional>

#include "platform/linux/services.h"
#include "platform/linux/signal_queue.h"
#include "platform/linux/standard_error.h"
#include "platform/linux/window_state.h"

namespace twr {
namespace {

class HeadlessWindow final : public WindowState {
public:
    using WindowState::WindowState;
    void AddMenuItem(int, std::u16string_view) override {}  // it can't be chosen
};

class HeadlessDesktop final : public Desktop {
public:
    void ExpectDialog() override { held_.emplace(); }

    void Remark(std::u16string_view text, std::u16string_view caption) override { ShowOnStandardError(text, caption); }

    BoxAnswer ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon) override {
        if (closing_ && buttons == BoxButtons::kYesNo) return BoxAnswer::kYes;  // nobody is asked
        ShowOnStandardError(text, caption);
        return BoxAnswer::kNone;
    }

    void RunDialog(const DialogTemplate&, Dialog& dialog) override {
        SignalQueue signals;
        HeadlessWindow window(dialog);
        dialog.OnInit(window);
        while (!window.Ended() && !quit_) {
            if (window.TakePostedClose()) {
                dialog.OnCancel();
            } else if (signals.Take() != 0) {
                Close(dialog);
            } else {
                signals.WaitUntil(window.NextDue());
                window.RaiseTimers();
            }
        }
        dialog.OnDestroy();
        quit_ = false;
    }

    void ShowAbout(const DialogTemplate& layout, std::u16string_view text) override { ShowOnStandardError(text, layout.caption); }

    void PostQuit() override { quit_ = true; }

private:
    void Close(Dialog& dialog) {
        closing_ = true;
        dialog.OnCancel();
        closing_ = false;
    }

    std::optional<SignalQueue> held_;  // until the program ends, not only the dialog
    bool quit_ = false;
    bool closing_ = false;  // by a signal, which counts as a confirmed closing
};

}  // namespace

std::unique_ptr<Desktop> MakeHeadlessDesktop() { return std::make_unique<HeadlessDesktop>(); }

}  // namespace twr
