// SPDX-License-Identifier: MIT
// The desktop of a user at a terminal. Before the dialog is open there is no screen: a box then is a plain line.

#include <array>
#include <cstdio>
#include <optional>

#include "platform/linux/services.h"
#include "platform/linux/signal_queue.h"
#include "platform/linux/standard_error.h"
#include "platform/linux/terminal/host.h"

namespace twr {
namespace {

// A message stays readable after the program has ended. No question is asked there.
BoxAnswer TellOnALine(std::u16string_view text, std::u16string_view caption) {
    ShowOnStandardError(text, caption);
    std::fputs("Press Enter to continue. ", stderr);
    std::array<char, 256> line{};
    return std::fgets(line.data(), line.size(), stdin) ? BoxAnswer::kOk : BoxAnswer::kNone;
}

class TerminalDesktop final : public Desktop {
public:
    void ExpectDialog() override { held_.emplace(); }

    void Remark(std::u16string_view text, std::u16string_view caption) override { ShowOnStandardError(text, caption); }

    BoxAnswer ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon) override {
        if (open_) return open_->ShowBox(text, caption, buttons);
        held_.reset();  // at a plain line Ctrl-C must work too
        return TellOnALine(text, caption);
    }

    void RunDialog(const DialogTemplate& layout, Dialog& dialog) override {
        IgnoreBrokenPipes();
        const ToldLater later;
        TerminalHost host(layout, dialog);
        if (quit_) host.Quit();
        open_ = &host;
        dialog.OnInit(host);
        host.Run();
        dialog.OnDestroy();
        open_ = nullptr;
        quit_ = false;
    }

    void ShowAbout(const DialogTemplate& layout, std::u16string_view text) override {
        ShowBox(text, layout.caption, BoxButtons::kOk, BoxIcon::kNone);
    }

    void PostQuit() override {
        quit_ = true;
        if (open_) open_->Quit();
    }

private:
    std::optional<SignalQueue> held_;  // until the program ends, not only the dialog
    TerminalHost* open_ = nullptr;
    bool quit_ = false;  // what runs, or what is to run next
};

}  // namespace

std::unique_ptr<Desktop> MakeTerminalDesktop() { return std::make_unique<TerminalDesktop>(); }

}  // namespace twr
