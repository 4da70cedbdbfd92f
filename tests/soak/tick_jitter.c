// Watches the bridge's ticks from outside, by the stamps of a channel that it publishes on each of them:
//   tick_jitter RECORD OFFSET SECONDS    OFFSET: of the stamp in the record, a double of days
// Looks every millisecond and prints, in milliseconds, by how much the time from tick to tick differed from 100: the median, the 99th
// percentile and the greatest; then the number of ticks seen, and of those that came more than 50 ms late.
#include <fcntl.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

// A tick can publish the channel twice.
static const double kSameTick = 10.0;  // milliseconds

static int Compare(const void* left, const void* right) {
    const double a = *(const double*)left, b = *(const double*)right;
    return (a > b) - (a < b);
}

static double Now(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (double)now.tv_sec + (double)now.tv_nsec / 1e9;
}

int main(int count, char** words) {
    if (count != 4) return 2;
    const size_t offset = (size_t)atol(words[2]);
    const double end = Now() + atof(words[3]);
    const int file = open(words[1], O_RDONLY);
    const char* record = mmap(NULL, offset + sizeof(double), PROT_READ, MAP_SHARED, file, 0);
    double* differences = malloc((size_t)(atof(words[3]) * 20 + 100) * sizeof *differences);
    if (file < 0 || record == MAP_FAILED || !differences) return 1;
    const volatile double* stamp = (const volatile double*)(record + offset);
    size_t seen = 0, late = 0;
    for (double last = *stamp; Now() < end; usleep(1000)) {
        const double now = *stamp;
        const double difference = (now - last) * 86400e3 - 100.0;
        if (now == last || fabs(difference + 100.0) < kSameTick) continue;
        late += difference > 50.0;
        differences[seen++] = fabs(difference);
        last = now;
    }
    if (seen == 0) return 1;
    qsort(differences, seen, sizeof *differences, Compare);
    printf("%.2f %.2f %.2f %zu %zu\n", differences[seen / 2], differences[seen * 99 / 100], differences[seen - 1], seen, late);
    return 0;
}
