// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/device.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "platform/linux/crash_reports.h"

namespace twr {

bool TerminalIsOurs() { return tcgetpgrp(STDIN_FILENO) == getpgrp(); }

namespace {

// Some terminals report 65535 rows. Sizes above these are not useful.
constexpr int kMostRows = 200, kMostColumns = 500;

// At the end a slow terminal gets this long to accept the rest.
constexpr int kPatienceMs = 300;

// For the signal handler, which may touch only plain data.
struct {
    volatile sig_atomic_t taken = 0;
    int output = -1;
    termios modes{};
    std::array<char, 255> text{};
    std::size_t size = 0;
} atEnd;

// In the background the shell has the terminal, with modes of its own.
void GiveBack() {
    if (!atEnd.taken || !TerminalIsOurs()) return;
    atEnd.taken = 0;
    [[maybe_unused]] const ssize_t written = write(atEnd.output, atEnd.text.data(), atEnd.size);
    tcsetattr(STDIN_FILENO, TCSANOW, &atEnd.modes);
}

bool GiveBackInTheEnd() {
    AtCrash(GiveBack);
    return std::atexit(BeforeTheEnd) == 0;
}

// A file description of its own, so that the shell's stays blocking. After su the terminal can be opened by its second name only.
Descriptor OpenOutput() {
    constexpr int kFlags = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int direct = open("/proc/self/fd/1", kFlags);
    return Descriptor(direct >= 0 ? direct : open("/dev/tty", kFlags));
}

}  // namespace

// Keys come one by one, without echo. Those that send signals still do, and Ctrl-S does nothing.
TerminalDevice::TerminalDevice() : output_(OpenOutput()) {
    [[maybe_unused]] static const bool once = GiveBackInTheEnd();
    if (!output_ || tcgetattr(STDIN_FILENO, &atEnd.modes) != 0) return;
    atEnd.output = output_.Get();
    atEnd.size = 0;
    atEnd.taken = 1;
    termios raw = atEnd.modes;
    raw.c_iflag &= ~static_cast<tcflag_t>(IXON);
    raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | IEXTEN);
    raw.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    tcsetattr(STDIN_FILENO, TCSANOW, &raw);
}

TerminalDevice::~TerminalDevice() {
    pollfd event{output_.Get(), POLLOUT, 0};
    while (Busy() && TerminalIsOurs() && poll(&event, 1, kPatienceMs) > 0 && event.revents == POLLOUT) Push();
    GiveBack();
    atEnd.taken = 0;
}

CellSize TerminalDevice::Size() const {
    winsize size{};
    if (ioctl(output_.Get(), TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0) return {24, 80};
    return {std::min<int>(size.ws_row, kMostRows), std::min<int>(size.ws_col, kMostColumns)};
}

void TerminalDevice::Write(std::string_view bytes) {
    kept_ += bytes;
    Push();
}

void TerminalDevice::Push() {
    const ssize_t written = kept_.empty() ? 0 : write(output_.Get(), kept_.data(), kept_.size());
    if (written > 0) kept_.erase(0, static_cast<std::size_t>(written));
}

void TerminalDevice::WriteAtEnd(std::string_view bytes) {
    atEnd.size = std::min(bytes.size(), atEnd.text.size());
    std::copy_n(bytes.begin(), atEnd.size, atEnd.text.begin());
}

}  // namespace twr
