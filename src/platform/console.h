// SPDX-License-Identifier: MIT
// The arguments and the output of a command-line program, and the user's request to stop it.
#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/console_screen.h"

namespace twr {

// The arguments of main in UTF-8, without the program's own name. On Windows main gets text in a code page, so the wide command
// line is used there.
std::vector<std::string> Arguments(int argc, char** argv);

enum class Output {
    kWritten,
    kRefused,     // it can't be written: the disk is full, or there is no standard output
    kReaderGone,  // the other end of the pipe is closed: it has what it wanted
    kGivenUp,     // it was held up, and the caller gave up
};

class Console {
public:
    virtual ~Console() = default;

    // nullptr unless standard input and output are a terminal that can show pictures.
    virtual std::unique_ptr<ConsoleScreen> TakeScreen() = 0;

    // Writes UTF-8 to standard output and flushes. While that is held up (Ctrl-S at a terminal, a full pipe), calls `goOn` ten
    // times a second, and drops what is not written yet once it returns false.
    virtual Output Write(std::string_view utf8, const std::function<bool()>& goOn) = 0;

    // Writes UTF-8 to standard error. What can't be written within a second is lost.
    virtual void WriteError(std::string_view utf8) = 0;

    // A line that the user types, in UTF-8 and without its end; nullopt at the end of the input, or if the user asks to stop.
    virtual std::optional<std::string> ReadLine() { return std::nullopt; }

    // Waits; false as soon as the user has asked the program to stop (Ctrl-C, or its terminal is gone). 0 only checks.
    virtual bool Wait(int milliseconds) = 0;

    // Takes note of that request, so that Wait is true until the next one.
    virtual void ForgetStop() = 0;
};

}  // namespace twr
