#include "platform/linux/terminal_layout.h"

#include <algorithm>
#include <map>

#include "platform/linux/terminal_text.h"

namespace twr {
namespace {

constexpr int kUnitsPerColumn = 4;  // a dialog unit is a quarter of a letter's mean width, an eighth of its height
constexpr int kUnitsPerRow = 8;
constexpr int kFrame = 1;
constexpr int kMargin = 2;  // columns between the frame and the controls

// From a control's top edge to its row, and how many rows that makes.
struct Rows {
    std::map<int, int> rowOfTop;
    int count = 0;
};

Rows RowsOf(const DialogTemplate& layout, bool airy) {
    std::map<int, int> bottoms;  // by top edge
    for (const ControlTemplate& control : layout.controls) {
        int& bottom = bottoms[control.rect.top];
        bottom = std::max(bottom, control.rect.top + control.rect.height);
    }
    Rows rows;
    int last = 0;  // the bottom edge above
    for (const auto& [top, bottom] : bottoms) {
        if (airy && top - last >= kUnitsPerRow) ++rows.count;
        rows.rowOfTop[top] = rows.count++;
        last = bottom;
    }
    if (airy && layout.height - last >= kUnitsPerRow) ++rows.count;
    return rows;
}

}  // namespace

int NaturalWidth(const ControlTemplate& control) {
    const int caption = WidthOf(Printable(ParseCaption(control.caption).text));
    switch (control.kind) {
        case ControlKind::kLabel:
            return caption;
        case ControlKind::kFolderField:
            return 16;
        default:
            return caption + 4;
    }
}

CellSize SmallestForm(const DialogTemplate& layout) {
    std::map<int, int> widths;  // by top edge
    for (const ControlTemplate& control : layout.controls) widths[control.rect.top] += NaturalWidth(control) + 1;
    int widest = 0;
    for (const auto& [top, width] : widths) widest = std::max(widest, width - 1);
    return {RowsOf(layout, false).count + 2 * kFrame, widest + 2 * (kFrame + kMargin)};
}

FormLayout LayOutForm(const DialogTemplate& layout, CellSize area) {
    Rows rows = RowsOf(layout, true);
    if (rows.count + 2 * kFrame > area.rows) rows = RowsOf(layout, false);
    const int wanted = layout.width / kUnitsPerColumn + 2 * kFrame;
    const int columns = std::min(area.columns, std::max(wanted, SmallestForm(layout).columns));
    FormLayout cells{{rows.count + 2 * kFrame, columns}, {}};
    const auto columnOf = [&](int units) { return units * columns / std::max(1, layout.width); };
    const int rightmost = columns - kFrame - kMargin;
    for (const ControlTemplate& control : layout.controls) {
        const int left = columnOf(control.rect.left);
        const int right = std::min(rightmost, columnOf(control.rect.left + control.rect.width));
        const int width = std::max(NaturalWidth(control), right - left);
        const int column = std::max(kFrame + kMargin, std::min(left, rightmost - width));
        cells.controls.push_back({{rows.rowOfTop[control.rect.top] + kFrame, column}, width});
    }
    return cells;
}

}  // namespace twr
