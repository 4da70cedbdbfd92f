// The text screen that a command-line program writes to, and its user's wish to stop.
#pragma once
#include <functional>
#include <optional>
#include <string_view>

namespace twr {

struct ConsoleSize {
    int columns, rows;
};

enum class Output {
    kWritten,
    kRefused,  // nobody takes it: the disk is full, the reader has gone, there is no standard output
    kGivenUp,  // it was held up, and the writer did not want to wait any longer
};

class Console {
public:
    virtual ~Console() = default;

    // Nothing when standard output takes no pictures: a file, a pipe, or a terminal that knows no escape sequences. The numbers
    // are those that the terminal gives, however odd.
    virtual std::optional<ConsoleSize> Size() const = 0;

    // Writes UTF-8 to standard output and flushes. While that is held up (Ctrl-S at a terminal, a pipe that nobody reads), asks
    // `goOn` ten times a second, and gives up on what is not taken yet once the answer is no.
    virtual Output Write(std::string_view utf8, const std::function<bool()>& goOn) = 0;

    // Writes UTF-8 to standard error. What is not taken within a second is lost.
    virtual void WriteError(std::string_view utf8) = 0;

    // Waits; false as soon as the user has asked the program to stop (Ctrl-C, or its terminal is gone). 0 only asks.
    virtual bool Wait(int milliseconds) = 0;
};

}  // namespace twr
