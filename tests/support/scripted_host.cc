#include "support/scripted_host.h"

namespace twr::testing {

void ScriptedHost::RunDialog(const DialogTemplate&, Dialog& dialog) {
    dialog_ = &dialog;
    result.reset();
    dialog.OnInit(*this);
    if (!quit) script();
    dialog.OnDestroy();
    dialog_ = nullptr;
}

void ScriptedHost::Pump() {
    while (closePosted_ && !result) {
        closePosted_ = false;
        dialog_->OnCancel();
    }
}

void ScriptedHost::Tick(int count) {
    for (int i = 0; i < count && timerRuns && !result; ++i) {
        beforeTick();
        dialog_->OnTimer(timer_);
        Pump();
    }
}

void ScriptedHost::PressClose() { dialog_->OnOk(); }
void ScriptedHost::PressEsc() { dialog_->OnCancel(); }
void ScriptedHost::Press(int control) { dialog_->OnButton(control); }
void ScriptedHost::Choose(int menuCommand) { dialog_->OnMenu(menuCommand); }
void ScriptedHost::PickFolder(std::u16string_view folder) { SetText(1000, folder); }

bool ScriptedHost::Checked(int control) const { return checked_.contains(control) && checked_.at(control); }
void ScriptedHost::SetChecked(int control, bool checked) { checked_[control] = checked; }
std::u16string ScriptedHost::Text(int control) const { return texts_.contains(control) ? texts_.at(control) : std::u16string(); }

void ScriptedHost::SetText(int control, std::u16string_view text) {
    texts_[control] = text;
    dialog_->OnTextChange(control);
}

void ScriptedHost::AddMenuItem(int, std::u16string_view text) { menuItems.emplace_back(text); }

std::uintptr_t ScriptedHost::StartTimer(std::uintptr_t id, unsigned milliseconds) {
    timerRuns = true;
    timerPeriod = milliseconds;
    return timer_ = id;
}

void ScriptedHost::StopTimer(std::uintptr_t id) {
    if (id == timer_) timerRuns = false;
}

void ScriptedHost::PostClose() { closePosted_ = true; }
void ScriptedHost::End(DialogResult ended) { result = ended; }

}  // namespace twr::testing
