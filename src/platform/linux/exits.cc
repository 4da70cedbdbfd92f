// SPDX-License-Identifier: MIT
// Calls by which a library may end the process unseen. Those of exit and quick_exit are noticed by marks; the others are defined
// here as well, and the loader binds what a library calls to the program's own functions before those of the C library.

#include <dlfcn.h>
#include <pthread.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>

#include "platform/linux/crash_reports.h"

namespace twr {
namespace {

bool MarkExits() {
    const auto onExit = [](int status, void*) {
        if (NoCallMayEndIt()) EndByFault("a call of exit", nullptr, status);
    };
    const auto onQuickExit = [] {
        if (NoCallMayEndIt()) EndByFault("a call of quick_exit", nullptr);
    };
    return on_exit(onExit, nullptr) == 0 && at_quick_exit(onQuickExit) == 0;
}

[[noreturn]] void OnDirectExit(const char* name, const void* place, int status) {
    if (NoCallMayEndIt()) EndByFault(name, place, status);
    EndAtOnce(status);
}

template <class Function>
Function* NextOf(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// A thread's own, since its usual stack may be what is exhausted.
class Thread {
public:
    Thread(void* (*run)(void*), void* argument) : run_(run), argument_(argument) {}
    ~Thread() { Use(SS_DISABLE); }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    static void* Run(void* raw) {
        const std::unique_ptr<Thread> thread(static_cast<Thread*>(raw));
        thread->Use(0);
        return thread->run_(thread->argument_);
    }

private:
    void Use(int how) {
        const stack_t stack{signalStack_.data(), how, signalStack_.size()};
        sigaltstack(&stack, nullptr);
    }

    void* (*const run_)(void*);
    void* const argument_;
    std::array<std::byte, 32'768> signalStack_;
};

}  // namespace

void EndAtOnce(int status) {
    for (;;) syscall(SYS_exit_group, status);
}

void TellExits() { [[maybe_unused]] static const bool once = MarkExits(); }

}  // namespace twr

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the C library's names
extern "C" {

[[gnu::used, gnu::visibility("default")]] void _exit(int status) {
    twr::OnDirectExit("a call of _exit", __builtin_return_address(0), status);
}

[[gnu::used, gnu::visibility("default")]] void _Exit(int status) noexcept {
    twr::OnDirectExit("a call of _Exit", __builtin_return_address(0), status);
}

[[gnu::used, gnu::visibility("default")]] void pthread_exit(void* value) {
    if (twr::NoCallMayEndIt() && gettid() == getpid()) twr::EndByFault("a call of pthread_exit", __builtin_return_address(0));
    static const auto next = twr::NextOf<decltype(pthread_exit)>("pthread_exit");
    next(value);
    __builtin_unreachable();
}

[[gnu::used, gnu::visibility("default")]] int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                                             void* (*run)(void*), void* argument) noexcept {
    static const auto next = twr::NextOf<decltype(pthread_create)>("pthread_create");
    if (!twr::NoCallMayEndIt()) return next(thread, attributes, run, argument);
    auto* const own = new (std::nothrow) twr::Thread(run, argument);
    if (!own) return EAGAIN;
    const int error = next(thread, attributes, twr::Thread::Run, own);
    if (error != 0) operator delete(own);  // no destructor, which is the thread's
    return error;
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
