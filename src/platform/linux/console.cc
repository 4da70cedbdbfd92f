// SPDX-License-Identifier: MIT
#include "platform/console.h"

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>

#include "platform/held_output.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"
#include "platform/linux/signal_queue.h"
#include "platform/linux/terminal/screen.h"

namespace twr {
namespace {

// Blocks until all is written. Another program may have left the terminal in non-blocking mode.
Output WriteAll(int to, std::string_view text) {
    signal(SIGPIPE, SIG_IGN);
    while (!text.empty()) {
        const ssize_t written = write(to, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (written < 0 && errno == EAGAIN) {
            pollfd room{to, POLLOUT, 0};
            poll(&room, 1, -1);
        } else {
            return errno == EPIPE ? Output::kReaderGone : Output::kRefused;
        }
    }
    return Output::kWritten;
}

std::function<Output()> Writer(int to, std::string_view text) {
    return [to, owned = std::string(text)] { return WriteAll(to, owned); };
}

class PosixConsole final : public Console {
public:
    std::unique_ptr<ConsoleScreen> TakeScreen() override {
        const bool terminal = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
        return terminal && TerminalCanShowScreens() ? MakeConsoleScreen() : nullptr;
    }

    Output Write(std::string_view utf8, const std::function<bool()>& goOn) override {
        return RunWrite(Writer(STDOUT_FILENO, utf8), goOn);
    }
    void WriteError(std::string_view utf8) override { RunShortWrite(Writer(STDERR_FILENO, utf8)); }

    std::optional<std::string> ReadLine() override {
        if (!signals_) Listen();
        for (std::string line;;) {
            pollfd events[] = {{STDIN_FILENO, POLLIN, 0}, {signals_.Get(), POLLIN, 0}};
            poll(events, 2, -1);
            char typed = 0;
            if (events[1].revents != 0 || read(STDIN_FILENO, &typed, 1) != 1) return std::nullopt;
            if (typed == '\n') return line;
            line += typed;
        }
    }

    bool Wait(int milliseconds) override {
        if (!signals_) Listen();
        pollfd event{signals_.Get(), POLLIN, 0};
        return poll(&event, 1, milliseconds) == 0;
    }

    void ForgetStop() override {
        signalfd_siginfo taken;
        while (!Wait(0) && read(signals_.Get(), &taken, sizeof taken) > 0) continue;
    }

private:
    // Only from the first wait or check on, so that a signal ends a command that never waits as usual.
    void Listen() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int number : kCloseSignals) sigaddset(&signals, number);
        sigprocmask(SIG_BLOCK, &signals, nullptr);
        signals_ = Descriptor(signalfd(-1, &signals, SFD_CLOEXEC));
    }

    Descriptor signals_;
};

}  // namespace

std::unique_ptr<Console> MakeConsole() { return std::make_unique<PosixConsole>(); }

}  // namespace twr
