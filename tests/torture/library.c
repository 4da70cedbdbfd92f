// SPDX-License-Identifier: MIT
// A library in Deckman's place that misbehaves as the environment variable TORTURE says: "hold" waits in Usr_Read while the file
// TORTURE_HOLD exists, the names in Crash end the process sooner or later, "anything" gives random numbers, "signals" has timers
// TORTURE_HOLD exists, the names in Crash end the process sooner or later, "anything" gives random numbers, "signals" has timers
// and signals of its own, "helper" forks a process that removes the file TORTURE_HELPER when TORTURE_HOLD has gone, "thread" begins
// a thread that never ends, "count" gives each variable another value at each reading, 0 to 29 in turn. WITHOUT_... at compile time
// leaves a function out.
#ifndef _WIN32
#define _GNU_SOURCE
#endif
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#ifdef _WIN32
#include <windows.h>
#define EXPORT __declspec(dllexport)
#define CALL __stdcall
static void Nap(void) { Sleep(10); }
#else
#include <pthread.h>
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>
#define EXPORT
#define CALL
static void Nap(void) { usleep(10000); }
#endif

static int Is(const char* what) {
    const char* torture = getenv("TORTURE");
    return torture && strcmp(torture, what) == 0;
}

static uint32_t Random(void) {
    static uint32_t state;
    if (state == 0) state = ((uint32_t)time(NULL) * 2654435761u ^ (uint32_t)clock()) | 1u;
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
}

static void Hold(void) {
    const char* path = getenv("TORTURE_HOLD");
    FILE* file;
    while (path && (file = fopen(path, "r"))) {
        fclose(file);
        Nap();
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

static int Exhaust(int depth) {
    volatile char page[4096];
    page[0] = (char)depth;
    return Is("stack") ? Exhaust(depth + 1) + page[0] : depth;
}

static void Crash(void) {
    volatile uintptr_t nowhere = 16;
    if (Is("abort")) abort();
    if (Is("exit")) exit(0);
    if (Is("segv")) *(volatile int*)nowhere = 0;
    if (Is("stack")) exit(Exhaust(0));
#ifndef _WIN32
    if (Is("_exit")) _exit(0);
    if (Is("quick_exit")) quick_exit(0);
    if (Is("pthread_exit")) pthread_exit(NULL);
    if (Is("raise")) raise(SIGFPE);
    for (int file = 3; Is("close") && file < 1024; ++file) close(file);
#endif
}

#ifdef _WIN32
static void Begin(void) {}
#else
static void* RunOn(void* steps) {
    for (;; usleep(1)) ++*(volatile int*)steps;
    return NULL;
}

static void Begin(void) {
    static int steps;
    const struct itimerval soon = {{0, 20000}, {0, 20000}};
    pthread_t thread;
    if (Is("thread")) pthread_create(&thread, NULL, RunOn, &steps);
    if (Is("helper") && fork() == 0) {
        Hold();
        _exit(remove(getenv("TORTURE_HELPER")));
    }
    if (!Is("signals")) return;
    setitimer(ITIMER_REAL, &soon, NULL);
    setitimer(ITIMER_VIRTUAL, &soon, NULL);
    raise(SIGUSR1);
    kill(getpid(), SIGUSR2);
}
#endif

static float Count(int32_t variable) {
    static unsigned readings[1024];
    return (float)(readings[(uint32_t)variable % 1024]++ % 30);
}

#ifndef WITHOUT_Usr_Read
EXPORT void CALL Usr_Read(int32_t variable, float* value) {
    static int begun;
    if (!begun++) Begin();
    if (Is("hold")) Hold();
    if (Random() % 100 == 0) Crash();
    *value = Is("anything") ? Anything() : Is("count") ? Count(variable) : (float)variable;
}
#endif

#ifndef WITHOUT_Usr_GetPosition
EXPORT void CALL Usr_GetPosition(float* latitude, float* longitude) {
    *latitude = Is("anything") ? Anything() : 50.0f;
    *longitude = Is("anything") ? Anything() : -1.0f;
}
#endif

#ifndef WITHOUT_Usr_SetISData
EXPORT void CALL Usr_SetISData(uint32_t* word, int32_t remote, const char* text) { (void)word, (void)remote, (void)text; }
#endif

#ifndef WITHOUT_Usr_SetISName
EXPORT void CALL Usr_SetISName(uint32_t* word, int32_t remote, const char* text) { (void)word, (void)remote, (void)text; }
#endif
