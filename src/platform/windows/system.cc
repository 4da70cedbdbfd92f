#include "platform/system.h"

#include "platform/windows/dialog/desktop.h"
#include "platform/windows/services.h"
#include "platform/windows/wide.h"

namespace twr {
namespace {

class WindowsSystem : public System {
public:
    explicit WindowsSystem(const Roots& roots)
        : memory_(roots.namePrefix), registry_(roots.registry), files_(roots.programData), instance_(roots.namePrefix) {
        // A missing drive or a damaged library is a failure like any other, not a box of the system's.
        SetErrorMode(SetErrorMode(0) | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    }

    CoreServices Core() override { return {clock_, zone_, memory_, registry_, files_, xml_, desktop_}; }
    Libraries& GetLibraries() override { return libraries_; }
    Instance& GetInstance() override { return instance_; }
    Executable& GetExecutable() override { return executable_; }
    Console& GetConsole() override { return console_; }

private:
    WindowsClock clock_;
    WindowsZone zone_;
    WindowsSharedMemory memory_;
    WindowsRegistry registry_;
    WindowsFiles files_;
    WindowsXml xml_;
    WindowsDesktop desktop_;
    WindowsLibraries libraries_;
    WindowsInstance instance_;
    WindowsExecutable executable_;
    WindowsConsole console_;
};

}  // namespace

Roots UserRoots() {
    wchar_t* path = nullptr;
    const HRESULT found = SHGetKnownFolderPath(FOLDERID_ProgramData, 0, nullptr, &path);
    Roots roots;
    if (SUCCEEDED(found)) roots.programData = FromWide(path);
    CoTaskMemFree(path);
    return roots;
}

std::unique_ptr<System> MakeSystem(const Roots& roots) { return std::make_unique<WindowsSystem>(roots); }

}  // namespace twr
