#include "platform/console.h"

#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/held_output.h"
#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"
#include "platform/linux/signal_queue.h"

namespace twr {
namespace {

// Waits for as long as it takes. Another program may have left the terminal such that it refuses to.
bool WriteAll(int to, std::string_view text) {
    signal(SIGPIPE, SIG_IGN);
    while (!text.empty()) {
        const ssize_t written = write(to, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (written < 0 && errno == EAGAIN) {
            pollfd room{to, POLLOUT, 0};
            poll(&room, 1, -1);
        } else {
            return false;
        }
    }
    return true;
}

std::function<bool()> Writer(int to, std::string_view text) {
    return [to, owned = std::string(text)] { return WriteAll(to, owned); };
}

// An editor's shell window, for one, says of itself that it only prints.
bool OnlyPrints() {
    const char* const terminal = std::getenv("TERM");
    return !terminal || !*terminal || std::string_view(terminal) == "dumb";
}

class PosixConsole final : public Console {
public:
    std::optional<ConsoleSize> Size() const override {
        winsize size{};
        if (!isatty(STDOUT_FILENO) || OnlyPrints()) return std::nullopt;
        if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) return ConsoleSize{80, 24};
        return ConsoleSize{size.ws_col, size.ws_row};
    }

    Output Write(std::string_view utf8, const std::function<bool()>& goOn) override {
        return RunWrite(Writer(STDOUT_FILENO, utf8), goOn);
    }
    void WriteError(std::string_view utf8) override { RunShortWrite(Writer(STDERR_FILENO, utf8)); }

    bool Wait(int milliseconds) override {
        if (!signals_) Listen();
        pollfd event{signals_.Get(), POLLIN, 0};
        return poll(&event, 1, milliseconds) == 0;
    }

private:
    // From the first wait or question on, so that a command that never waits is ended by a signal as any other.
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
