#include "support/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

extern char** environ;

namespace twr::testing {
namespace {

class PosixChild final : public ChildProcess {
public:
    PosixChild(pid_t process, int input, int output) : process_(process), input_(input), output_(output) {}
    ~PosixChild() override {
        if (process_ > 0) {
            Kill();
            Wait();
        }
        close(input_);
        close(output_);
    }

    std::string ReadLine() override {
        std::size_t end = 0;
        while ((end = read_.find('\n')) == std::string::npos) {
            char chunk[1024];
            const ssize_t got = read(output_, chunk, sizeof chunk);
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) return std::exchange(read_, {});
            read_.append(chunk, static_cast<std::size_t>(got));
        }
        std::string line = read_.substr(0, end);
        read_.erase(0, end + 1);
        return line;
    }

    // Lines are far shorter than what a pipe takes at once. The child may be gone.
    void WriteLine(const std::string& line) override {
        const std::string text = line + '\n';
        [[maybe_unused]] const ssize_t written = write(input_, text.data(), text.size());
    }

    void Kill() override {
        if (process_ > 0) kill(process_, SIGKILL);
    }

    int Wait() override {
        if (process_ <= 0) return status_;
        int status = 0;
        while (waitpid(process_, &status, 0) < 0 && errno == EINTR) continue;
        process_ = -1;
        return status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

private:
    pid_t process_;
    int status_ = -1;
    const int input_;
    const int output_;
    std::string read_;
};

}  // namespace

std::unique_ptr<ChildProcess> StartProgram(const std::string& path, const std::vector<std::string>& arguments) {
    signal(SIGPIPE, SIG_IGN);
    std::array<int, 2> input{}, output{};
    if (pipe2(input.data(), O_CLOEXEC) != 0) return nullptr;
    if (pipe2(output.data(), O_CLOEXEC) != 0) {
        for (const int end : input) close(end);
        return nullptr;
    }
    std::vector<char*> argv{const_cast<char*>(path.c_str())};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t pipes;
    sigemptyset(&pipes);
    sigaddset(&pipes, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &pipes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    pid_t process = -1;
    const int error = posix_spawn(&process, path.c_str(), &actions, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);

    close(input[0]);
    close(output[1]);
    if (error != 0) {
        close(input[1]);
        close(output[0]);
        return nullptr;
    }
    return std::make_unique<PosixChild>(process, input[1], output[0]);
}

std::string OwnProgram() {
    std::array<char, 4096> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

}  // namespace twr::testing
