// SPDX-License-Identifier: MIT
// Times starts of the bridge up to its first tick, and of a bare process up to its main, in turn. The bridge's 100 ms between the
// start of its timer and the first tick are not counted. Prints a line in CSV for each, as the benchmarks do. No bridge may be
// running.
//   halyrig_starts BRIDGE BARE_PROCESS COUNT
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "platform/system.h"
#include "status/bridge_status.h"

namespace {

using namespace std::chrono_literals;
using Steady = std::chrono::steady_clock;

constexpr auto kPeriod = 100ms;  // of the bridge's timer
constexpr auto kPatience = 10s;

pid_t Spawn(const char* program, int output) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    char* arguments[] = {const_cast<char*>(program), nullptr};
    pid_t process = -1;
    if (posix_spawn(&process, program, &files, nullptr, arguments, environ) != 0) process = -1;
    posix_spawn_file_actions_destroy(&files);
    return process;
}

bool EndedWell(pid_t process) {
    int status = -1;
    return waitpid(process, &status, 0) == process && status == 0;
}

Steady::duration TimeBareProcess(const char* program) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    const auto begin = Steady::now();
    const pid_t process = Spawn(program, ends[1]);
    char byte;
    const bool begun = process > 0 && read(ends[0], &byte, 1) == 1;
    const auto time = Steady::now() - begin;
    close(ends[0]);
    close(ends[1]);
    return begun && EndedWell(process) ? time : Steady::duration();
}

Steady::duration TimeBridge(const char* program, twr::System& system) {
    const auto begin = Steady::now();
    const pid_t process = Spawn(program, STDERR_FILENO);
    if (process < 0) return {};
    std::this_thread::sleep_until(begin + kPeriod);  // no tick comes earlier
    auto now = Steady::now();
    for (; now < begin + kPatience; now = Steady::now()) {
        if (const auto status = twr::ReadBridgeStatus(system); status && status->ticks > 0) break;
        std::this_thread::sleep_for(20us);
    }
    kill(process, SIGTERM);
    return EndedWell(process) && now < begin + kPatience ? now - begin - kPeriod : Steady::duration();
}

bool Print(const char* name, Steady::duration time, const char* limit) {
    const auto nanoseconds = static_cast<long long>(time / 1ns);
    std::printf("\"%s\",1,%lld,%lld,ns,,,\"%s\",,\n", name, nanoseconds, nanoseconds, limit);
    return nanoseconds > 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const auto system = twr::MakeSystem(twr::UserRoots());
    for (int left = std::atoi(argv[3]); left > 0; --left) {
        if (!Print("BareProcess", TimeBareProcess(argv[2]), "")) return 1;
        if (!Print("StartToFirstTick", TimeBridge(argv[1], *system), "BareProcess")) return 1;
    }
}
