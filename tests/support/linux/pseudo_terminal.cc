// SPDX-License-Identifier: MIT
#include "support/linux/pseudo_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vterm.h>

#include <algorithm>
#include <cstdlib>

#include "base/wide_text.h"
#include "support/child_process.h"

namespace twr::testing {
namespace {

constexpr int kUtf8 = 1, kWithAlternate = 1, kHard = 1;
constexpr int kPauseMs = 5;
constexpr int kPatienceMs = 20000;  // without any output: only a fault takes that long

[[noreturn]] void BecomeRole(const std::string& role, const std::vector<std::string>& arguments,
                             const std::vector<std::string>& environment) {
    setenv("TERM", "xterm-256color", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    for (const char* variable : {"LINES", "COLUMNS", "ESCDELAY"}) unsetenv(variable);
    for (const int number : {SIGINT, SIGQUIT, SIGHUP})
        signal(number, SIG_DFL);  // a script's background job starts with them ignored
    for (const std::string& setting : environment) putenv(const_cast<char*>(setting.c_str()));
    const std::string program = OwnProgram();
    std::vector<const char*> argv{program.c_str(), "--run-role", role.c_str()};
    for (const std::string& argument : arguments) argv.push_back(argument.c_str());
    argv.push_back(nullptr);
    execv(program.c_str(), const_cast<char**>(argv.data()));
    _exit(127);
}

}  // namespace

PseudoTerminal::PseudoTerminal(const std::string& role, const std::vector<std::string>& arguments,
                               const std::vector<std::string>& environment)
    : picture_(vterm_new(rows_, columns_)), screen_(vterm_obtain_screen(picture_)) {
    static VTermScreenCallbacks onlyProperties{};
    onlyProperties.settermprop = [](VTermProp property, VTermValue* value, void* onOwnScreen) {
        if (property == VTERM_PROP_ALTSCREEN) *static_cast<bool*>(onOwnScreen) = value->boolean != 0;
        return 1;
    };
    vterm_set_utf8(picture_, kUtf8);
    vterm_screen_enable_altscreen(screen_, kWithAlternate);
    vterm_screen_set_callbacks(screen_, &onlyProperties, &onOwnScreen_);
    vterm_screen_reset(screen_, kHard);
    winsize size{static_cast<unsigned short>(rows_), static_cast<unsigned short>(columns_), 0, 0};
    process_ = forkpty(&terminal_, nullptr, nullptr, &size);
    if (process_ == 0) BecomeRole(role, arguments, environment);
    fcntl(terminal_, F_SETFD, FD_CLOEXEC);  // held by another role it could not hang up
}

PseudoTerminal::~PseudoTerminal() {
    HangUp();
    Wait();
    vterm_free(picture_);
}

bool PseudoTerminal::ReadMore() {
    pollfd event{terminal_, POLLIN, 0};
    if (poll(&event, 1, kPatienceMs) <= 0) return false;
    char chunk[64];  // small, so that a half drawn picture is looked at as well and no test takes it for the whole
    const ssize_t got = read(terminal_, chunk, sizeof chunk);  // fails when nobody holds the other end any more
    if (got <= 0) return false;
    taken_ += static_cast<std::size_t>(got);
    TakeIn({chunk, static_cast<std::size_t>(got)});
    return true;
}

void PseudoTerminal::TakeIn(std::string_view bytes) { vterm_input_write(picture_, bytes.data(), bytes.size()); }

// A cell that nothing was written to is a blank; the second of a wide character is empty.
std::string PseudoTerminal::Picture(bool onlyReversed) const {
    std::string text;
    for (VTermPos at{0, 0}; at.row < rows_; ++at.row) {
        for (at.col = 0; at.col < columns_; ++at.col) {
            VTermScreenCell cell{};
            vterm_screen_get_cell(screen_, at, &cell);
            const std::uint32_t first = cell.chars[0] == 0 ? U' ' : cell.chars[0];
            if (first != UINT32_MAX && (cell.attrs.reverse || !onlyReversed))
                text += ToUtf8(std::u16string(1, static_cast<char16_t>(first)));
        }
        text += '\n';
    }
    return text;
}

bool PseudoTerminal::HasColours() const {
    VTermScreenCell cell{};
    for (VTermPos at{0, 0}; at.row < rows_; at.col = (at.col + 1) % columns_, at.row += at.col == 0) {
        vterm_screen_get_cell(screen_, at, &cell);
        if (!VTERM_COLOR_IS_DEFAULT_FG(&cell.fg)) return true;
    }
    return false;
}

bool PseudoTerminal::WaitUntil(const std::function<bool()>& holds) {
    bool held = false;
    while (!(held = holds()) && ReadMore()) continue;
    return held;
}

bool PseudoTerminal::Shows(std::string_view text) {
    return WaitUntil([&] { return Picture().find(text) != std::string::npos; });
}

bool PseudoTerminal::ShowsNo(std::string_view text) {
    return WaitUntil([&] { return Picture().find(text) == std::string::npos; });
}

bool PseudoTerminal::Focuses(std::string_view text) {
    return WaitUntil([&] { return Picture(true).find(text) != std::string::npos; });
}

void PseudoTerminal::Type(std::string_view keys) {
    [[maybe_unused]] const ssize_t written = write(terminal_, keys.data(), keys.size());
}

void PseudoTerminal::Resize(int rows, int columns) {
    rows_ = std::clamp(rows, 1, 200);
    columns_ = std::clamp(columns, 1, 200);
    vterm_set_size(picture_, rows_, columns_);
    const winsize size{static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
    ioctl(terminal_, TIOCSWINSZ, &size);
}

void PseudoTerminal::Signal(int number) { kill(process_, number); }

void PseudoTerminal::HangUp() {
    if (terminal_ >= 0) close(terminal_);
    terminal_ = -1;
}

// What the role still writes is taken, so that nothing holds it up.
int PseudoTerminal::Wait() {
    if (process_ <= 0) return -1;
    while (terminal_ >= 0 && ReadMore()) continue;
    return WaitBlindly();
}

int PseudoTerminal::WaitBlindly() {
    int status = 0;
    // One that is silent but does not end is at fault, and is killed.
    for (int waited = 0; waitpid(process_, &status, WNOHANG) == 0; waited += kPauseMs) {
        if (waited >= kPatienceMs) kill(process_, SIGKILL);
        poll(nullptr, 0, kPauseMs);
    }
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool PseudoTerminal::GivenBack() const {
    termios modes{};
    tcgetattr(terminal_, &modes);
    constexpr tcflag_t kLocal = ICANON | ECHO | ISIG | IEXTEN;
    return !onOwnScreen_ && (modes.c_lflag & kLocal) == kLocal && modes.c_oflag & OPOST && modes.c_iflag & IXON;
}

}  // namespace twr::testing
