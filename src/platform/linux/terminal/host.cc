// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/host.h"

#include "platform/linux/terminal/text.h"

namespace twr {

TerminalHost::TerminalHost(const DialogTemplate& layout, Dialog& dialog)
    : WindowState(dialog), dialog_(dialog), form_(layout, dialog, *this, [this](Layer& layer) { Run(layer); }) {
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
    const TerminalSession::Event event = session_.Take();
    if (event == TerminalSession::Event::kClose) return CloseFromOutside();
    if (event == TerminalSession::Event::kSpoilt) dirty_ = true;
    RaiseTimers();
    if (Over()) return;
    if (const auto key = session_.Read()) return OnKey(*key);
    if (dirty_ && !session_.Busy()) Draw();
    if (!Over()) session_.WaitUntil(NextDue(), dirty_);
}

void TerminalHost::OnKey(char32_t key) {
    dirty_ = true;
    if (key != Key::kRedraw && !tooSmall_) layers_.back()->OnKey(key);  // else the effect of a key could not be seen
}

void TerminalHost::CloseFromOutside() {
    closing_ = true;
    dialog_.OnCancel();
    closing_ = false;
}

// Called once the terminal has accepted the picture before, so that at most one is kept for a terminal that accepts none.
void TerminalHost::Draw() {
    TerminalScreen* const screen = session_.Screen();
    if (!screen) return;
    dirty_ = tooSmall_ = false;
    const TerminalLocale locale;
    const CellSize area = screen->Area();
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
    screen->Show(panels);
}

}  // namespace twr
