// Writing where the reader may hold it up for as long as he likes: by Ctrl-S at a terminal, or by leaving a pipe full.
//
// What a terminal or a pipe takes without waiting is not to be foretold, since others write there too, and a file that is told
// never to wait is told so for all who share it, the user's shell included. So the write waits in a thread of its own, which ends
// with the process.
#pragma once
#include <functional>

#include "platform/console.h"

namespace twr {

// Runs `write`, which says whether all was taken. It must own what it uses, since it is left behind once `goOn`, asked ten times a
// second, says no.
Output RunWrite(std::function<bool()> write, const std::function<bool()>& goOn);

// The same for a second at most.
void RunShortWrite(std::function<bool()> write);

}  // namespace twr
