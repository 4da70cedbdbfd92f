#include "platform/linux/window_state.h"

#include <utility>

namespace twr {

bool WindowState::Checked(int control) const {
    const auto at = checked_.find(control);
    return at != checked_.end() && at->second;
}

void WindowState::SetChecked(int control, bool checked) {
    if (std::exchange(checked_[control], checked) != checked) OnChanged();
}

std::u16string WindowState::Text(int control) const {
    const auto at = texts_.find(control);
    return at == texts_.end() ? std::u16string() : at->second;
}

void WindowState::SetText(int control, std::u16string_view text) {
    texts_[control] = text;
    OnChanged();
    dialog_.OnTextChange(control);
}

std::uintptr_t WindowState::StartTimer(std::uintptr_t id, unsigned milliseconds) {
    timers_.Start(id, milliseconds, Steady::now());
    return id;
}

bool WindowState::TakePostedClose() { return std::exchange(closePosted_, false); }

void WindowState::RaiseTimers() {
    timers_.RaiseDue(Steady::now(), [this](std::uintptr_t id) {
        if (!ended_) dialog_.OnTimer(id);
    });
}

}  // namespace twr
