// The screen of a terminal as curses draws it, and the keys as it tells them apart.
#pragma once
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/terminal/device.h"

// Of the library behind it.
struct _win_st;
struct screen;

namespace twr {

// Keys that are no characters lie above all of those.
enum Key : char32_t {
    kTab = U'\t',
    kRedraw = 12,  // Ctrl-L
    kEnter = U'\r',
    kEscape = 27,
    kOther = 0x110000,
    kBackTab,
    kUp,
    kDown,
    kLeft,
    kRight,
    kPageUp,
    kPageDown,
    kF1,  // and kF1 + 1, ...
};

// A framed box in the middle of the screen, and what stands in it.
struct Panel {
    struct Part {
        int row, column;  // within the panel, whose frame is row and column 0
        std::wstring text;
        bool focused = false;
    };

    CellSize size;
    std::wstring caption;
    std::vector<Part> parts;
    std::vector<std::wstring> hints;  // keys and what they do, the most important first, for the last row of the screen
};

// False when the terminal can't place its cursor, or nothing is known about it.
bool TerminalCanShowScreens();

class TerminalScreen {
public:
    TerminalScreen();
    ~TerminalScreen();

    // False when the terminal could not be taken over.
    explicit operator bool() const { return screen_ != nullptr; }

    TerminalDevice& Device() { return device_; }

    // The next key; nothing when that was all.
    std::optional<char32_t> Read();

    void TakeSize();  // that the terminal has now
    void Redraw();    // the next picture is drawn anew, whatever stands there

    // What panels have for themselves.
    CellSize Area() const;

    // The last panel covers the others, and has the focus and the hints.
    void Show(const std::vector<Panel>& panels);

private:
    void Draw(const Panel& panel, bool topmost);
    std::string TakePicture();

    TerminalDevice device_;
    std::FILE* const picture_;  // in memory: what the library writes on its way to the device
    screen* screen_ = nullptr;
    _win_st* keys_ = nullptr;
};

}  // namespace twr
