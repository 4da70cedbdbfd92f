// SPDX-License-Identifier: MIT
// A host of the dialog that a test's script plays: it presses, ticks and answers as a user would.
#pragma once
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/fakes.h"

namespace twr::testing {

class ScriptedHost : public FakeDesktop, public DialogWindow {
public:
    // Played while the dialog is open; when it returns the dialog is closed from outside, without a question.
    std::function<void()> script = [] {};

    // Moves time between two ticks.
    std::function<void()> beforeTick = [] {};

    void Tick(int count = 1) {
        for (; count > 0 && timerRuns && !result; --count) {
            beforeTick();
            dialog_->OnTimer(timer_);
            while (std::exchange(closePosted_, false) && !result) dialog_->OnCancel();
        }
    }
    void PressClose() { dialog_->OnOk(); }
    void PressEsc() { dialog_->OnCancel(); }
    void Press(int control) { dialog_->OnButton(control); }
    void Choose(int menuCommand) { dialog_->OnMenu(menuCommand); }
    void EndSession() {
        if (Dialog* const open = std::exchange(dialog_, nullptr)) open->OnDestroy();
    }
    void PickFolder(std::u16string_view folder) { SetText(1000, folder); }

    std::optional<DialogResult> result;  // once it has ended by itself
    std::vector<std::u16string> menuItems;
    bool timerRuns = false;
    unsigned timerPeriod = 0;

    // Desktop
    void RunDialog(const DialogTemplate&, Dialog& dialog) override {
        dialog_ = &dialog;
        result.reset();
        dialog.OnInit(*this);
        if (!quit) script();
        if (dialog_) dialog.OnDestroy();
    }

    // DialogWindow
    bool Checked(int control) const override { return checked_.contains(control) && checked_.at(control); }
    void SetChecked(int control, bool checked) override { checked_[control] = checked; }
    std::u16string Text(int control) const override { return texts_.contains(control) ? texts_.at(control) : std::u16string(); }
    void SetText(int control, std::u16string_view text) override {
        texts_[control] = text;
        dialog_->OnTextChange(control);
    }
    void AddMenuItem(int, std::u16string_view text) override { menuItems.emplace_back(text); }
    std::uintptr_t StartTimer(std::uintptr_t id, unsigned milliseconds) override {
        timerRuns = true;
        timerPeriod = milliseconds;
        return timer_ = id;
    }
    void StopTimer(std::uintptr_t id) override { timerRuns = timerRuns && id != timer_; }
    void PostClose() override { closePosted_ = true; }
    void End(DialogResult ended) override { result = ended; }

private:
    Dialog* dialog_ = nullptr;
    std::uintptr_t timer_ = 0;
    bool closePosted_ = false;
    std::map<int, bool> checked_;
    std::map<int, std::u16string> texts_;
};

}  // namespace twr::testing
