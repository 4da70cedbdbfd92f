// What every host of this system keeps of an open dialog: what its controls show, its timers, and whether it is to close or end.
#pragma once
#include <map>
#include <string>

#include "platform/dialog.h"
#include "platform/linux/timers.h"

namespace twr {

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
    Steady::time_point NextDue() const { return timers_.NextDue(Steady::now()); }
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
