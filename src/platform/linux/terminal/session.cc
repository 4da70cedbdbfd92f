// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/session.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

namespace twr {
namespace {

// While another program has the terminal, it is checked this often whether it is available again.
constexpr auto kForegroundCheck = std::chrono::seconds(1);

}  // namespace

TerminalSession::Event TerminalSession::Take() {
    if (std::exchange(closing_, false)) return Event::kClose;
    switch (signals_.Take()) {
        case 0:
            return Event::kNone;
        case SIGWINCH:
            if (HasScreen()) screen_->TakeSize();
            return Event::kSpoilt;
        case SIGTSTP:
            Suspend();
            return Event::kSpoilt;
        case SIGCONT:
            stale_ = true;
            return Event::kSpoilt;
        default:
            return Event::kClose;
    }
}

std::optional<char32_t> TerminalSession::Read() {
    if (!HasScreen() || !TerminalIsOurs()) return std::nullopt;
    const auto key = screen_->Read();
    if (key == Key::kRedraw) screen_->Redraw();
    return key;
}

TerminalScreen* TerminalSession::Screen() {
    if (gone_ || !TerminalIsOurs()) return nullptr;
    if (stale_) screen_.reset();
    stale_ = false;
    if (!screen_) screen_ = std::make_unique<TerminalScreen>();
    if (*screen_) return screen_.get();
    screen_.reset();
    OnGone();
    return nullptr;
}

void TerminalSession::WaitUntil(std::chrono::steady_clock::time_point end, bool undrawn) {
    if (closing_) return;
    if (undrawn) end = std::min(end, std::chrono::steady_clock::now() + kForegroundCheck);
    // What can't be taken now must not end the wait at once, again and again.
    const bool ours = HasScreen() && TerminalIsOurs();
    const auto wanted = [ours](int event) { return static_cast<short>(ours ? event : 0); };
    std::array<pollfd, 2> events{
        {{HasScreen() ? STDIN_FILENO : -1, wanted(POLLIN), 0}, {Busy() ? screen_->Device().Output() : -1, wanted(POLLOUT), 0}}};
    signals_.WaitUntil(end, events);
    if ((events[0].revents | events[1].revents) & (POLLHUP | POLLERR)) return OnGone();
    if (events[1].revents && TerminalIsOurs()) screen_->Device().Push();
}

void TerminalSession::OnGone() { gone_ = closing_ = true; }

// As the signal alone would do, but with the shell's screen restored.
void TerminalSession::Suspend() {
    screen_.reset();
    struct sigaction usual {};
    struct sigaction queued {};
    usual.sa_handler = SIG_DFL;
    sigaction(SIGTSTP, &usual, &queued);
    raise(SIGTSTP);
    sigset_t stop;
    sigemptyset(&stop);
    sigaddset(&stop, SIGTSTP);
    sigprocmask(SIG_UNBLOCK, &stop, nullptr);
    sigprocmask(SIG_BLOCK, &stop, nullptr);
    sigaction(SIGTSTP, &queued, nullptr);
}

}  // namespace twr
