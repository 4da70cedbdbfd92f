// From the dialog units of a template to the cells of a terminal.
#pragma once
#include <vector>

#include "platform/dialog.h"
#include "platform/linux/terminal_input.h"

namespace twr {

struct ControlCells {
    Cell at;  // within the frame that surrounds all
    int width;
};

struct FormLayout {
    CellSize size;                       // with the frame
    std::vector<ControlCells> controls;  // as in the template
};

// The size below which captions would be cut or overlap.
CellSize SmallestForm(const DialogTemplate& layout);

// Controls keep their order and sides; each height of the template becomes one row. Empty rows part them where there is room.
FormLayout LayOutForm(const DialogTemplate& layout, CellSize area);

// The cells that a control takes at least, with its brackets.
int NaturalWidth(const ControlTemplate& control);

}  // namespace twr
