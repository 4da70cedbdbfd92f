// SPDX-License-Identifier: MIT
// Watches the bridge's ticks from outside, by the stamps of a channel that it publishes on each of them:
//   tick_jitter RECORD OFFSET SECONDS    OFFSET: of the stamp in the record, a double of days
// Looks every millisecond and prints, in milliseconds, by how much the time from tick to tick differed from 100: the median, the 99th
// percentile and the greatest; then the number of ticks seen. A second line has the same of a process that does nothing but wait for each
// 100 ms meanwhile: what the machine gives, which no program can better.
#include <fcntl.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

static const double kPeriod = 0.1;
static const double kSameTick = 0.01;  // seconds: a tick can publish the channel twice

static double* differences;  // milliseconds
static size_t seen, room;

static void Note(double seconds) {
    if (seen < room) differences[seen++] = fabs(seconds - kPeriod) * 1000;
}

static int Compare(const void* left, const void* right) {
    const double a = *(const double*)left, b = *(const double*)right;
    return (a > b) - (a < b);
}

static int Print(void) {
    if (seen == 0) return 1;
    qsort(differences, seen, sizeof *differences, Compare);
    printf("%.2f %.2f %.2f %zu\n", differences[seen / 2], differences[seen * 99 / 100], differences[seen - 1], seen);
    return 0;
}

static double Now(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (double)now.tv_sec + (double)now.tv_nsec / 1e9;
}

static int WaitOnly(double end) {
    double last = Now(), now;
    for (double due = last + kPeriod; due < end; due += kPeriod, last = now) {
        const struct timespec until = {(time_t)due, (long)(fmod(due, 1.0) * 1e9)};
        clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, NULL);
        Note((now = Now()) - last);
    }
    return Print();
}

static int Watch(const volatile double* stamp, double end) {
    for (double last = *stamp; Now() < end; usleep(1000)) {
        const double now = *stamp, passed = (now - last) * 86400;
        if (fabs(passed) < kSameTick) continue;
        Note(passed);
        last = now;
    }
    return Print();
}

int main(int count, char** words) {
    if (count != 4) return 2;
    const size_t offset = (size_t)atol(words[2]);
    const double seconds = atof(words[3]), end = Now() + seconds;
    const int file = open(words[1], O_RDONLY);
    const char* record = mmap(NULL, offset + sizeof(double), PROT_READ, MAP_SHARED, file, 0);
    room = (size_t)(seconds * 20 + 100);
    differences = malloc(room * sizeof *differences);
    if (file < 0 || record == MAP_FAILED || !differences) return 1;
    const pid_t other = fork();
    if (other == 0) {
        const int status = WaitOnly(end + kPeriod);
        fflush(stdout);
        _exit(status);
    }
    const int status = Watch((const volatile double*)(record + offset), end - kPeriod);
    fflush(stdout);
    waitpid(other, NULL, 0);
    return status;
}
