// What is done first when a signal ends the process.
#pragma once

namespace twr {

// Calls `first` in the signal's handler, before the crash is told.
void AtCrash(void (*first)());

// Calls it now, for another handler that ends the process.
void BeforeTheEnd();

}  // namespace twr
