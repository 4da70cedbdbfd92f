// SPDX-License-Identifier: MIT
// A named block of shared memory, or on Linux a file by its path, as another program finds it. Status 3 if there is none.
//   block NAME                                   prints its bytes
//   block NAME OFFSET BYTE                       writes one of them
//   block NAME scribble MILLISECONDS [SPARED]    writes random ones all over it for so long, but not at the offset SPARED
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <windows.h>

// NULL if there is none. Windows knows the size only in whole pages.
static unsigned char* Map(const char* name, size_t* size) {
    const HANDLE mapping = OpenFileMappingA(FILE_MAP_READ | FILE_MAP_WRITE, FALSE, name);
    void* const bytes = mapping ? MapViewOfFile(mapping, FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, 0) : NULL;
    MEMORY_BASIC_INFORMATION region;
    if (!bytes || VirtualQuery(bytes, &region, sizeof region) == 0) return NULL;
    *size = region.RegionSize;
    return bytes;
}

static void TakeBinaryOutput(void) { _setmode(_fileno(stdout), _O_BINARY); }
static long long Milliseconds(void) { return (long long)GetTickCount64(); }
static void Rest(void) { Sleep((DWORD)(rand() % 2)); }
#else
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

static unsigned char* Map(const char* name, size_t* size) {
    const int file = strchr(name, '/') ? open(name, O_RDWR) : shm_open(name, O_RDWR, 0);
    struct stat status;
    if (file < 0 || fstat(file, &status) != 0 || status.st_size == 0) return NULL;
    *size = (size_t)status.st_size;
    void* const bytes = mmap(NULL, *size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    return bytes == MAP_FAILED ? NULL : bytes;
}

static void TakeBinaryOutput(void) {}
static long long Milliseconds(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}
static void Rest(void) { usleep((useconds_t)(rand() % 500)); }
#endif

// Windows' own rand has 15 bits.
static unsigned Random(void) { return (unsigned)rand() << 15 ^ (unsigned)rand(); }

static void Scribble(volatile unsigned char* bytes, size_t size, long long milliseconds, size_t spared) {
    srand((unsigned)time(NULL) ^ (unsigned)getpid());
    const long long end = Milliseconds() + milliseconds;
    while (Milliseconds() < end) {
        size_t at = Random() % size, length = 1u << (Random() % 12);
        const int same = Random() % 4 == 0 ? (int)(Random() % 256) : -1;  // a run of one byte, such as zeros, now and then
        for (; length > 0 && at < size; --length, ++at) {
            if (at != spared) bytes[at] = (unsigned char)(same >= 0 ? same : (int)Random());
        }
        Rest();
    }
}

int main(int count, char** words) {
    size_t size;
    unsigned char* const bytes = count > 1 ? Map(words[1], &size) : NULL;
    if (!bytes) return 3;
    if (count < 4) {
        TakeBinaryOutput();
        return fwrite(bytes, 1, size, stdout) == size ? 0 : 1;
    }
    if (strcmp(words[2], "scribble") == 0) {
        Scribble(bytes, size, atoll(words[3]), count > 4 ? (size_t)atol(words[4]) : size);
    } else {
        bytes[(size_t)atol(words[2]) % size] = (unsigned char)atoi(words[3]);
    }
    return 0;
}
