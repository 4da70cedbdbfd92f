// The host of a dialog where nobody looks: it ticks, and takes the signals that end a program for the closing of its window.

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <utility>
#include <vector>

#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"
#include "platform/wide_text.h"

namespace twr {
namespace {

using Steady = std::chrono::steady_clock;

// Whoever listened to our output may be gone.
void IgnoreBrokenPipes() { signal(SIGPIPE, SIG_IGN); }

void ShowOnStandardError(std::u16string_view text, std::u16string_view caption) {
    IgnoreBrokenPipes();
    std::fprintf(stderr, "%s: %s\n", ToUtf8(caption).c_str(), ToUtf8(text).c_str());
}

// Keeps the signals that close the window away from the process and gives them as events.
class CloseSignals {
public:
    CloseSignals() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, number);
        sigprocmask(SIG_BLOCK, &signals, &before_);
        queue_ = Descriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    }
    ~CloseSignals() {
        while (Take()) continue;  // a repeated one must not end the process in the middle of its leaving
        sigprocmask(SIG_SETMASK, &before_, nullptr);
    }

    bool Take() {
        signalfd_siginfo info{};
        return read(queue_.Get(), &info, sizeof info) == sizeof info;
    }

    void WaitUntil(Steady::time_point end) const {
        const auto left = std::max(Steady::duration::zero(), end - Steady::now());
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
        const timespec time{static_cast<time_t>(seconds.count()),
                            static_cast<long>((left - seconds) / std::chrono::nanoseconds(1))};
        pollfd event{queue_.Get(), POLLIN, 0};
        ppoll(&event, 1, &time, nullptr);
    }

private:
    sigset_t before_{};
    Descriptor queue_;
};

class HeadlessWindow final : public DialogWindow {
public:
    explicit HeadlessWindow(Dialog& dialog) : dialog_(dialog) {}

    bool Checked(int control) const override {
        const auto at = checked_.find(control);
        return at != checked_.end() && at->second;
    }
    void SetChecked(int control, bool checked) override { checked_[control] = checked; }

    std::u16string Text(int control) const override {
        const auto at = texts_.find(control);
        return at == texts_.end() ? std::u16string() : at->second;
    }
    void SetText(int control, std::u16string_view text) override {
        texts_[control] = text;
        dialog_.OnTextChange(control);
    }

    void AddMenuItem(int, std::u16string_view) override {}  // nobody can choose it

    std::uintptr_t StartTimer(std::uintptr_t id, unsigned milliseconds) override {
        const auto period = std::chrono::milliseconds(std::max(1u, milliseconds));
        timers_[id] = {period, Steady::now() + period};
        return id;
    }
    void StopTimer(std::uintptr_t id) override { timers_.erase(id); }

    void PostClose() override { closePosted_ = true; }
    void End(DialogResult) override { ended_ = true; }

    bool Ended() const { return ended_; }
    bool TakePostedClose() { return std::exchange(closePosted_, false); }

    Steady::time_point NextDue() const {
        auto next = Steady::now() + std::chrono::hours(1);
        for (const auto& [id, timer] : timers_) next = std::min(next, timer.due);
        return next;
    }

    // Raises the timers that are due. The next time stays on the beat, and times that have been missed are left out.
    void RaiseTimers() {
        const auto now = Steady::now();
        std::vector<std::uintptr_t> due;
        for (auto& [id, timer] : timers_) {
            if (timer.due > now) continue;
            timer.due += timer.period * ((now - timer.due) / timer.period + 1);
            due.push_back(id);
        }
        for (const std::uintptr_t id : due) {
            if (!ended_ && timers_.contains(id)) dialog_.OnTimer(id);
        }
    }

private:
    struct Timer {
        Steady::duration period;
        Steady::time_point due;
    };

    Dialog& dialog_;
    std::map<int, bool> checked_;
    std::map<int, std::u16string> texts_;
    std::map<std::uintptr_t, Timer> timers_;
    bool closePosted_ = false;
    bool ended_ = false;
};

class HeadlessDesktop final : public Desktop {
public:
    BoxAnswer ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon) override {
        ShowOnStandardError(text, caption);
        return closing_ && buttons == BoxButtons::kYesNo ? BoxAnswer::kYes : BoxAnswer::kNone;
    }

    void RunDialog(const DialogTemplate&, Dialog& dialog) override {
        IgnoreBrokenPipes();
        CloseSignals signals;
        HeadlessWindow window(dialog);
        dialog.OnInit(window);
        while (!window.Ended() && !quit_) {
            if (window.TakePostedClose()) {
                dialog.OnCancel();
            } else if (signals.Take()) {
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

    bool quit_ = false;
    bool closing_ = false;  // by a signal, which stands for a user who means it
};

}  // namespace

std::unique_ptr<Desktop> MakeHeadlessDesktop() { return std::make_unique<HeadlessDesktop>(); }

}  // namespace twr
