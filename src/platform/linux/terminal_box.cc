#include "platform/linux/terminal_box.h"

#include <algorithm>

#include "platform/linux/terminal_text.h"

namespace twr {
namespace {

constexpr int kMargin = 3;      // between the frame and the text, columns
constexpr int kButtonGap = 3;   // columns
constexpr int kRowsAround = 6;  // two of the frame, three empty ones and the buttons
constexpr int kWidestText = 60;
constexpr int kNarrowestText = 24;

}  // namespace

BoxLayer::BoxLayer(std::u16string_view text, std::u16string_view caption, BoxButtons buttons, BoxIcon icon)
    : text_(text), caption_(caption), icon_(icon) {
    if (buttons == BoxButtons::kYesNo) {
        buttons_ = {{L"[ Yes ]", U'y', BoxAnswer::kYes}, {L"[ No ]", U'n', BoxAnswer::kNo}};
    } else {
        buttons_ = {{L"[ OK ]", U'o', BoxAnswer::kOk}};
    }
}

int BoxLayer::ButtonsWidth() const {
    int width = kButtonGap * static_cast<int>(buttons_.size() - 1);
    for (const Button& button : buttons_) width += WidthOf(button.caption);
    return width;
}

CellSize BoxLayer::SizeIn(int columns, const std::vector<std::wstring>& lines) const {
    int inner = std::max(ButtonsWidth(), WidthOf(Printable(caption_)));
    for (const std::wstring& line : lines) inner = std::max(inner, WidthOf(line));
    return {static_cast<int>(lines.size()) + kRowsAround, std::min(columns, inner + 2 * kMargin + 2)};
}

CellSize BoxLayer::Needed() const {
    const auto lines = Wrapped(text_, kNarrowestText);
    return {static_cast<int>(lines.size()) + kRowsAround, kNarrowestText + 2 * kMargin + 2};
}

void BoxLayer::Draw(CellSize area, bool topmost) {
    const int room = area.columns - 2 * kMargin - 2;
    auto lines = Wrapped(text_, std::min(kWidestText, room));
    const CellSize size = SizeIn(area.columns, lines);
    Pane pane(area, size, HeadThatFits(Printable(caption_), room), icon_ == BoxIcon::kStop ? Style::kAlarm : Style::kPlain);
    for (int row = 2; const std::wstring& line : lines) pane.Text({row++, kMargin + 1}, line);
    targets_.Clear();
    int column = (size.columns - ButtonsWidth()) / 2;
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        const std::wstring_view caption = buttons_[i].caption;
        const Style style = topmost && i == focus_ ? Style::kFocus : Style::kPlain;
        targets_.Add(static_cast<int>(i), pane.Text({size.rows - 3, column}, caption, style), WidthOf(caption));
        column += WidthOf(caption) + kButtonGap;
    }
}

void BoxLayer::OnInput(const Input& input) {
    switch (input.key) {
        case Key::kTab:
        case Key::kRight:
        case Key::kDown:
            focus_ = (focus_ + 1) % buttons_.size();
            return;
        case Key::kBackTab:
        case Key::kLeft:
        case Key::kUp:
            focus_ = (focus_ + buttons_.size() - 1) % buttons_.size();
            return;
        case Key::kEnter:
            return Give(buttons_[focus_].answer);
        case Key::kEscape:
            return Give(buttons_.back().answer);  // No, or the only one
        case Key::kPress:
            if (const int hit = targets_.At(input.at); hit >= 0) Give(buttons_[static_cast<std::size_t>(hit)].answer);
            return;
        case Key::kCharacter:
            if (input.character == U' ') return Give(buttons_[focus_].answer);
            for (const Button& button : buttons_) {
                if (input.character == button.key || input.character == button.key - 32) Give(button.answer);
            }
            return;
        default:
            return;
    }
}

std::vector<Hint> BoxLayer::Hints() const {
    if (buttons_.size() == 1) return {{L"Enter", L"OK", {Key::kEnter}}};
    return {{L"y", L"Yes", {Key::kCharacter, U'y'}}, {L"n", L"No", {Key::kCharacter, U'n'}}, {L"Esc", L"Back", {Key::kEscape}}};
}

void BoxLayer::Give(BoxAnswer answer) {
    answer_ = answer;
    Close();
}

}  // namespace twr
