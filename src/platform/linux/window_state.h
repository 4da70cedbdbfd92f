// SPDX-License-Identifier: MIT
// What every host of this system keeps of an open dialog: what its controls show, its timers, and whether it is to close or end.
#pragma once
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/dialog.h"
#include "platform/linux/signal_queue.h"

namespace twr {

using Steady = std::chrono::steady_clock;

// The timers of an open dialog. They don't drift: a late tick does not delay those after it.
class Timers {
public:
    void Start(std::uintptr_t id, unsigned milliseconds, Steady::time_point now);
    void Stop(std::uintptr_t id) {
        std::erase_if(timers_, [id](const Timer& timer) { return timer.id == id; });
    }

    // When the next one is due; a far time if none runs.
    Steady::time_point NextDue(Steady::time_point now) const;

    // Calls `raise` for each timer that is due and has not been stopped by then. Missed times are skipped.
    void RaiseDue(Steady::time_point now, const std::function<void(std::uintptr_t)>& raise);

private:
    struct Timer {
        std::uintptr_t id;
        Steady::duration period;
        Steady::time_point due;
    };

    std::vector<Timer> timers_;
};

class WindowState : public DialogWindow {
public:
    explicit WindowState(Dialog& dialog) : dialog_(dialog) {}

    bool Checked(int control) const override;
    void SetChecked(int control, bool checked) override;
    std::u16string Text(int control) const override;
    void SetText(int control, std::u16string_view text) override;
    std::uintptr_t StartTimer(std::uintptr_t id, unsigned milliseconds) override;
    void StopTimer(std::uintptr_t id) override { timers_.Stop(id); }
    void PostClose() override { closePosted_ = true; }
    void End(DialogResult) override { ended_ = true; }

    bool Ended() const { return ended_; }
    bool TakePostedClose();
    Steady::time_point NextDue() const { return timers_.NextDue(SteadyNow()); }
    void RaiseTimers();

protected:
    // What the controls show has changed.
    virtual void OnChanged() {}

private:
    Dialog& dialog_;
    std::map<int, bool> checked_;
    std::map<int, std::u16string> texts_;
    Timers timers_;
    bool closePosted_ = false;
    bool ended_ = false;
};

}  // namespace twr
