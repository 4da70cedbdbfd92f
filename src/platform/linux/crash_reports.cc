// SPDX-License-Identifier: MIT
#include "platform/linux/crash_reports.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <time.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

#include "base/wide_text.h"
#include "platform/crash_line.h"
#include "platform/linux/mapped_file.h"
#include "platform/linux/services.h"

namespace twr {
namespace {

template <std::size_t kSize>
struct PlainText {
    std::array<char, kSize> text;  // ends with a zero
    void Set(std::string_view from) { text[from.copy(text.data(), kSize - 1)] = '\0'; }
};

// For the signal handler, which may touch only plain data.
struct {
    volatile sig_atomic_t told = 0, runs = 0, calls = 0, called = 0;
    volatile pid_t process = 0;
    PlainText<4096> file{}, folder{};
    PlainText<1024> calling{};
    void (*first)() = nullptr;
    std::array<std::byte, 65'536> stack{};  // the usual one may be what is exhausted
} crashes;

constexpr struct {
    int number;
    const char* name;
} kFatal[] = {{SIGABRT, "SIGABRT"}, {SIGSEGV, "SIGSEGV"}, {SIGBUS, "SIGBUS"},  {SIGFPE, "SIGFPE"},
              {SIGILL, "SIGILL"},   {SIGSYS, "SIGSYS"},   {SIGTRAP, "SIGTRAP"}};

std::uintptr_t ProgramCounter(const void* context) {
    const auto& registers = static_cast<const ucontext_t*>(context)->uc_mcontext;
#if defined(__x86_64__)
    return static_cast<std::uintptr_t>(registers.gregs[REG_RIP]);
#elif defined(__aarch64__)
    return registers.pc;
#else
    static_cast<void>(registers);
    return 0;
#endif
}

// `place` is where the processor was; null if that is unknown.
void Tell(Crash crash, std::uintptr_t place) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const MappedFile at(place);
    crash.seconds = now.tv_sec;
    if (place != 0) crash.module = at.Path();
    crash.offset = at.Offset();
    const CrashLine line(crash);
    const auto write = [text = line.Text()](int file) {
        [[maybe_unused]] const ssize_t written = ::write(file, text.data(), text.size());
    };
    write(STDERR_FILENO);
    mkdir(crashes.folder.text.data(), 0777);
    const int file = open(crashes.file.text.data(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY, 0666);
    if (file >= 0) write(file);
}

// One that a process has sent, such as by abort, or that the system can't place, has no address.
void TellSignal(int number, const siginfo_t& info, const void* context) {
    Crash crash{.what = std::ranges::find(kFatal, number, &std::remove_reference_t<decltype(*kFatal)>::number)->name};
    if (info.si_code > 0 && info.si_code < SI_KERNEL) crash.data = reinterpret_cast<std::uintptr_t>(info.si_addr);
    if (crashes.calls) crash.calling = crashes.calling.text.data();
    Tell(crash, ProgramCounter(context));
}

// On return a fault happens again, and ends the process with its own registers in the core file.
void OnCrash(int number, siginfo_t* info, void* context) {
    BeforeTheEnd();
    if (crashes.told && InOwnProcess()) TellSignal(number, *info, context);
    if (info->si_code <= 0) raise(number);  // it came from a process, such as by abort; by now it has its default effect
}

// A handler set by other code stays.
bool HandleCrashes() {
    BeOwnProcess();
    const stack_t stack{crashes.stack.data(), 0, crashes.stack.size()};
    stack_t before{};
    if (sigaltstack(nullptr, &before) == 0 && (before.ss_flags & SS_DISABLE)) sigaltstack(&stack, nullptr);
    for (const auto& fatal : kFatal) {
        struct sigaction action {};
        if (sigaction(fatal.number, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
        action.sa_sigaction = OnCrash;
        action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_NODEFER | SA_SIGINFO | SA_ONSTACK;
        sigaction(fatal.number, &action, nullptr);
    }
    return true;
}

class SignalledCrashes final : public CrashReports {
public:
    ~SignalledCrashes() override { crashes.runs = 0; }

    void Prepare(std::u16string_view file, std::u16string_view calling) override {
        crashes.told = 0;
        const std::string path = ToUtf8(file);
        crashes.file.Set(path);
        crashes.folder.Set(path.substr(0, path.rfind('/')));
        crashes.calling.Set(ToUtf8(calling));
        crashes.told = 1;
        crashes.runs = 1;
        [[maybe_unused]] static const bool once = HandleCrashes();
        TellExits();
    }

    void Calling(bool calls) override {
        crashes.calls = calls;
        crashes.called = 1;
    }
};

}  // namespace

void AtCrash(void (*first)()) {
    crashes.first = first;
    [[maybe_unused]] static const bool once = HandleCrashes();
}

void BeforeTheEnd() {
    if (crashes.first && InOwnProcess()) crashes.first();
}

void BeOwnProcess() { crashes.process = getpid(); }

bool InOwnProcess() { return crashes.process == getpid(); }

bool NoCallMayEndIt() { return crashes.runs && InOwnProcess(); }

// The library may have done it in a thread of its own, and what it has done to the process be noticed only after its call.
void EndByFault(const char* what, const void* place, int status) {
    BeforeTheEnd();
    if (crashes.told) {
        Tell({.what = what, .fault = false, .calling = crashes.called ? crashes.calling.text.data() : ""},
             reinterpret_cast<std::uintptr_t>(place));
    }
    EndAtOnce(status == 0 ? 1 : status);
}

std::unique_ptr<CrashReports> MakeCrashReports() { return std::make_unique<SignalledCrashes>(); }

}  // namespace twr
