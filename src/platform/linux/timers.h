// The timers of an open dialog. They don't drift: a late tick does not delay those after it.
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

    // When the next one is due; a far time if none runs.
    Steady::time_point NextDue(Steady::time_point now) const;

    // Calls `raise` for each timer that is due and has not been stopped by then. Missed times are skipped.
    void RaiseDue(Steady::time_point now, const std::function<void(std::uintptr_t)>& raise);

private:
    struct Timer {
        Steady::duration period;
        Steady::time_point due;
    };

    std::map<std::uintptr_t, Timer> timers_;
};

}  // namespace twr
