// SPDX-License-Identifier: MIT
// A library in Deckman's place that misbehaves as the environment variable TORTURE says: "hold" waits in Usr_Read while the file
// TORTURE_HOLD exists, the names in Crash end the process sooner or later, "anything" gives random numbers, "helper" forks a process
// that removes the file TORTURE_HELPER when TORTURE_HOLD has gone, "count" gives each variable another value at each reading, 0 to 29
// in turn.
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#ifdef _WIN32
#define EXPORT __declspec(dllexport)
#define CALL __stdcall
#else
#define EXPORT
#define CALL
#endif

static int Is(const char* what) {
    const char* torture = getenv("TORTURE");
    return torture && strcmp(torture, what) == 0;
}

// Windows' own rand has 15 bits.
static uint32_t Random(void) {
    static int seeded;
    if (!seeded++) srand((unsigned)time(NULL) ^ (unsigned)clock());
    return (uint32_t)rand() << 17 ^ (uint32_t)rand() << 9 ^ (uint32_t)rand();
}

static void Hold(void) {
    const char* path = getenv("TORTURE_HOLD");
    FILE* file;
    while (path && (file = fopen(path, "r"))) {
        fclose(file);
        usleep(10000);
    }
}

// Any bits, a special number, or one at the border of a range.
static float Anything(void) {
    static const uint32_t special[] = {0x7fc00000, 0xffc00000, 0x7f800001, 0x7f800000, 0xff800000, 1,
                                       0x80000001, 0x007fffff, 0x7f7fffff, 0xff7fffff, 0x80000000};
    static const float border[] = {32767.0f, -32767.0f,  360.0f,      360.00003f, 719.99994f, -360.0f,
                                   180.0f,   180.00002f, -180.00002f, -540.0f,    90.00001f};
    uint32_t bits = Random();
    float value;
    if (Random() % 3 == 0) bits = special[bits % (sizeof special / sizeof *special)];
    memcpy(&value, &bits, sizeof value);
    return Random() % 3 == 0 ? border[bits % (sizeof border / sizeof *border)] : value;
}

static void Crash(void) {
    volatile uintptr_t nowhere = 16;
    if (Is("abort")) abort();
    if (Is("exit")) exit(0);
    if (Is("segv")) *(volatile int*)nowhere = 0;
}

static void Fork(void) {
#ifndef _WIN32
    if (fork() != 0) return;
    Hold();
    _exit(remove(getenv("TORTURE_HELPER")));
#endif
}

static float Count(int32_t variable) {
    static unsigned readings[1024];
    return (float)(readings[(uint32_t)variable % 1024]++ % 30);
}

EXPORT void CALL Usr_Read(int32_t variable, float* value) {
    static int begun;
    if (!begun++ && Is("helper")) Fork();
    if (Is("hold")) Hold();
    if (Random() % 100 == 0) Crash();
    *value = Is("anything") ? Anything() : Is("count") ? Count(variable) : (float)variable;
}

EXPORT void CALL Usr_GetPosition(float* latitude, float* longitude) {
    *latitude = Is("anything") ? Anything() : 50.0f;
    *longitude = Is("anything") ? Anything() : -1.0f;
}

EXPORT void CALL Usr_SetISData(uint32_t* word, int32_t remote, const char* text) { (void)word, (void)remote, (void)text; }

EXPORT void CALL Usr_SetISName(uint32_t* word, int32_t remote, const char* text) { (void)word, (void)remote, (void)text; }
