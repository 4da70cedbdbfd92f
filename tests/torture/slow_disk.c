// SPDX-License-Identifier: MIT
// Preloaded into a program: the disk takes TORTURE_FLUSH milliseconds to write down what it was given.
#include <stdlib.h>
#include <sys/syscall.h>
#include <unistd.h>

int fdatasync(int file) {
    const char* milliseconds = getenv("TORTURE_FLUSH");
    if (milliseconds) usleep((useconds_t)atoi(milliseconds) * 1000);
    return (int)syscall(SYS_fdatasync, file);
}
