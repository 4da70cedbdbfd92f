// SPDX-License-Identifier: MIT
// The screen of a terminal as curses draws it, and the keys that it distinguishes.
#pragma once
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/console_screen.h"
#include "platform/linux/terminal/device.h"

// Of the library behind it.
struct _win_st;  // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
struct screen;

namespace twr {

// A framed box in the middle of the screen, and its contents.
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

// False if the terminal can't place its cursor, or its type is unknown.
bool TerminalCanShowScreens();

class TerminalScreen {
public:
    TerminalScreen();
    ~TerminalScreen();

    // False if the terminal could not be taken over.
    explicit operator bool() const { return screen_ != nullptr; }

    TerminalDevice& Device() { return device_; }

    // The next key; nullopt if there is none.
    std::optional<char32_t> Read();
    char32_t KeyOfSequence(char32_t first);

    void TakeSize();  // that the terminal has now
    void Redraw();    // the next picture is drawn in full, whatever the screen shows

    CellSize Size() const;

    // The area for panels.
    CellSize Area() const;

    // The last panel covers the others, and has the focus and the hints.
    void Show(const std::vector<Panel>& panels);

    // Texts at their places, and blanks.
    void Show(const std::vector<ScreenText>& texts);

private:
    void Draw(const Panel& panel, bool topmost);
    void Finish();  // passes the picture on
    std::string TakePicture();

    TerminalDevice device_;
    std::FILE* const picture_;  // in memory: what the library writes on its way to the device
    screen* screen_ = nullptr;
    _win_st* keys_ = nullptr;
};

}  // namespace twr
