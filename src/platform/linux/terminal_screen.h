// The terminal of standard input and output, taken over for the life of the object.
#pragma once
#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/terminal_input.h"
#include "platform/linux/terminal_locale.h"

// Of the library behind it.
struct _win_st;
struct screen;

namespace twr {

enum class Style { kPlain, kStrong, kFocus, kField, kAlarm };

// False when the terminal can't place its cursor, or nothing is known about it.
bool TerminalCanShowScreens();

// False while the program runs in its shell's background, where it must leave the terminal alone.
bool TerminalIsOurs();

class TerminalScreen {
public:
    TerminalScreen();
    ~TerminalScreen();
    TerminalScreen(const TerminalScreen&) = delete;
    TerminalScreen& operator=(const TerminalScreen&) = delete;

    // False when the terminal could not be taken over.
    explicit operator bool() const { return screen_ != nullptr; }

    // The next that the user has done; nothing when that was all.
    std::optional<Input> Read();

    // Takes the size that the terminal has now.
    void Resize();

    // Draws everything anew, whatever stands there.
    void Redraw();

private:
    void Restrain();  // what a terminal would do with keys by itself
    void TakeMouseEvents();

    screen* screen_ = nullptr;
    _win_st* keys_ = nullptr;
    std::vector<Input> mouse_;  // not read yet, the newest first
};

// One picture of the screen, empty at first, shown when the object goes.
class Frame {
public:
    Frame();
    ~Frame();
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    CellSize Size() const;
    void Text(Cell at, std::wstring_view text, Style style = Style::kPlain);

private:
    const TerminalLocale locale_;
};

// A framed box in a picture, above all before it. It covers what lies under it.
class Pane {
public:
    // In the middle of `area`, which begins at the top left of the screen.
    Pane(CellSize area, CellSize size, std::wstring_view caption, Style frame = Style::kPlain);
    Pane(Cell at, CellSize size, std::wstring_view caption, Style frame = Style::kPlain);
    ~Pane();
    Pane(const Pane&) = delete;
    Pane& operator=(const Pane&) = delete;

    // Places are those within the pane. Gives the place on the screen.
    Cell Text(Cell at, std::wstring_view text, Style style = Style::kPlain);
    Cell Origin() const { return at_; }

    void Underline(Cell at);  // one cell

private:
    const Cell at_;
    _win_st* window_;
};

}  // namespace twr
