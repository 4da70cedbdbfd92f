// SPDX-License-Identifier: MIT
#include <algorithm>
#include <map>
#include <utility>

#include "platform/linux/terminal/layers.h"
#include "platform/linux/terminal/text.h"

namespace twr {
namespace {

constexpr int kUnitsPerRow = 8;  // dialog units
constexpr int kNarrowestField = 16, kWidestForm = 72;
constexpr std::wstring_view kBrowse = L" [...]";

// Each height of the template becomes a row, separated by empty ones if `spaced`. Returns the row of each top edge, and of the
// frame's foot at the template's height.
std::map<int, int> RowsOf(const DialogTemplate& layout, bool spaced) {
    std::map<int, int> rows;
    for (const ControlTemplate& control : layout.controls) rows[control.rect.top] = control.rect.top + control.rect.height;
    rows[layout.height] = 0;
    int count = 0, last = 0;
    for (auto& [top, row] : rows) {
        count += spaced && top - last >= kUnitsPerRow ? 2 : 1;
        last = std::exchange(row, count);
    }
    return rows;
}

// With its brackets, if it has any.
int LeastWidth(const ControlTemplate& control) {
    if (control.kind == ControlKind::kFolderField) return kNarrowestField;
    return WidthOf(PlainCaption(control.caption)) + (control.kind == ControlKind::kLabel ? 0 : 4);
}

}  // namespace

void Layer::MoveFocus(char32_t key, std::size_t count) {
    if (key == Key::kTabulator || key == Key::kDown || key == Key::kRight) focus_ = (focus_ + 1) % count;
    if (key == Key::kBackTab || key == Key::kUp || key == Key::kLeft) focus_ = (focus_ + count - 1) % count;
}

FormLayer::FormLayer(const DialogTemplate& layout, Dialog& dialog, DialogWindow& window, std::function<void(Layer&)> run)
    : layout_(layout), dialog_(dialog), window_(window), run_(std::move(run)) {
    for (const ControlTemplate& control : layout.controls) {
        if (control.kind != ControlKind::kLabel) stops_.push_back(&control);
    }
}

Panel FormLayer::Shown(CellSize area) {
    int widest = 0;
    for (const ControlTemplate& control : layout_.controls) widest = std::max(widest, LeastWidth(control) + 2 * kMargin);
    auto rows = RowsOf(layout_, true);
    if (rows[layout_.height] >= area.rows) rows = RowsOf(layout_, false);
    const int columns = std::clamp(area.columns, widest, std::max(widest, kWidestForm));
    Panel panel{{rows[layout_.height] + 1, columns}, Printable(layout_.caption), {}, {L"Esc Exit"}};
    for (const ControlTemplate& control : layout_.controls) {
        const bool focused = !stops_.empty() && stops_[focus_] == &control;
        const int width = control.kind == ControlKind::kFolderField ? columns - 2 * kMargin : LeastWidth(control);
        const int column = control.rect.left * 2 < layout_.width ? kMargin : columns - kMargin - width;
        panel.parts.push_back({rows[control.rect.top], column, TextOf(control, width), focused});
    }
    for (std::size_t i = 0; i < menu_.size(); ++i) {
        panel.hints.push_back(L'F' + std::to_wstring(i + 1) + L' ' + PlainCaption(menu_[i].second));
    }
    const ControlKind kind = stops_.empty() ? ControlKind::kLabel : stops_[focus_]->kind;
    const bool closes = kind == ControlKind::kCheckBox || kind == ControlKind::kDefaultButton;
    for (const wchar_t* hint : {closes ? L"Enter Close" : L"Enter Press", L"Tab Next", L"Space Tick or press"})
        panel.hints.emplace_back(hint);
    return panel;
}

std::wstring FormLayer::TextOf(const ControlTemplate& control, int width) const {
    std::wstring caption = PlainCaption(control.caption);
    switch (control.kind) {
        case ControlKind::kLabel:
            return caption;
        case ControlKind::kCheckBox:
            return (window_.Checked(control.id) ? L"[x] " : L"[ ] ") + caption;
        case ControlKind::kFolderField: {
            const int room = width - WidthOf(kBrowse);
            return Fitted(TailThatFits(Printable(window_.Text(control.id)), room), room).append(kBrowse);
        }
        default:
            return L"[ " + caption + L" ]";
    }
}

void FormLayer::OnKey(char32_t key) {
    if (key == Key::kEscape) return dialog_.OnCancel();
    if (key >= Key::kF1 && key - Key::kF1 < menu_.size()) return dialog_.OnMenu(menu_[key - Key::kF1].first);
    if (stops_.empty()) return;
    MoveFocus(key, stops_.size());
    const ControlTemplate& control = *stops_[focus_];
    if (key == Key::kEnter && control.kind == ControlKind::kCheckBox) return dialog_.OnOk();
    if (key == Key::kEnter || key == U' ') Press(control);
}

void FormLayer::Press(const ControlTemplate& control) {
    if (control.kind == ControlKind::kDefaultButton) return dialog_.OnOk();
    if (control.kind == ControlKind::kPushButton) return dialog_.OnButton(control.id);
    if (control.kind == ControlKind::kCheckBox) return window_.SetChecked(control.id, !window_.Checked(control.id));
    FolderLayer folders(window_.Text(control.id), control.library);
    run_(folders);
    if (const auto& folder = folders.Chosen()) window_.SetText(control.id, *folder);
}

}  // namespace twr
