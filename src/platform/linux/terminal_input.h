// What a user does at a terminal.
#pragma once

namespace twr {

// A place on the screen, counted from 0 at the top left.
struct Cell {
    int row, column;
};

struct CellSize {
    int rows, columns;
};

enum class Key {
    kCharacter,
    kTab,
    kBackTab,
    kUp,
    kDown,
    kLeft,
    kRight,
    kPageUp,
    kPageDown,
    kHome,
    kEnd,
    kEnter,
    kEscape,
    kBackspace,
    kMenu,
    kPress,  // the left mouse button goes down
    kRedraw,
    kOther
};

struct Input {
    Key key;
    char32_t character = 0;  // of kCharacter
    Cell at{};               // of kPress
};

}  // namespace twr
