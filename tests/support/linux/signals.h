// SPDX-License-Identifier: MIT
// Signals as another process sends them.
#pragma once
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace twr::testing {

// It has arrived when this returns.
inline void SendFromOutside(int number) {
    const pid_t self = getpid(), other = fork();
    if (other == 0) _exit(kill(self, number));
    waitpid(other, nullptr, 0);
}

}  // namespace twr::testing
