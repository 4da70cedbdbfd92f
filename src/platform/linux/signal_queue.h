// SPDX-License-Identifier: MIT
// Signals as events, in place of what they would do to the process.
#pragma once
#include <poll.h>
#include <signal.h>
#include <time.h>

#include <chrono>
#include <initializer_list>
#include <span>
#include <utility>
#include <vector>

#include "platform/linux/descriptor.h"

namespace twr {

// Those that end a program by default and come from a user or a resource limit: they are treated as the closing of its window.
inline constexpr std::initializer_list<int> kCloseSignals = {SIGTERM, SIGINT,  SIGHUP,    SIGQUIT, SIGALRM,
                                                             SIGUSR1, SIGUSR2, SIGVTALRM, SIGXCPU};

// As steady_clock::now, but by no code of the C++ library: a quiet tick needs none, and what lies apart is no longer in the
// processor's caches by then.
inline std::chrono::steady_clock::time_point SteadyNow() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::chrono::steady_clock::time_point(std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec));
}

// Whether one of them waits to be taken.
bool CloseSignalPending();

// Other code of the process has been loaded, which may set handlers of its own.
void ExpectOtherHandlers();

class SignalQueue {
public:
    // Queues kCloseSignals and `others` that a user or the system sends. What the process sends to itself and the signals of its
    // own timers have no effect: a library may use them. From a close signal on the program has some four seconds to take it; if it
    // doesn't, since a library hangs that it has called, the signal ends it in the system's way.
    explicit SignalQueue(std::initializer_list<int> others = {});
    ~SignalQueue();
    SignalQueue(const SignalQueue&) = delete;
    SignalQueue& operator=(const SignalQueue&) = delete;

    // The next signal received, by their numbers; 0 if there is none. Costs no system call.
    int Take();

    // Waits for a signal, until `end`, or for one of up to two other events (a negative descriptor is none), whose `revents` it
    // sets; one system call. If a descriptor has been closed behind its back, the process ends by EndByFault.
    void WaitUntil(std::chrono::steady_clock::time_point end, std::span<pollfd> others = {}) const;

private:
    sigset_t before_{}, whileWaiting_{};
    std::vector<std::pair<int, struct sigaction>> actions_;  // before
    Descriptor canary_;                                      // shows whether this process's descriptors are still open
};

}  // namespace twr
