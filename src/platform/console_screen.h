// SPDX-License-Identifier: MIT
// A terminal as a whole: pictures on it, and the keys typed at it.
#pragma once
#include <optional>
#include <string>
#include <vector>

namespace twr {

struct ConsoleSize {
    int columns, rows;
};

// Keys that are not characters are above all of those, but for the first ones.
struct Key {
    enum Code : char32_t {
        kBackspace = 8,
        kTabulator = U'\t',
        kRedraw = 12,  // Ctrl-L; from a ConsoleScreen also: its picture was lost or its size has changed
        kEnter = U'\r',
        kEscape = 27,
        kOther = 0x110000,
        kStop,  // the user has asked the program to stop (Ctrl-C, or the terminal is gone)
        kBackTab,
        kUp,
        kDown,
        kLeft,
        kRight,
        kPageUp,
        kPageDown,
        kHome,
        kEnd,
        kF1,  // and kF1 + 1, ...
    };
};

// How a text stands out. Colours are absent from some terminals and unseen at night, so no text may rely on them alone.
enum class Look { kPlain, kBold, kFaint, kReversed, kGreen, kYellow, kRed };

struct ScreenText {
    int row, column;   // from 0
    std::string text;  // UTF-8, no control characters; cut off at the screen's edge
    Look look = Look::kPlain;
};

// Takes the terminal for the life of the object, then gives it back as it was.
class ConsoleScreen {
public:
    virtual ~ConsoleScreen() = default;

    // That a picture can use, at least 1 by 1.
    virtual ConsoleSize Size() = 0;

    // Shows these texts, later ones over earlier ones, and nothing else. Never waits for the terminal: while that takes no output,
    // only the last picture is kept for it.
    virtual void Draw(const std::vector<ScreenText>& texts) = 0;

    // Waits for a character or a Key; nullopt if none came. 0 only checks.
    virtual std::optional<char32_t> Wait(int milliseconds) = 0;
};

}  // namespace twr
