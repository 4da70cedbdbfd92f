// SPDX-License-Identifier: MIT
// A library for the tests of this folder to load.
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <thread>

#ifdef __linux__
#include <pthread.h>
#include <signal.h>
#include <unistd.h>
#endif

namespace {

// What the last call did not get is left for the report, of which Wine keeps nothing back as Windows does.
int Exhaust(int depth) {
    volatile char room[65536];
    room[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : Exhaust(depth + 1) + room[0];
}

#ifdef __linux__
void* ExhaustThread(void*) { return reinterpret_cast<void*>(static_cast<std::uintptr_t>(Exhaust(0))); }

void CrashOnLinux(std::string_view how) {
    pthread_t thread;
    if (how == "stack of a thread" && pthread_create(&thread, nullptr, ExhaustThread, nullptr) == 0) pthread_join(thread, nullptr);
    if (how == "_exit") _exit(0);
    if (how == "quick_exit") quick_exit(0);
    if (how == "pthread_exit") pthread_exit(nullptr);
    if (how == "raise") raise(SIGTRAP);
    for (int file = 3; how == "close" && file < 1024; ++file) close(file);
}
#else
void CrashOnLinux(std::string_view) {}
#endif

}  // namespace

extern "C" int Answer() { return 42; }

extern "C" int Count() {
    static int calls = 0;
    return ++calls;
}

// Begins a thread that counts on for ever.
extern "C" void RunOn(std::atomic<int>* steps) {
    std::thread([steps] {
        for (;; std::this_thread::yield()) ++*steps;
    }).detach();
}

// Ends the process: by an access to memory that is not there, by exhausting the stack, by what is no instruction, or by a call.
extern "C" int Crash(const char* how) {
    const volatile std::uintptr_t nowhere = 16;
    const std::string_view means(how);
    if (means == "access") return *reinterpret_cast<volatile int*>(nowhere);
    if (means == "stack") return Exhaust(0);
    if (means == "abort") std::abort();
    if (means == "exit") std::exit(0);
    if (means == "instruction") __builtin_trap();
    CrashOnLinux(means);
    return 0;
}
