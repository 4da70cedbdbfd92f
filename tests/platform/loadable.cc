// A library for the tests of this folder to load.
#include <cstdint>

extern "C" int Answer() { return 42; }

// Ends the process: by an access to memory that is not there, by exhausting the stack, or by what is no instruction.
extern "C" int Crash(const char* how) {
    const volatile std::uintptr_t nowhere = 16;
    volatile char page[4096];
    page[0] = *how;
    if (page[0] == 'a') return *reinterpret_cast<volatile int*>(nowhere);
    if (page[0] == 's') return Crash(how) + page[0];
    __builtin_trap();
}
