// Signals as events in their order, in place of what they would do to the process.
#pragma once
#include <poll.h>
#include <signal.h>

#include <chrono>
#include <initializer_list>
#include <span>

#include "platform/linux/descriptor.h"

namespace twr {

// Those that end a program unless it says otherwise, and that a user or his limits send: they stand for the closing of its window.
inline constexpr std::initializer_list<int> kCloseSignals = {SIGTERM, SIGINT,  SIGHUP,    SIGQUIT, SIGALRM,
                                                             SIGUSR1, SIGUSR2, SIGVTALRM, SIGXCPU};

// One of them waits to be taken from a queue.
bool CloseSignalWaits();

class SignalQueue {
public:
    // Those that close, and others.
    explicit SignalQueue(std::initializer_list<int> others = {});
    ~SignalQueue();
    SignalQueue(const SignalQueue&) = delete;
    SignalQueue& operator=(const SignalQueue&) = delete;

    // The next signal that has come; 0 when there is none.
    int Take();

    // Waits for a signal, until `end`, or for one of up to two other events (none below descriptor 0), whose `revents` it sets.
    void WaitUntil(std::chrono::steady_clock::time_point end, std::span<pollfd> others = {}) const;

private:
    sigset_t before_{};
    Descriptor queue_;
};

}  // namespace twr
