// A host of the dialog that a test's script plays: it presses, ticks and answers as a user would.
#pragma once
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/fakes.h"

namespace twr::testing {

class ScriptedHost : public FakeDesktop, public DialogWindow {
public:
    // Played while the dialog is open; when it returns the dialog is closed from outside, without a question.
    std::function<void()> script = [] {};

    // Moves time between two ticks.
    std::function<void()> beforeTick = [] {};

    void Tick(int count = 1);
    void PressClose();
    void PressEsc();
    void Press(int control);
    void Choose(int menuCommand);
    void PickFolder(std::u16string_view folder);

    std::optional<DialogResult> result;  // once it has ended by itself
    std::vector<std::u16string> menuItems;
    bool timerRuns = false;
    unsigned timerPeriod = 0;

    // Desktop
    void RunDialog(const DialogTemplate& layout, Dialog& dialog) override;

    // DialogWindow
    bool Checked(int control) const override;
    void SetChecked(int control, bool checked) override;
    std::u16string Text(int control) const override;
    void SetText(int control, std::u16string_view text) override;
    void AddMenuItem(int command, std::u16string_view text) override;
    std::uintptr_t StartTimer(std::uintptr_t id, unsigned milliseconds) override;
    void StopTimer(std::uintptr_t id) override;
    void PostClose() override;
    void End(DialogResult ended) override;

private:
    void Pump();  // posted closes

    Dialog* dialog_ = nullptr;
    std::uintptr_t timer_ = 0;
    bool closePosted_ = false;
    std::map<int, bool> checked_;
    std::map<int, std::u16string> texts_;
};

}  // namespace twr::testing
