// The timers of an open dialog. They keep the beat: a late tick does not delay those after it.
#pragma once
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>

namespace twr {

using Steady = std::chrono::steady_clock;

class Timers {
public:
    void Start(std::uintptr_t id, unsigned milliseconds, Steady::time_point now);
    void Stop(std::uintptr_t id) { timers_.erase(id); }

    // When the next one is due; some far time when none runs.
    Steady::time_point NextDue(Steady::time_point now) const;

    // Calls `raise` for each timer that is due and has not been stopped by then. Times that have been missed are left out.
    void RaiseDue(Steady::time_point now, const std::function<void(std::uintptr_t)>& raise);

private:
    struct Timer {
        Steady::duration period;
        Steady::time_point due;
    };

    std::map<std::uintptr_t, Timer> timers_;
};

}  // namespace twr
