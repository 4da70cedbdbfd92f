// What a program needed of memory only to start.
#pragma once

namespace twr {

// Gives back the pages of programs and libraries that are mapped and unchanged; those still needed are mapped again as they are
// used, from the system's cache.
void GiveBackStartMemory();

}  // namespace twr
