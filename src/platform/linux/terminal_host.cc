#include "platform/linux/terminal_host.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>

#include "platform/linux/terminal_box.h"
#include "platform/linux/terminal_text.h"

namespace twr {
namespace {

// While another program has the terminal, the host looks this often whether it has come back.
constexpr auto kForegroundCheck = std::chrono::seconds(1);

}  // namespace

TerminalHost::TerminalHost(const DialogTemplate& layout, Dialog& dialog)
    : WindowState(dialog),
      dialog_(dialog),
      signals_({SIGTERM, SIGINT, SIGHUP, SIGTSTP, SIGCONT, SIGWINCH}),
      form_(layout, dialog, *this, *this) {
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

BoxAnswer TerminalHost::ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon icon) {
    if (Over()) return BoxAnswer::kNone;
    if (closing_) return buttons == BoxButtons::kYesNo ? BoxAnswer::kYes : BoxAnswer::kNone;
    BoxLayer box(text, caption, buttons, icon);
    Run(box);
    return box.Answer();
}

void TerminalHost::Step() {
    if (TakePostedClose()) return dialog_.OnCancel();
    if (const int signal = signals_.Take()) return OnSignal(signal);
    RaiseTimers();
    if (Over()) return;
    if (inputReady_ && Reads()) {
        if (const auto input = screen_->Read()) return OnInput(*input);
        inputReady_ = false;
    }
    if (dirty_) Draw();
    if (!Over()) Wait();
}

void TerminalHost::OnSignal(int signal) {
    switch (signal) {
        case SIGWINCH:
            if (Reads()) screen_->Resize();
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

void TerminalHost::OnInput(const Input& input) {
    dirty_ = true;
    if (input.key == Key::kRedraw) return screen_->Redraw();
    if (tooSmall_) return;  // nobody can see what a key would do
    if (input.key == Key::kPress) {
        const auto onHint = [&](const HintSpan& span) {
            return span.at.row == input.at.row && input.at.column >= span.at.column &&
                   input.at.column < span.at.column + span.width;
        };
        const auto hint = std::ranges::find_if(hints_, onHint);
        if (hint != hints_.end()) {
            const Input meant = hint->input;  // the next picture has hints of its own
            return layers_.back()->OnInput(meant);
        }
    }
    layers_.back()->OnInput(input);
}

void TerminalHost::Wait() {
    Steady::time_point end = NextDue();
    if (dirty_) end = std::min(end, Steady::now() + kForegroundCheck);
    const short events = signals_.WaitUntil(end, Reads() ? STDIN_FILENO : -1);
    if (events & (POLLHUP | POLLERR | POLLNVAL)) return OnTerminalGone();
    if (!(events & POLLIN)) return;
    int waiting = 0;
    if (ioctl(STDIN_FILENO, FIONREAD, &waiting) != 0 || waiting == 0) return OnTerminalGone();
    inputReady_ = true;
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

// As the signal would have done by itself, with the shell's screen back in its place.
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
    dirty_ = false;
    Frame frame;
    const CellSize area{frame.Size().rows - 1, frame.Size().columns};  // the last row is for the hints
    hints_.clear();
    tooSmall_ = std::ranges::any_of(layers_, [&](const Layer* layer) {
        const CellSize needed = layer->Needed();
        return needed.rows > area.rows || needed.columns > area.columns;
    });
    if (tooSmall_) {
        const auto lines = Wrapped(u"This window is too small to show the dialog. Halyrig goes on; make it larger.", area.columns);
        for (int row = 0; const std::wstring& line : lines) frame.Text({row++, 0}, line);
        return;
    }
    for (Layer* layer : layers_) layer->Draw(area, layer == layers_.back());
    DrawHints(frame);
}

void TerminalHost::DrawHints(Frame& frame) {
    const int row = frame.Size().rows - 1;
    int column = 1;
    for (const Hint& hint : layers_.back()->Hints()) {
        const int width = WidthOf(hint.key) + 1 + WidthOf(hint.effect);
        if (column + width >= frame.Size().columns) return;
        frame.Text({row, column}, hint.key, Style::kStrong);
        frame.Text({row, column + WidthOf(hint.key) + 1}, hint.effect);
        hints_.push_back({{row, column}, width, hint.input});
        column += width + 3;
    }
}

}  // namespace twr
