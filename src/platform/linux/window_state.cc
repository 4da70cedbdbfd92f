// SPDX-License-Identifier: MIT
#include "platform/linux/window_state.h"

#include <algorithm>
#include <utility>

namespace twr {

void Timers::Start(std::uintptr_t id, unsigned milliseconds, Steady::time_point now) {
    const auto period = std::chrono::milliseconds(std::max(1u, milliseconds));
    Stop(id);
    timers_.push_back({id, period, now + period});
}

Steady::time_point Timers::NextDue(Steady::time_point now) const {
    auto next = now + std::chrono::hours(1);
    for (const Timer& timer : timers_) next = std::min(next, timer.due);
    return next;
}

void Timers::RaiseDue(Steady::time_point now, const std::function<void(std::uintptr_t)>& raise) {
    for (std::size_t at = 0; at < timers_.size(); ++at) {
        Timer& timer = timers_[at];
        if (timer.due > now) continue;
        timer.due += timer.period * ((now - timer.due) / timer.period + 1);
        raise(timer.id);  // it may stop any; one that moves up is raised the next time
    }
}

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
    timers_.Start(id, milliseconds, SteadyNow());
    return id;
}

bool WindowState::TakePostedClose() { return std::exchange(closePosted_, false); }

void WindowState::RaiseTimers() {
    timers_.RaiseDue(SteadyNow(), [this](std::uintptr_t id) {
        if (!ended_) dialog_.OnTimer(id);
    });
}

}  // namespace twr
