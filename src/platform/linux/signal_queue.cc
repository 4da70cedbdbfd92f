#include "platform/linux/signal_queue.h"

#include <sys/signalfd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <optional>

#include "platform/linux/crash_reports.h"

namespace twr {
namespace {

// A program that is busy for so long is looked at, and then every second.
constexpr itimerspec kBusy{{1, 0}, {3, 0}}, kWaiting{};

// The last one of all is valgrind's own, under which the bridge is tested too.
const int kLook = SIGRTMAX - 1;

volatile sig_atomic_t looks = 0;  // in a row that found a signal waiting

sigset_t CloseSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : kCloseSignals) sigaddset(&set, number);
    return set;
}

void OnLook(int) {
    looks = CloseSignalPending() ? looks + 1 : 0;
    if (looks < 2) return;
    BeforeTheEnd();
    const sigset_t set = CloseSignals();
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

// The system's timers need no thread.
std::optional<timer_t> MakeTimer() {
    struct sigaction action {};
    action.sa_handler = OnLook;
    action.sa_flags = SA_RESTART;
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = kLook;
    timer_t timer{};
    const bool made = sigaction(kLook, &action, nullptr) == 0 && timer_create(CLOCK_MONOTONIC, &event, &timer) == 0;
    return made ? std::optional(timer) : std::nullopt;
}

void Watch(const itimerspec& how) {
    static const std::optional<timer_t> timer = MakeTimer();
    looks = 0;
    if (timer) timer_settime(*timer, 0, &how, nullptr);
}

}  // namespace

using Steady = std::chrono::steady_clock;

bool CloseSignalPending() {
    sigset_t waiting;
    return sigpending(&waiting) == 0 &&
           std::ranges::any_of(kCloseSignals, [&](int number) { return sigismember(&waiting, number); });
}

SignalQueue::SignalQueue(std::initializer_list<int> others) {
    sigset_t set = CloseSignals();
    for (const int number : others) sigaddset(&set, number);
    sigprocmask(SIG_BLOCK, &set, &before_);
    queue_ = Descriptor(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
}

SignalQueue::~SignalQueue() {
    Watch(kWaiting);
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
    Watch(kWaiting);
    const int ready = ppoll(events.data(), others.size() + 1, &time, nullptr);
    Watch(kBusy);
    if (ready <= 0) return;
    std::ranges::copy_n(events.begin() + 1, static_cast<std::ptrdiff_t>(others.size()), others.begin());
}

}  // namespace twr
