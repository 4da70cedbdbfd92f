#include "platform/system.h"

#include <signal.h>
#include <unistd.h>

#include <cstdio>

#include "base/version.h"
#include "platform/console.h"
#include "platform/linux/services.h"
#include "platform/linux/standard_error.h"
#include "platform/linux/terminal/screen.h"
#include "platform/paths.h"

namespace twr {
namespace {

std::unique_ptr<Desktop> MakeDesktop() {
    const bool atTerminal = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
    return atTerminal && TerminalCanShowScreens() ? MakeTerminalDesktop() : MakeHeadlessDesktop();
}

class BuiltExecutable final : public Executable {
public:
    std::optional<std::array<std::uint16_t, 4>> FileVersion() const override {
        unsigned major = 0, minor = 0, patch = 0;
        if (std::sscanf(HALYRIG_VERSION, "%u.%u.%u", &major, &minor, &patch) != 3) return std::nullopt;
        return std::array<std::uint16_t, 4>{static_cast<std::uint16_t>(major), static_cast<std::uint16_t>(minor),
                                            static_cast<std::uint16_t>(patch), 0};
    }
};

class LinuxSystem final : public System {
public:
    explicit LinuxSystem(const Roots& roots)
        : memory_(MakeSharedMemory(roots.namePrefix, [this](const std::string& cause) { OnNoMemory(cause); })),
          registry_(MakeRegistry(roots.registry)),
          files_(MakeFiles(roots.programData)),
          instance_(MakeInstance(roots)),
          status_(MakeStatusBoard(roots)) {
        // Writes to a closed pipe or beyond the file size limit fail without ending the process.
        for (const int number : {SIGPIPE, SIGXFSZ}) signal(number, SIG_IGN);
    }

    CoreServices Core() override { return {*clock_, *zone_, *memory_, *registry_, *files_, *xml_, *desktop_}; }
    Libraries& GetLibraries() override { return *libraries_; }
    Instance& GetInstance() override { return *instance_; }
    StatusBoard& GetStatusBoard() override { return *status_; }
    Executable& GetExecutable() override { return *executable_; }
    Console& GetConsole() override { return *console_; }
    CrashReports& GetCrashReports() override { return *crashes_; }
    int ExitStatus() const override { return exitStatus_; }

private:
    void OnNoMemory(const std::string& cause) {
        TellUser(cause);
        exitStatus_ = 1;
    }

    int exitStatus_ = 0;
    const std::unique_ptr<Clock> clock_ = MakeClock();
    const std::unique_ptr<Zone> zone_ = MakeZone();
    const std::unique_ptr<SharedMemory> memory_;
    const std::unique_ptr<Registry> registry_;
    const std::unique_ptr<Files> files_;
    const std::unique_ptr<Xml> xml_ = MakeXml();
    const std::unique_ptr<Desktop> desktop_ = MakeDesktop();
    const std::unique_ptr<Libraries> libraries_ = MakeLibraries();
    const std::unique_ptr<Instance> instance_;
    const std::unique_ptr<StatusBoard> status_;
    const std::unique_ptr<Executable> executable_ = MakeExecutable();
    const std::unique_ptr<Console> console_ = MakeConsole();
    const std::unique_ptr<CrashReports> crashes_ = MakeCrashReports();
};

}  // namespace

const char16_t kPathSeparator = u'/';
const std::u16string_view kLibrarySuffix = u".so";
const std::string_view kLineEnd = "\n";

std::vector<std::string> Arguments(int argc, char** argv) {
    return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

std::unique_ptr<Executable> MakeExecutable() { return std::make_unique<BuiltExecutable>(); }

std::unique_ptr<System> MakeSystem(const Roots& roots) { return std::make_unique<LinuxSystem>(roots); }

}  // namespace twr
