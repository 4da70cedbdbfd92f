// SPDX-License-Identifier: MIT
// The messages and the output of halyrigctl.
#pragma once
#include <string>
#include <string_view>

#include "platform/console.h"

namespace twr {

// The exit status of every command.
enum Status : int {
    kDone = 0,
    kFailed = 1,         // the reason is on standard error
    kMisunderstood = 2,  // an unknown command, option or channel; also on standard error
};

// What is wrong, and what to do; nothing is wrong while the first is empty.
struct Advice {
    std::string what = {};
    std::string todo = {};

    explicit operator bool() const { return !what.empty(); }
    std::string Line() const { return todo.empty() ? what : what + "; " + todo; }
};

// Writes to standard error what is wrong and what to do: one line of UTF-8, without its end.
void Complain(Console& console, const std::string& message);

// The same for what is no fault, but not a part of the output either.
void Notice(Console& console, const std::string& message);

// Prints UTF-8, waiting as long as needed. Complains if it can't be written.
Status Print(Console& console, std::string_view utf8);

// Complains of output that was refused. Output that the user stopped waiting for is no failure.
Status StatusOf(Console& console, Output output);

// A text of the record or of the user for a terminal, as UTF-8: control characters, and those that change the direction of what
// follows, become a middle dot.
std::string Harmless(std::u16string_view text);

}  // namespace twr
