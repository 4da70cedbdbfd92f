#include "platform/console.h"

#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "platform/linux/descriptor.h"
#include "platform/linux/services.h"

namespace twr {
namespace {

class PosixConsole final : public Console {
public:
    std::optional<ConsoleSize> Size() const override {
        winsize size{};
        if (!isatty(STDOUT_FILENO)) return std::nullopt;
        if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) return ConsoleSize{80, 24};
        return ConsoleSize{size.ws_col, size.ws_row};
    }

    bool Write(std::string_view utf8) override {
        signal(SIGPIPE, SIG_IGN);
        while (!utf8.empty()) {
            const ssize_t written = write(STDOUT_FILENO, utf8.data(), utf8.size());
            if (written <= 0) return false;
            utf8.remove_prefix(static_cast<std::size_t>(written));
        }
        return true;
    }

    bool Wait(int milliseconds) override {
        if (!signals_) Listen();
        pollfd event{signals_.Get(), POLLIN, 0};
        return poll(&event, 1, milliseconds) == 0;
    }

private:
    // From the first wait on, so that a command that never waits is ended by a signal as any other.
    void Listen() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, number);
        sigprocmask(SIG_BLOCK, &signals, nullptr);
        signals_ = Descriptor(signalfd(-1, &signals, SFD_CLOEXEC));
    }

    Descriptor signals_;
};

}  // namespace

std::unique_ptr<Console> MakeConsole() { return std::make_unique<PosixConsole>(); }

}  // namespace twr
