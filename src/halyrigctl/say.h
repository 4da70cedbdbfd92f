// What halyrigctl says, and how.
#pragma once
#include <string>
#include <string_view>

#include "platform/console.h"

namespace twr {

// The exit status of every command.
enum Status : int {
    kDone = 0,
    kFailed = 1,         // the reason is on standard error
    kMisunderstood = 2,  // asked for what there is not; so is this
};

// Says on standard error what is wrong and what to do: one line of UTF-8, without its end.
void Complain(Console& console, const std::string& message);

// Prints UTF-8 for as long as it takes. Where it can't be written, complains.
Status Print(Console& console, std::string_view utf8);

// Complains of output that was refused. What the user no longer waits for is no failure.
Status StatusOf(Console& console, Output output);

// A text of the record or of the user for a terminal, as UTF-8: control characters, and those that turn the direction of what
// follows, are shown as a dot in the middle.
std::string Harmless(std::u16string_view text);

}  // namespace twr
