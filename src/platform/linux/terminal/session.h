// SPDX-License-Identifier: MIT
// The terminal as a job of a shell has it: taken for the first picture, given back while the job is stopped or in the background.
#pragma once
#include <chrono>
#include <memory>
#include <optional>

#include "platform/linux/signal_queue.h"
#include "platform/linux/terminal/screen.h"

namespace twr {

class TerminalSession {
public:
    enum class Event {
        kNone,
        kSpoilt,  // the picture was lost, or the size has changed
        kClose,   // a signal asks to close, or the terminal is gone
    };

    // The next event, in their order. A stop takes effect in here.
    Event Take();

    // The next key; nullopt if there is none. kRedraw makes the next picture a full one.
    std::optional<char32_t> Read();

    // To draw on; nullptr while another job has the terminal, or once it is gone.
    TerminalScreen* Screen();

    // Whether the terminal has not yet accepted all of the last picture; the next one should wait for that.
    bool Busy() const { return HasScreen() && screen_->Device().Busy(); }

    // Waits until `end` for a signal or a key, and passes on what the terminal has not accepted yet. While `undrawn`, it returns
    // soon enough to notice that the terminal is back.
    void WaitUntil(std::chrono::steady_clock::time_point end, bool undrawn);

private:
    bool HasScreen() const { return screen_ && !stale_ && !gone_; }
    void OnGone();
    void Suspend();

    SignalQueue signals_{{SIGTSTP, SIGCONT, SIGWINCH}};
    std::unique_ptr<TerminalScreen> screen_;
    bool stale_ = false;    // the job was stopped meanwhile: the screen must be taken again
    bool gone_ = false;     // there is no terminal any more
    bool closing_ = false;  // and Take hasn't told yet
};

}  // namespace twr
