// The desktop of a user at a terminal. Before the dialog is open there is no screen: a box then is a question on a plain line.

#include <array>
#include <cstdio>
#include <optional>

#include "platform/linux/services.h"
#include "platform/linux/signal_queue.h"
#include "platform/linux/standard_error.h"
#include "platform/linux/terminal_host.h"

namespace twr {
namespace {

// A message stays readable where it stands when the program has ended.
BoxAnswer AskOnALine(std::u16string_view text, std::u16string_view caption, BoxButtons buttons) {
    ShowOnStandardError(text, caption);
    const bool yesNo = buttons == BoxButtons::kYesNo;
    std::array<char, 256> line{};
    for (;;) {
        std::fputs(yesNo ? "[y/n] " : "Press Enter to go on. ", stderr);
        if (!std::fgets(line.data(), line.size(), stdin)) return BoxAnswer::kNone;
        if (!yesNo) return BoxAnswer::kOk;
        if (line[0] == 'y' || line[0] == 'Y') return BoxAnswer::kYes;
        if (line[0] == 'n' || line[0] == 'N') return BoxAnswer::kNo;
    }
}

class TerminalDesktop final : public Desktop {
public:
    void ExpectDialog() override { held_.emplace(kCloseSignals); }

    void Remark(std::u16string_view text, std::u16string_view caption) override { ShowOnStandardError(text, caption); }

    BoxAnswer ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon icon) override {
        if (open_) return open_->ShowBox(text, caption, buttons, icon);
        held_.reset();  // who is asked on a line may also press Ctrl-C
        return AskOnALine(text, caption, buttons);
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
    std::optional<SignalQueue> held_;  // until the program has left, not only the dialog
    TerminalHost* open_ = nullptr;
    bool quit_ = false;  // what runs, or what is to run next
};

}  // namespace

std::unique_ptr<Desktop> MakeTerminalDesktop() { return std::make_unique<TerminalDesktop>(); }

}  // namespace twr
