#include "platform/linux/terminal_menu.h"

#include <algorithm>

namespace twr {

CellSize MenuLayer::Needed() const {
    int width = 0;
    for (const MenuItem& item : items_) width = std::max(width, WidthOf(Printable(item.caption.text)));
    return {static_cast<int>(items_.size()) + 2, width + 6};
}

void MenuLayer::Draw(CellSize area, bool topmost) {
    const CellSize size = Needed();
    Pane pane(area, size, L"Menu");
    targets_.Clear();
    for (int row = 1; const MenuItem& item : items_) {
        const auto index = static_cast<std::size_t>(row - 1);
        std::wstring text = L' ' + Printable(item.caption.text);
        text.resize(static_cast<std::size_t>(std::max(0, size.columns - 4)), L' ');
        targets_.Add(row - 1, pane.Text({row, 2}, text, topmost && index == focus_ ? Style::kFocus : Style::kPlain),
                     size.columns - 4);
        ++row;
    }
}

void MenuLayer::OnInput(const Input& input) {
    switch (input.key) {
        case Key::kTab:
        case Key::kDown:
            focus_ = (focus_ + 1) % items_.size();
            return;
        case Key::kBackTab:
        case Key::kUp:
            focus_ = (focus_ + items_.size() - 1) % items_.size();
            return;
        case Key::kEnter:
            return Choose(focus_);
        case Key::kEscape:
        case Key::kMenu:
            return Close();
        case Key::kPress:
            if (const int hit = targets_.At(input.at); hit >= 0) return Choose(static_cast<std::size_t>(hit));
            return Close();
        case Key::kCharacter:
            if (input.character == U' ') return Choose(focus_);
            for (std::size_t i = 0; i < items_.size() && !Closed(); ++i) {
                if (items_[i].caption.HasKey(input.character)) Choose(i);
            }
            return;
        default:
            return;
    }
}

std::vector<Hint> MenuLayer::Hints() const { return {{L"Enter", L"Choose", {Key::kEnter}}, {L"Esc", L"Back", {Key::kEscape}}}; }

void MenuLayer::Choose(std::size_t item) {
    chosen_ = items_[item].command;
    Close();
}

}  // namespace twr
