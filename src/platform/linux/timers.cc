#include "platform/linux/timers.h"

#include <algorithm>
#include <vector>

namespace twr {

void Timers::Start(std::uintptr_t id, unsigned milliseconds, Steady::time_point now) {
    const auto period = std::chrono::milliseconds(std::max(1u, milliseconds));
    timers_[id] = {period, now + period};
}

Steady::time_point Timers::NextDue(Steady::time_point now) const {
    auto next = now + std::chrono::hours(1);
    for (const auto& [id, timer] : timers_) next = std::min(next, timer.due);
    return next;
}

void Timers::RaiseDue(Steady::time_point now, const std::function<void(std::uintptr_t)>& raise) {
    std::vector<std::uintptr_t> due;
    for (auto& [id, timer] : timers_) {
        if (timer.due > now) continue;
        timer.due += timer.period * ((now - timer.due) / timer.period + 1);
        due.push_back(id);
    }
    for (const std::uintptr_t id : due) {
        if (timers_.contains(id)) raise(id);
    }
}

}  // namespace twr
