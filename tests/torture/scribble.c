// Writes random bytes over a file, such as a block of shared memory, for some milliseconds:
//   scribble FILE MILLISECONDS [SPARED]    but not over the byte at the offset SPARED
#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

static long long Milliseconds(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

int main(int count, char** words) {
    if (count < 3) return 2;
    const int file = open(words[1], O_RDWR);
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0 || status.st_size == 0) return 1;
    const size_t size = (size_t)status.st_size, spared = count > 3 ? (size_t)atol(words[3]) : size;
    volatile unsigned char* bytes = mmap(NULL, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (bytes == MAP_FAILED) return 1;
    srandom((unsigned)(time(NULL) ^ getpid()));
    const long long end = Milliseconds() + atoll(words[2]);
    while (Milliseconds() < end) {
        size_t at = (size_t)random() % size, length = 1u << (random() % 12);
        const int same = random() % 4 == 0 ? (int)(random() % 256) : -1;  // a run of one byte, such as zeros, now and then
        for (; length > 0 && at < size; --length, ++at) {
            if (at != spared) bytes[at] = (unsigned char)(same >= 0 ? same : random());
        }
        usleep((useconds_t)(random() % 500));
    }
    return 0;
}
