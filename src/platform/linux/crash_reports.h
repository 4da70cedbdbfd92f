// SPDX-License-Identifier: MIT
// How the process ends at once, and what is done then.
#pragma once

namespace twr {

// Calls `first` in the handler of a signal that ends the process, before the crash is told.
void AtCrash(void (*first)());

// Calls it now, for another way to end; not in a process that a library has forked off.
void BeforeTheEnd();

// This process is the one that is meant, and none that is forked off later.
void BeOwnProcess();
bool InOwnProcess();

// Tells that `what` ends the process, called from `place` if that is known, and ends it by `status`, or 1 in place of 0.
[[noreturn]] void EndByFault(const char* what, const void* place, int status = 1);

// Without whatever the program or the C library does at an end.
[[noreturn]] void EndAtOnce(int status);

// Whether crashes are told and the program has not ended by itself, in this process.
bool NoCallMayEndIt();

// From now on the calls by which other code may end the process where NoCallMayEndIt are told: exit, _exit, quick_exit, and
// pthread_exit in its first thread. What doesn't call the C library's functions isn't noticed.
void TellExits();

}  // namespace twr
