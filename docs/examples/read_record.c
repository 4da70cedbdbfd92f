// SPDX-License-Identifier: MIT
/* A guest of the suite in plain C: joins the record that other programs hold, and prints the own boat's speed with its age.
 *   cc -std=c11 -o read_record read_record.c
 *   read_record [NAME]     another object's name than the suite's, for trials
 * Exit status: 0 when there was a record, 1 when not.
 */
#define _GNU_SOURCE
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

enum { NO_RECORD = -1, BEGIN_ANEW = -2 };

/* The lock covers every byte that a file can have; the last one is locked by true holders alone. */
static const off_t LAST_BYTE = INT64_MAX;

/* Offsets of the record. */
enum { RECORD_SIZE = 166784, BOAT_COUNT = 6296, OWN_BOAT = 59016, VALUES = 3312 /* behind the time stamps */, MARK = 166624 };
enum { TIME = 0, BSP = 1 };
static const double NO_VALUE = 32767.0;

static double read_double(const unsigned char* record, size_t offset) {
    /* One access of 8 bytes: another process may be writing. */
    const uint64_t bits = __atomic_load_n((const uint64_t*)(const void*)(record + offset), __ATOMIC_RELAXED);
    double value;
    memcpy(&value, &bits, sizeof value);
    return value;
}

static uint32_t read_u32(const unsigned char* record, size_t offset) {
    return __atomic_load_n((const uint32_t*)(const void*)(record + offset), __ATOMIC_RELAXED);
}

/* Length 0 reaches to the end. */
static int lock(int object, short type, off_t start, off_t length) {
    struct flock range = {.l_type = type, .l_whence = SEEK_SET, .l_start = start, .l_len = length};
    return fcntl(object, F_OFD_SETLK, &range) == 0;
}

static int held_by_others(int object) {
    struct flock last = {.l_type = F_WRLCK, .l_whence = SEEK_SET, .l_start = LAST_BYTE, .l_len = 0};
    return fcntl(object, F_OFD_GETLK, &last) == 0 && last.l_type == F_RDLCK;
}

static int is_named(int object, const char* name) {
    struct stat mine, named;
    const int now = shm_open(name, O_RDONLY, 0);
    const int same = now >= 0 && fstat(now, &named) == 0 && fstat(object, &mine) == 0 && named.st_ino == mine.st_ino &&
                     named.st_dev == mine.st_dev;
    if (now >= 0) close(now);
    return same;
}

/* Releases the record. The last holder unlinks the name; two that leave together refuse each other the conversion, so the second try is
 * without a lock. */
static void leave(int object, const char* name) {
    const int last = lock(object, F_WRLCK, 0, 0) || (lock(object, F_UNLCK, 0, 0) && lock(object, F_WRLCK, 0, 0));
    if (last && is_named(object, name)) shm_unlink(name);
    close(object);
}

/* Gives the object with a lock that keeps the record alive. */
static int try_to_join(const char* name) {
    const int object = shm_open(name, O_RDWR, 0); /* a write lock needs a writable descriptor */
    struct stat status;
    if (object < 0) return NO_RECORD;
    /* Another user could write into it or cut it short. */
    if (fstat(object, &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != geteuid() || (status.st_mode & 077) != 0) {
        close(object);
        return NO_RECORD;
    }
    if (lock(object, F_WRLCK, 0, 0)) { /* no process holds it: what a killed program has left */
        leave(object, name);
        return NO_RECORD;
    }
    /* First a check without the last byte, so that two guests don't mistake each other for holders. */
    if (held_by_others(object) && lock(object, F_RDLCK, 0, LAST_BYTE) && is_named(object, name) && held_by_others(object) &&
        lock(object, F_RDLCK, 0, 0)) {
        if (fstat(object, &status) == 0 && status.st_size == RECORD_SIZE) return object;
        leave(object, name);
        return NO_RECORD;
    }
    leave(object, name);
    return BEGIN_ANEW;
}

static int join(const char* name) {
    const struct timespec pause = {.tv_nsec = 100000};
    for (int tries = 0; tries < 30000; ++tries) { /* some 3 s, for processes that are starting or leaving */
        const int object = try_to_join(name);
        if (object != BEGIN_ANEW) return object;
        nanosleep(&pause, NULL);
    }
    return NO_RECORD;
}

/* Days since 1899-12-30 00:00 UTC. */
static double now_in_days(void) {
    struct timespec clock;
    clock_gettime(CLOCK_REALTIME, &clock);
    return ((double)clock.tv_sec + (double)clock.tv_nsec / 1e9) / 86400.0 + 25569.0;
}

static void print_boat_speed(const unsigned char* record) {
    const double value = read_double(record, OWN_BOAT + VALUES + 8 * BSP);
    const double stamp = read_double(record, OWN_BOAT + 8 * BSP);
    if (record[MARK] != 8 || read_double(record, OWN_BOAT + 8 * TIME) == 0.0) {
        puts("The record is still being filled.");
    } else if (read_u32(record, BOAT_COUNT) == 0 || value == NO_VALUE) {
        puts("BSP has no value.");
    } else {
        printf("BSP %.2f kt, %.1f s old\n", value, (now_in_days() - stamp) * 86400.0);
    }
}

int main(int argc, char** argv) {
    const char* const name = argc > 1 ? argv[1] : "/TwrCore_356_166784";
    const int object = join(name);
    if (object < 0) {
        puts("There is no record.");
        return 1;
    }
    void* const record = mmap(NULL, RECORD_SIZE, PROT_READ, MAP_SHARED, object, 0);
    if (record != MAP_FAILED) {
        print_boat_speed(record);
        munmap(record, RECORD_SIZE);
    }
    leave(object, name);
    return record == MAP_FAILED;
}
