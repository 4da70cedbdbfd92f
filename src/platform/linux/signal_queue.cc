// SPDX-License-Identifier: MIT
#include "platform/linux/signal_queue.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <optional>

#include "platform/linux/crash_reports.h"

namespace twr {
namespace {

using Signals = std::uint32_t;  // a bit for each

constexpr Signals Bit(int number) { return Signals{1} << number; }

constexpr Signals kToClose = [] {
    Signals all = 0;
    for (const int number : kCloseSignals) all |= Bit(number);
    return all;
}();

// A library may take them for itself.
constexpr Signals kForAnyUse = Bit(SIGALRM) | Bit(SIGUSR1) | Bit(SIGUSR2) | Bit(SIGVTALRM);

// From a close signal on: the first look at once, in case that it came just before a wait, then every second.
constexpr itimerspec kLooks{{1, 0}, {0, 100'000'000}}, kNoLooks{};
constexpr int kPatience = 5;  // looks

// The last one of all is valgrind's own, under which the bridge is tested too.
const int kLook = SIGRTMAX - 1;

std::atomic<Signals> received = 0;
static_assert(std::atomic<Signals>::is_always_lock_free);
volatile sig_atomic_t looks = 0;
std::optional<timer_t> lookTimer;
std::uint32_t waitsSince = 0;  // since a library was loaded

sigset_t SetOf(Signals signals) {
    sigset_t set;
    sigemptyset(&set);
    for (; signals != 0; signals &= signals - 1) sigaddset(&set, std::countr_zero(signals));
    return set;
}

void SetLooks(const itimerspec& when) {
    looks = 0;
    if (lookTimer) timer_settime(*lookTimer, 0, &when, nullptr);
}

void EndBy(int number) {
    BeforeTheEnd();
    signal(number, SIG_DFL);
    const sigset_t set = SetOf(Bit(number));
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
    raise(number);
}

void OnLook(int) {
    const int error = errno;
    const Signals waiting = received & kToClose;
    looks = looks + 1;
    if (waiting == 0) {
        SetLooks(kNoLooks);
    } else if (looks >= kPatience) {
        EndBy(std::countr_zero(waiting));
    }
    errno = error;
}

// The kernel's own are such as Ctrl-C, a lost terminal or a limit of the system, but also alarm and setitimer of this process.
bool FromOutside(int number, const siginfo_t& info) {
    if (info.si_code == SI_KERNEL) return number != SIGALRM && number != SIGVTALRM;
    const bool sent = info.si_code == SI_USER || info.si_code == SI_QUEUE || info.si_code == SI_TKILL;
    return sent && info.si_pid != getpid();
}

void OnSignal(int number, siginfo_t* info, void*) {
    const int error = errno;
    if (!InOwnProcess()) {  // but in one that a library has forked off
        signal(number, SIG_DFL);
        raise(number);
    } else if (FromOutside(number, *info)) {
        const bool first = (received.fetch_or(Bit(number)) & kToClose) == 0;
        if (first && (kToClose & Bit(number))) SetLooks(kLooks);
    }
    errno = error;
}

struct sigaction Action(void (*handler)(int, siginfo_t*, void*)) {
    struct sigaction action {};
    action.sa_sigaction = handler;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    return action;
}

// The system's timers need no thread.
std::optional<timer_t> MakeTimer() {
    struct sigaction action {};
    action.sa_handler = OnLook;
    action.sa_flags = SA_RESTART;
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = kLook;
    timer_t made{};
    const bool works = sigaction(kLook, &action, nullptr) == 0 && timer_create(CLOCK_MONOTONIC, &event, &made) == 0;
    return works ? std::optional(made) : std::nullopt;
}

// What a library has done to them.
void TakeBack() {
    const struct sigaction own = Action(OnSignal);
    for (const int number : kCloseSignals) {
        struct sigaction now {};
        sigaction(number, nullptr, &now);
        const bool taken = now.sa_handler != SIG_DFL && (kForAnyUse & Bit(number));
        if (now.sa_sigaction != OnSignal && !taken) sigaction(number, &own, nullptr);
    }
}

}  // namespace

using Steady = std::chrono::steady_clock;

bool CloseSignalPending() {
    sigset_t waiting;
    if (received & kToClose) return true;
    return sigpending(&waiting) == 0 &&
           std::ranges::any_of(kCloseSignals, [&](int number) { return sigismember(&waiting, number); });
}

void ExpectOtherHandlers() { waitsSince = 0; }

// The others are blocked but while it waits, so that no change of a terminal's size interrupts what a library does.
SignalQueue::SignalQueue(std::initializer_list<int> others) : canary_(open("/dev/null", O_RDONLY | O_CLOEXEC)) {
    BeOwnProcess();
    if (!lookTimer) lookTimer = MakeTimer();
    Signals blocked = 0;
    for (const int number : others) blocked |= Bit(number);
    const sigset_t block = SetOf(blocked);
    sigset_t take = SetOf(kToClose);
    sigaddset(&take, kLook);
    sigprocmask(SIG_BLOCK, &block, &before_);
    whileWaiting_ = before_;
    for (int number = 1; number < NSIG; ++number) {
        if (sigismember(&take, number) == 1 || sigismember(&block, number) == 1) sigdelset(&whileWaiting_, number);
    }
    const struct sigaction own = Action(OnSignal);
    for (Signals left = kToClose | blocked; left != 0; left &= left - 1) {
        auto& [number, before] = actions_.emplace_back(std::countr_zero(left), own);
        sigaction(number, &own, &before);
    }
    sigprocmask(SIG_UNBLOCK, &take, nullptr);
}

SignalQueue::~SignalQueue() {
    for (const auto& [number, before] : actions_) sigaction(number, &before, nullptr);
    sigprocmask(SIG_SETMASK, &before_, nullptr);
    received = 0;  // a repeated one must not close what comes next
    SetLooks(kNoLooks);
}

int SignalQueue::Take() {
    const Signals waiting = received;
    if (waiting == 0) return 0;
    const int number = std::countr_zero(waiting);
    received &= ~Bit(number);
    return number;
}

void SignalQueue::WaitUntil(Steady::time_point end, std::span<pollfd> others) const {
    if (++waitsSince < 16 || waitsSince % 4096 == 0) TakeBack();  // libraries set handlers mostly as they begin
    const auto left = std::max(Steady::duration::zero(), end - SteadyNow());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec time{static_cast<time_t>(seconds.count()), static_cast<long>((left - seconds) / std::chrono::nanoseconds(1))};
    std::array<pollfd, 3> events{};
    events[0] = {canary_.Get(), 0, 0};
    std::ranges::copy(others, events.begin() + 1);
    const int ready = ppoll(events.data(), others.size() + 1, &time, &whileWaiting_);
    const bool closed = events[0].revents != 0 || std::ranges::any_of(events, [](auto& event) { return event.revents & POLLNVAL; });
    if (closed || (ready < 0 && errno != EINTR)) EndByFault("the closing of its descriptors", nullptr);
    if (ready <= 0) return;
    std::ranges::copy_n(events.begin() + 1, static_cast<std::ptrdiff_t>(others.size()), others.begin());
}

}  // namespace twr
