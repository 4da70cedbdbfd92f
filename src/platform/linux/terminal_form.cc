#include "platform/linux/terminal_form.h"

#include <algorithm>

#include "platform/linux/terminal_folders.h"
#include "platform/linux/terminal_layout.h"
#include "platform/linux/terminal_text.h"

namespace twr {
namespace {

constexpr std::wstring_view kBrowse = L"[...]";

bool TakesFocus(const ControlTemplate& control) { return control.kind != ControlKind::kLabel; }

std::wstring Padded(std::wstring text, int width) {
    text.append(static_cast<std::size_t>(std::max(0, width - WidthOf(text))), L' ');
    return text;
}

// The caption in the middle of the brackets.
std::wstring ButtonText(std::wstring caption, int width) {
    const int left = (width - 2 - WidthOf(caption)) / 2;
    return L'[' + Padded(std::wstring(static_cast<std::size_t>(std::max(0, left)), L' ') + caption, width - 2) + L']';
}

}  // namespace

FormLayer::FormLayer(const DialogTemplate& layout, Dialog& dialog, DialogWindow& window, LayerRunner& runner)
    : layout_(layout), dialog_(dialog), window_(window), runner_(runner) {
    for (const ControlTemplate& control : layout.controls) captions_.push_back(ParseCaption(control.caption));
    while (focus_ + 1 < layout.controls.size() && !TakesFocus(Control(focus_))) ++focus_;
}

void FormLayer::AddMenuItem(int command, std::u16string_view text) { menu_.push_back({command, ParseCaption(text)}); }

CellSize FormLayer::Needed() const { return SmallestForm(layout_); }

void FormLayer::Draw(CellSize area, bool topmost) {
    const FormLayout cells = LayOutForm(layout_, area);
    Pane pane(area, cells.size, Printable(layout_.caption));
    targets_.Clear();
    for (std::size_t i = 0; i < layout_.controls.size(); ++i) {
        const auto& [at, width] = cells.controls[i];
        DrawControl(pane, i, at, width, topmost && i == focus_);
        const Cell origin = pane.Origin();
        if (TakesFocus(Control(i))) targets_.Add(static_cast<int>(i), {origin.row + at.row, origin.column + at.column}, width);
    }
}

void FormLayer::DrawControl(Pane& pane, std::size_t index, Cell at, int width, bool focused) {
    const ControlTemplate& control = Control(index);
    const std::wstring caption = Printable(captions_[index].text);
    const Style style = focused ? Style::kFocus : Style::kPlain;
    int captionColumn = at.column;
    switch (control.kind) {
        case ControlKind::kLabel:
            pane.Text(at, caption);
            break;
        case ControlKind::kCheckBox:
            pane.Text(at, (window_.Checked(control.id) ? L"[x] " : L"[ ] ") + caption, style);
            captionColumn += 4;
            break;
        case ControlKind::kFolderField: {
            const int field = width - WidthOf(kBrowse) - 1;
            const std::wstring text = TailThatFits(Printable(window_.Text(control.id)), field);
            pane.Text(at, Padded(text, field), focused ? Style::kFocus : Style::kField);
            pane.Text({at.row, at.column + field + 1}, kBrowse, style);
            break;
        }
        default:
            pane.Text(at, ButtonText(caption, width), style);
            captionColumn += 1 + std::max(0, (width - 2 - WidthOf(caption)) / 2);
            break;
    }
    if (captions_[index].keyAt != std::u16string::npos) {
        pane.Underline({at.row, captionColumn + static_cast<int>(captions_[index].keyAt)});
    }
}

void FormLayer::OnInput(const Input& input) {
    switch (input.key) {
        case Key::kTab:
        case Key::kDown:
        case Key::kRight:
            return MoveFocus(true);
        case Key::kBackTab:
        case Key::kUp:
        case Key::kLeft:
            return MoveFocus(false);
        case Key::kEnter:
            return OnEnter();
        case Key::kEscape:
            return dialog_.OnCancel();
        case Key::kMenu:
            return ShowMenu();
        case Key::kPress:
            if (const int hit = targets_.At(input.at); hit >= 0) {
                focus_ = static_cast<std::size_t>(hit);
                Press(focus_);
            }
            return;
        case Key::kCharacter:
            return OnCharacter(input.character);
        default:
            return;
    }
}

void FormLayer::MoveFocus(bool forward) {
    const std::size_t count = layout_.controls.size();
    for (std::size_t step = 1; step < count; ++step) {
        const std::size_t next = (focus_ + (forward ? step : count - step)) % count;
        if (!TakesFocus(Control(next))) continue;
        focus_ = next;
        return;
    }
}

void FormLayer::OnCharacter(char32_t character) {
    if (character == U' ') return focus_ < layout_.controls.size() ? Press(focus_) : void();
    const auto found = std::ranges::find_if(captions_, [&](const Caption& caption) { return caption.HasKey(character); });
    if (found == captions_.end()) return;
    focus_ = static_cast<std::size_t>(found - captions_.begin());
    // The key of a label is that of the control behind it.
    if (!TakesFocus(Control(focus_))) return MoveFocus(true);
    Press(focus_);
}

void FormLayer::OnEnter() {
    const bool pressesItself = focus_ < layout_.controls.size() && (Control(focus_).kind == ControlKind::kPushButton ||
                                                                    Control(focus_).kind == ControlKind::kFolderField);
    if (pressesItself) return Press(focus_);
    dialog_.OnOk();
}

void FormLayer::Press(std::size_t index) {
    const ControlTemplate& control = Control(index);
    switch (control.kind) {
        case ControlKind::kDefaultButton:
            return dialog_.OnOk();
        case ControlKind::kPushButton:
            return dialog_.OnButton(control.id);
        case ControlKind::kCheckBox:
            return window_.SetChecked(control.id, !window_.Checked(control.id));
        case ControlKind::kFolderField:
            return ChooseFolder(control.id);
        default:
            return;
    }
}

void FormLayer::ShowMenu() {
    if (menu_.empty()) return;
    MenuLayer menu(menu_);
    runner_.Run(menu);
    if (const auto command = menu.Chosen()) dialog_.OnMenu(*command);
}

void FormLayer::ChooseFolder(int control) {
    FolderLayer folders(window_.Text(control));
    runner_.Run(folders);
    if (const auto& folder = folders.Chosen()) window_.SetText(control, *folder);
}

std::vector<Hint> FormLayer::Hints() const {
    std::vector<Hint> hints = {{L"Tab", L"Next", {Key::kTab}}};
    const ControlKind focused = focus_ < layout_.controls.size() ? Control(focus_).kind : ControlKind::kLabel;
    if (focused == ControlKind::kCheckBox) {
        hints.push_back({L"Space", L"Tick", {Key::kCharacter, U' '}});
    } else {
        hints.push_back({L"Enter", focused == ControlKind::kFolderField ? L"Choose" : L"Press", {Key::kEnter}});
    }
    if (!menu_.empty()) hints.push_back({L"F1", L"Menu", {Key::kMenu}});
    hints.push_back({L"Esc", L"Exit", {Key::kEscape}});
    return hints;
}

}  // namespace twr
