#include "platform/linux/terminal_restore.h"

#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace twr {
namespace {

// Plain data, since a signal's handler may touch nothing else.
termios modes;
std::array<char, 255> leave;
std::size_t leaveSize = 0;
volatile sig_atomic_t armed = 0;

void Restore() {
    if (!armed) return;
    armed = 0;
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, leave.data(), leaveSize);
    tcsetattr(STDIN_FILENO, TCSANOW, &modes);
}

void RestoreAndDie(int number) {
    Restore();
    raise(number);  // by now it has its default effect
}

// A handler of somebody else's stays.
void Handle(int number) {
    struct sigaction before {
    }, ours{};
    if (sigaction(number, nullptr, &before) != 0 || before.sa_handler != SIG_DFL) return;
    ours.sa_handler = RestoreAndDie;
    ours.sa_flags = static_cast<int>(SA_RESETHAND) | SA_NODEFER;
    sigaction(number, &ours, nullptr);
}

}  // namespace

void NoteTerminalModes() { tcgetattr(STDIN_FILENO, &modes); }

void ArmTerminalRestore(std::string_view sequence) {
    leaveSize = std::min(sequence.size(), leave.size());
    std::copy_n(sequence.begin(), leaveSize, leave.begin());
    armed = 1;
    static const bool once = [] {
        for (const int number : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGQUIT}) Handle(number);
        std::atexit(Restore);
        return true;
    }();
    static_cast<void>(once);
}

void DisarmTerminalRestore() { armed = 0; }

}  // namespace twr
