// SPDX-License-Identifier: MIT
// Writing to an output that may be held up without limit: by Ctrl-S at a terminal, or by a full pipe.
//
// How much a terminal or a pipe accepts without blocking can't be predicted, since other processes write there too, and
// non-blocking mode applies to every process that shares the file, the user's shell included. So the write blocks in a thread of
// its own, which ends with the process.
#pragma once
#include <functional>

#include "platform/console.h"

namespace twr {

// Runs `write`, which returns what became of it. It must own what it uses, since it is abandoned once `goOn`, called
// ten times a second, returns false.
Output RunWrite(std::function<Output()> write, const std::function<bool()>& goOn);

// The same for a second at most.
void RunShortWrite(std::function<Output()> write);

}  // namespace twr
