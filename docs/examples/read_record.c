/* A guest of the suite in plain C: joins the record that other programs hold, and prints the own boat's speed with its age.
 *   cc -std=c11 -o read_record read_record.c
 *   read_record [NAME]     another object's name than the suite's, for trials
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

#define RECORD_SIZE 166784
#define BLOCK_OF_OWN_BOAT 59016
#define VALUES 3312 /* behind the time stamps of the block */
#define BSP 1
#define NO_VALUE 32767.0

/* A double of the record, by one 8-byte access. */
static double read_double(const unsigned char* record, size_t offset) {
    const uint64_t bits = __atomic_load_n((const uint64_t*)(const void*)(record + offset), __ATOMIC_RELAXED);
    double value;
    memcpy(&value, &bits, sizeof value);
    return value;
}

/* Takes a lock on the whole object; 0 when it can't be had. */
static int lock(int object, short type) {
    struct flock whole = {.l_type = type, .l_whence = SEEK_SET};
    return fcntl(object, F_OFD_SETLK, &whole) == 0;
}

int main(int argc, char** argv) {
    const char* name = argc > 1 ? argv[1] : "/TwrCore_356_166784";
    const int object = shm_open(name, O_RDWR, 0);
    struct stat status;
    /* Who can have the write lock has found no holder; what lies there then is left over. */
    if (object < 0 || lock(object, F_WRLCK) || !lock(object, F_RDLCK) || fstat(object, &status) != 0 || status.st_size != RECORD_SIZE) {
        puts("There is no record.");
        return 1;
    }
    const unsigned char* record = mmap(NULL, RECORD_SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, object, 0);
    if (record == MAP_FAILED) return 1;

    const double value = read_double(record, BLOCK_OF_OWN_BOAT + VALUES + 8 * BSP);
    const double stamp = read_double(record, BLOCK_OF_OWN_BOAT + 8 * BSP);
    struct timespec clock;
    clock_gettime(CLOCK_REALTIME, &clock);
    const double now = ((double)clock.tv_sec + (double)clock.tv_nsec / 1e9) / 86400.0 + 25569.0;
    if (value == NO_VALUE) {
        puts("BSP has no value.");
    } else {
        printf("BSP %.2f kt, %.1f s old\n", value, (now - stamp) * 86400.0);
    }

    /* The last holder takes the name away. */
    munmap((void*)record, RECORD_SIZE);
    if (lock(object, F_WRLCK)) shm_unlink(name);
    close(object);
    return 0;
}
