// The text screen that a command-line program writes to, and its user's wish to stop.
#pragma once
#include <optional>
#include <string_view>

namespace twr {

struct ConsoleSize {
    int columns, rows;
};

class Console {
public:
    virtual ~Console() = default;

    // Nothing when standard output takes no pictures: a file, a pipe, or a terminal that knows no escape sequences.
    virtual std::optional<ConsoleSize> Size() const = 0;

    // Writes UTF-8 to standard output and flushes. False when nobody takes it any more.
    virtual bool Write(std::string_view utf8) = 0;

    // Writes UTF-8 to standard error.
    virtual void WriteError(std::string_view utf8) = 0;

    // Waits; false as soon as the user has asked the program to stop (Ctrl-C, or its terminal is gone).
    virtual bool Wait(int milliseconds) = 0;
};

}  // namespace twr
