// Signals as events in their order, in place of what they would do to the process.
#pragma once
#include <poll.h>
#include <signal.h>

#include <chrono>
#include <initializer_list>
#include <span>

#include "platform/linux/descriptor.h"

namespace twr {

// Those that end a program by default and come from a user or a resource limit: they are treated as the closing of its window.
inline constexpr std::initializer_list<int> kCloseSignals = {SIGTERM, SIGINT,  SIGHUP,    SIGQUIT, SIGALRM,
                                                             SIGUSR1, SIGUSR2, SIGVTALRM, SIGXCPU};

// Whether one of them is pending in a queue.
bool CloseSignalPending();

class SignalQueue {
public:
    // Queues kCloseSignals and `others`.
    explicit SignalQueue(std::initializer_list<int> others = {});
    ~SignalQueue();
    SignalQueue(const SignalQueue&) = delete;
    SignalQueue& operator=(const SignalQueue&) = delete;

    // The next signal received; 0 if there is none.
    int Take();

    // Waits for a signal, until `end`, or for one of up to two other events (a negative descriptor is none), whose `revents` it
    // sets. If the program does not come back to wait within some seconds, since a library hangs that it has called, a close
    // signal ends it in the system's way.
    void WaitUntil(std::chrono::steady_clock::time_point end, std::span<pollfd> others = {}) const;

private:
    sigset_t before_{};
    Descriptor queue_;
};

}  // namespace twr
