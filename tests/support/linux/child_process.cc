// SPDX-License-Identifier: MIT
#include "support/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/linux/descriptor.h"

namespace twr::testing {
namespace {

constexpr int kCantBeStarted = 127;

class PosixChild final : public ChildProcess {
public:
    PosixChild(pid_t process, Descriptor input, Descriptor output)
        : ChildProcess(fdopen(input.Release(), "w"), fdopen(output.Release(), "r")), process_(process) {}
    ~PosixChild() override {
        Kill();
        Wait();
    }

    void Kill() override {
        if (process_ > 0) kill(process_, SIGKILL);
    }

    int Wait() override {
        if (process_ > 0) waitpid(process_, &status_, 0);
        process_ = -1;
        return WIFEXITED(status_) ? WEXITSTATUS(status_) : 128 + WTERMSIG(status_);
    }

private:
    pid_t process_;
    int status_ = 0;
};

}  // namespace

std::unique_ptr<ChildProcess> StartProgram(const std::string& path, const std::vector<std::string>& arguments) {
    signal(SIGPIPE, SIG_IGN);
    int input[2], output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) return nullptr;
    Descriptor itsInput(input[0]), ownInput(input[1]), ownOutput(output[0]), itsOutput(output[1]);
    std::vector<char*> argv{const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const pid_t process = fork();
    if (process == 0) {
        signal(SIGPIPE, SIG_DFL);
        dup2(itsInput.Get(), STDIN_FILENO);
        dup2(itsOutput.Get(), STDOUT_FILENO);
        execv(path.c_str(), argv.data());
        _exit(kCantBeStarted);
    }
    if (process < 0) return nullptr;
    return std::make_unique<PosixChild>(process, std::move(ownInput), std::move(ownOutput));
}

std::string OwnProgram() { return std::filesystem::read_symlink("/proc/self/exe"); }

void SetVariable(const char* name, const char* value) { value ? setenv(name, value, 1) : unsetenv(name); }

bool UnderWine() { return false; }

// The real user too, by whom access() goes; the saved one leads back.
OrdinaryUser::OrdinaryUser(const TempFolder& folder) : counts_(true) {
    constexpr uid_t kNobody = 65534;
    if (geteuid() != 0) return;
    counts_ = chown(folder.Path().c_str(), kNobody, kNobody) == 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path()))
        counts_ = lchown(entry.path().c_str(), kNobody, kNobody) == 0 && counts_;
    if (setegid(kNobody) != 0 || setresuid(kNobody, kNobody, 0) != 0) std::abort();
}

OrdinaryUser::~OrdinaryUser() {
    uid_t real = 0, effective = 0, saved = 0;
    getresuid(&real, &effective, &saved);
    if (saved != effective && (seteuid(saved) != 0 || setresuid(saved, saved, saved) != 0 || setegid(saved) != 0)) std::abort();
}

}  // namespace twr::testing
