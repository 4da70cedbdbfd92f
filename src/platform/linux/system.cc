#include "platform/system.h"

#include <signal.h>
#include <unistd.h>

#include "platform/linux/services.h"
#include "platform/linux/standard_error.h"
#include "platform/linux/terminal_screen.h"

namespace twr {
namespace {

std::unique_ptr<Desktop> MakeDesktop() {
    const bool atTerminal = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
    return atTerminal && TerminalCanShowScreens() ? MakeTerminalDesktop() : MakeHeadlessDesktop();
}

class LinuxSystem final : public System {
public:
    explicit LinuxSystem(const Roots& roots)
        : memory_(MakeSharedMemory(roots.namePrefix, [this](const std::string& cause) { OnNoMemory(cause); })),
          registry_(MakeRegistry(roots.registry)),
          files_(MakeFiles(roots.programData)),
          instance_(MakeInstance(roots)) {
        // Writes that nobody takes, or beyond the limit of a file's size, fail without ending the process.
        for (const int number : {SIGPIPE, SIGXFSZ}) signal(number, SIG_IGN);
    }

    CoreServices Core() override { return {*clock_, *zone_, *memory_, *registry_, *files_, *xml_, *desktop_}; }
    Libraries& GetLibraries() override { return *libraries_; }
    Instance& GetInstance() override { return *instance_; }
    Executable& GetExecutable() override { return *executable_; }
    Console& GetConsole() override { return *console_; }
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
    const std::unique_ptr<Executable> executable_ = MakeExecutable();
    const std::unique_ptr<Console> console_ = MakeConsole();
};

}  // namespace

std::unique_ptr<System> MakeSystem(const Roots& roots) { return std::make_unique<LinuxSystem>(roots); }

}  // namespace twr
