#include "platform/linux/terminal/host.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "platform/linux/terminal/text.h"

namespace twr {
namespace {

// While another program has the terminal, the host checks this often whether it is available again.
constexpr auto kForegroundCheck = std::chrono::seconds(1);

}  // namespace

TerminalHost::TerminalHost(const DialogTemplate& layout, Dialog& dialog)
    : WindowState(dialog),
      dialog_(dialog),
      signals_({SIGTSTP, SIGCONT, SIGWINCH}),
      form_(layout, dialog, *this, [this](Layer& layer) { Run(layer); }) {
    layers_.push_back(&form_);
}

void TerminalHost::Run() {
    while (!Over()) Step();
}

void TerminalHost::Run(Layer& layer) {
    layers_.push_back(&layer);
    dirty_ = true;
    while (!layer.Closed() && !Over()) Step();
    layers_.pop_back();
    dirty_ = true;
}

BoxAnswer TerminalHost::ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons) {
    if (Over()) return BoxAnswer::kNone;
    if (closing_) return buttons == BoxButtons::kYesNo ? BoxAnswer::kYes : BoxAnswer::kNone;
    BoxLayer box(text, caption, buttons);
    Run(box);
    return box.Answer();
}

void TerminalHost::Step() {
    if (TakePostedClose()) return dialog_.OnCancel();
    if (const int signal = signals_.Take()) return OnSignal(signal);
    RaiseTimers();
    if (Over()) return;
    if (HasScreen() && TerminalIsOurs()) {
        if (const auto key = screen_->Read()) return OnKey(*key);
    }
    if (dirty_ && !Busy()) Draw();
    if (!Over()) Wait();
}

void TerminalHost::OnSignal(int signal) {
    switch (signal) {
        case SIGWINCH:
            if (HasScreen()) screen_->TakeSize();
            dirty_ = true;
            return;
        case SIGTSTP:
            return Suspend();
        case SIGCONT:
            stale_ = dirty_ = true;
            return;
        default:
            return CloseFromOutside();
    }
}

void TerminalHost::OnKey(char32_t key) {
    dirty_ = true;
    if (key == kRedraw) return screen_->Redraw();
    if (!tooSmall_) layers_.back()->OnKey(key);  // else the effect of a key could not be seen
}

// A picture waits until the terminal has accepted the one before it, so that at most one is kept for a terminal that accepts none.
void TerminalHost::Wait() {
    Steady::time_point end = NextDue();
    if (dirty_) end = std::min(end, Steady::now() + kForegroundCheck);
    std::array<pollfd, 2> events{
        {{HasScreen() ? STDIN_FILENO : -1, POLLIN, 0}, {Busy() ? screen_->Device().Output() : -1, POLLOUT, 0}}};
    signals_.WaitUntil(end, events);
    if (events[0].revents & (POLLHUP | POLLERR | POLLNVAL)) return OnTerminalGone();
    if (events[1].revents && TerminalIsOurs()) screen_->Device().Push();
}

void TerminalHost::CloseFromOutside() {
    closing_ = true;
    dialog_.OnCancel();
    closing_ = false;
}

void TerminalHost::OnTerminalGone() {
    gone_ = true;
    CloseFromOutside();
}

// As the signal alone would do, but with the shell's screen restored.
void TerminalHost::Suspend() {
    screen_.reset();
    raise(SIGTSTP);
    sigset_t stop;
    sigemptyset(&stop);
    sigaddset(&stop, SIGTSTP);
    sigprocmask(SIG_UNBLOCK, &stop, nullptr);
    sigprocmask(SIG_BLOCK, &stop, nullptr);
    dirty_ = true;
}

bool TerminalHost::TakeScreen() {
    if (gone_ || !TerminalIsOurs()) return false;
    if (stale_) screen_.reset();
    stale_ = false;
    if (screen_) return true;
    screen_ = std::make_unique<TerminalScreen>();
    if (*screen_) return true;
    screen_.reset();
    OnTerminalGone();
    return false;
}

void TerminalHost::Draw() {
    if (!TakeScreen()) return;
    dirty_ = tooSmall_ = false;
    const TerminalLocale locale;
    const CellSize area = screen_->Area();
    std::vector<Panel> panels;
    for (Layer* layer : layers_) {
        panels.push_back(layer->Shown(area));
        const CellSize& size = panels.back().size;
        tooSmall_ = tooSmall_ || size.rows > area.rows || size.columns > area.columns;
    }
    if (tooSmall_) {
        Panel notice{area, {}, {}, {}};
        for (int row = 1; const std::wstring& line : Wrapped(u"Too small for the dialog. Halyrig is running.", area.columns - 2)) {
            notice.parts.push_back({row++, 1, line});
        }
        panels = {notice};
    }
    screen_->Show(panels);
}

}  // namespace twr
