// SPDX-License-Identifier: MIT
#include <algorithm>

#include "platform/linux/terminal/layers.h"
#include "platform/linux/terminal/text.h"

namespace twr {
namespace {

constexpr int kColumnsAround = 8;  // two of the frame, and three on either side of the text
constexpr int kRowsAround = 6;     // two of the frame, three empty ones and the buttons
constexpr int kButtonGap = 3;      // columns
constexpr int kNarrowest = 24, kWidest = 60;

constexpr std::wstring_view kButtons[] = {L"", L"[ OK ]", L"[ Yes ]", L"[ No ]"};  // by answer

std::wstring_view ButtonOf(BoxAnswer answer) { return kButtons[static_cast<std::size_t>(answer)]; }

}  // namespace

BoxLayer::BoxLayer(std::u16string_view text, std::u16string_view caption, BoxButtons buttons)
    : text_(text),
      caption_(caption),
      answers_(buttons == BoxButtons::kOk ? std::vector{BoxAnswer::kOk} : std::vector{BoxAnswer::kYes, BoxAnswer::kNo}) {}

Panel BoxLayer::Shown(CellSize area) {
    const int room = std::clamp(area.columns - kColumnsAround, kNarrowest, kWidest);
    const auto lines = Wrapped(text_, room);
    int inner = std::clamp(WidthOf(Printable(caption_)), kNarrowest, room);
    int buttonsWidth = -kButtonGap;
    for (const BoxAnswer answer : answers_) buttonsWidth += WidthOf(ButtonOf(answer)) + kButtonGap;
    for (const std::wstring& line : lines) inner = std::max(inner, WidthOf(line));

    Panel panel{{static_cast<int>(lines.size()) + kRowsAround, inner + kColumnsAround},
                TailThatFits(Printable(caption_), inner),
                {},
                {L"Enter OK"}};
    if (answers_.size() > 1) panel.hints = {L"y Yes", L"n No", L"Esc Back"};
    int row = 2;
    for (const std::wstring& line : lines) panel.parts.push_back({row++, kColumnsAround / 2, line});
    int column = (panel.size.columns - buttonsWidth) / 2;
    for (const BoxAnswer answer : answers_) {
        panel.parts.push_back({row + 1, column, std::wstring(ButtonOf(answer)), answer == answers_[focus_]});
        column += WidthOf(ButtonOf(answer)) + kButtonGap;
    }
    return panel;
}

void BoxLayer::OnKey(char32_t key) {
    MoveFocus(key, answers_.size());
    if (key == Key::kEnter || key == U' ') answer_ = answers_[focus_];
    if (key == Key::kEscape) answer_ = answers_.back();  // No, or the only one
    if (answers_.size() > 1 && (key == U'y' || key == U'Y')) answer_ = BoxAnswer::kYes;
    if (answers_.size() > 1 && (key == U'n' || key == U'N')) answer_ = BoxAnswer::kNo;
    if (answer_ != BoxAnswer::kNone) Close();
}

}  // namespace twr
