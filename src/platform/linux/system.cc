#include "platform/system.h"

#include <unistd.h>

#include "platform/linux/services.h"
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
        : memory_(MakeSharedMemory(roots.namePrefix)),
          registry_(MakeRegistry(roots.registry)),
          files_(MakeFiles(roots.programData)),
          instance_(MakeInstance(roots)) {}

    CoreServices Core() override { return {*clock_, *zone_, *memory_, *registry_, *files_, *xml_, *desktop_}; }
    Libraries& GetLibraries() override { return *libraries_; }
    Instance& GetInstance() override { return *instance_; }
    Executable& GetExecutable() override { return *executable_; }
    Console& GetConsole() override { return *console_; }

private:
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
