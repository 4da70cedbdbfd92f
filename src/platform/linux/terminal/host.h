// SPDX-License-Identifier: MIT
// An open dialog in the terminal: its loop, and the layers on top of it.
#pragma once
#include <string_view>
#include <vector>

#include "platform/linux/terminal/layers.h"
#include "platform/linux/terminal/session.h"
#include "platform/linux/window_state.h"

namespace twr {

class TerminalHost final : public WindowState {
public:
    TerminalHost(const DialogTemplate& layout, Dialog& dialog);

    // Until the dialog has ended or Quit was called.
    void Run();
    void Quit() { quit_ = true; }

    BoxAnswer ShowBox(std::u16string_view text, std::u16string_view caption, BoxButtons buttons);

    void AddMenuItem(int command, std::u16string_view text) override { form_.AddMenuItem(command, text); }

private:
    void OnChanged() override { dirty_ = true; }
    bool Over() const { return Ended() || quit_; }

    // Runs until the layer has closed or the dialog has ended.
    void Run(Layer& layer);

    // One round of the loop. An event that it raises can run further rounds while it shows a box.
    void Step();
    void OnKey(char32_t key);
    void Wait();

    // The window is closed from outside, as confirmed: a question whether to leave is answered with yes.
    void CloseFromOutside();

    void Draw();

    Dialog& dialog_;
    TerminalSession session_;
    FormLayer form_;
    std::vector<Layer*> layers_;
    bool dirty_ = true;      // the picture is out of date
    bool tooSmall_ = false;  // nothing but a notice is shown
    bool closing_ = false;
    bool quit_ = false;
};

}  // namespace twr
