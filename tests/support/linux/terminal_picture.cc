#include "support/linux/terminal_picture.h"

#include <vterm.h>

#include "base/wide_text.h"

namespace twr::testing {
namespace {

constexpr int kUtf8 = 1, kWithAlternate = 1, kHard = 1;

int OnProperty(VTermProp property, VTermValue* value, void* ownScreen) {
    if (property == VTERM_PROP_ALTSCREEN) *static_cast<bool*>(ownScreen) = value->boolean != 0;
    return 1;
}

}  // namespace

TerminalPicture::TerminalPicture(int rows, int columns)
    : rows_(rows), columns_(columns), terminal_(vterm_new(rows, columns)), screen_(vterm_obtain_screen(terminal_)) {
    static const VTermScreenCallbacks callbacks = [] {
        VTermScreenCallbacks only{};
        only.settermprop = OnProperty;
        return only;
    }();
    vterm_set_utf8(terminal_, kUtf8);
    vterm_screen_enable_altscreen(screen_, kWithAlternate);
    vterm_screen_set_callbacks(screen_, &callbacks, &ownScreen_);
    vterm_screen_reset(screen_, kHard);
}

TerminalPicture::~TerminalPicture() { vterm_free(terminal_); }

void TerminalPicture::Resize(int rows, int columns) {
    rows_ = rows;
    columns_ = columns;
    vterm_set_size(terminal_, rows, columns);
}

void TerminalPicture::Write(std::string_view bytes) { vterm_input_write(terminal_, bytes.data(), bytes.size()); }

// A cell that nothing was written to is a blank; the second of a wide character is empty.
TerminalPicture::Cell TerminalPicture::CellAt(int row, int column) const {
    VTermScreenCell cell{};
    vterm_screen_get_cell(screen_, {row, column}, &cell);
    const std::uint32_t first = cell.chars[0];
    if (first == UINT32_MAX) return {"", false};
    return {first == 0 ? " " : ToUtf8(std::u16string(1, static_cast<char16_t>(first))), cell.attrs.reverse != 0};
}

std::string TerminalPicture::Row(int row, bool onlyReversed) const {
    std::string text;
    for (int column = 0; column < columns_; ++column) {
        const Cell cell = CellAt(row, column);
        if (cell.reversed || !onlyReversed) text += cell.character;
    }
    return text;
}

std::string TerminalPicture::All() const {
    std::string text;
    for (int row = 0; row < rows_; ++row) text += Row(row, false) + '\n';
    return text;
}

std::string TerminalPicture::Reversed() const {
    std::string text;
    for (int row = 0; row < rows_; ++row) text += Row(row, true);
    return text;
}

std::optional<PicturePlace> TerminalPicture::Find(std::string_view text) const {
    for (int row = 0; row < rows_; ++row) {
        std::string tail;
        for (int column = columns_ - 1; column >= 0; --column) {
            tail.insert(0, CellAt(row, column).character);
            if (tail.starts_with(text)) return PicturePlace{row, column};
        }
    }
    return std::nullopt;
}

}  // namespace twr::testing
