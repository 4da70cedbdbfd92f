#include "platform/linux/signal_queue.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace twr {

using Steady = std::chrono::steady_clock;

bool CloseSignalPending() {
    sigset_t waiting;
    return sigpending(&waiting) == 0 &&
           std::ranges::any_of(kCloseSignals, [&](int number) { return sigismember(&waiting, number); });
}

SignalQueue::SignalQueue(std::initializer_list<int> others) {
    sigset_t set;
    sigemptyset(&set);
    for (const auto& signals : {kCloseSignals, others}) {
        for (const int number : signals) sigaddset(&set, number);
    }
    sigprocmask(SIG_BLOCK, &set, &before_);
    queue_ = Descriptor(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
}

SignalQueue::~SignalQueue() {
    while (Take() != 0) continue;  // a repeated one must not end the process while it closes
    sigprocmask(SIG_SETMASK, &before_, nullptr);
}

int SignalQueue::Take() {
    signalfd_siginfo info{};
    return read(queue_.Get(), &info, sizeof info) == sizeof info ? static_cast<int>(info.ssi_signo) : 0;
}

void SignalQueue::WaitUntil(Steady::time_point end, std::span<pollfd> others) const {
    const auto left = std::max(Steady::duration::zero(), end - Steady::now());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec time{static_cast<time_t>(seconds.count()), static_cast<long>((left - seconds) / std::chrono::nanoseconds(1))};
    std::array<pollfd, 3> events{};
    events[0] = {queue_.Get(), POLLIN, 0};
    std::ranges::copy(others, events.begin() + 1);
    if (ppoll(events.data(), others.size() + 1, &time, nullptr) <= 0) return;
    std::ranges::copy_n(events.begin() + 1, static_cast<std::ptrdiff_t>(others.size()), others.begin());
}

}  // namespace twr
