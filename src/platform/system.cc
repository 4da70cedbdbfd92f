// SPDX-License-Identifier: MIT
#include "platform/system.h"

#include "platform/services.h"

namespace twr {
namespace {

class RealSystem final : public System {
public:
    explicit RealSystem(const Roots& roots)
        : memory_(MakeSharedMemory(roots, [this] { exitStatus_ = 1; })),
          registry_(MakeRegistry(roots.registry)),
          files_(MakeFiles(roots.programData)),
          instance_(MakeInstance(roots)),
          status_(MakeStatusBoard(roots)) {
        PrepareProcess();
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

std::unique_ptr<System> MakeSystem(const Roots& roots) { return std::make_unique<RealSystem>(roots); }

}  // namespace twr
