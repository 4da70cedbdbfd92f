// What happens when the process crashes by a signal.
#pragma once

namespace twr {

// Calls `first` in the signal's handler, before the crash is told.
void AtCrash(void (*first)());

}  // namespace twr
