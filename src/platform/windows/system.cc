#include "platform/system.h"

#include "base/wide_text.h"
#include "platform/console.h"
#include "platform/paths.h"
#include "platform/windows/services.h"
#include "platform/windows/win32.h"

namespace twr {
namespace {

class WindowsExecutable final : public Executable {
public:
    std::optional<std::array<std::uint16_t, 4>> FileVersion() const override;
};

class WindowsSystem final : public System {
public:
    explicit WindowsSystem(const Roots& roots)
        : memory_(MakeSharedMemory(roots.namePrefix)),
          registry_(MakeRegistry(roots.registry)),
          files_(MakeFiles(roots.programData)),
          instance_(MakeInstance(roots.namePrefix)),
          status_(MakeStatusBoard(roots.namePrefix)) {
        // A missing drive or a damaged library is a failure like any other, not a message box of the system.
        SetErrorMode(SetErrorMode(0) | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    }

    CoreServices Core() override { return {*clock_, *zone_, *memory_, *registry_, *files_, *xml_, *desktop_}; }
    Libraries& GetLibraries() override { return *libraries_; }
    Instance& GetInstance() override { return *instance_; }
    StatusBoard& GetStatusBoard() override { return *status_; }
    Executable& GetExecutable() override { return *executable_; }
    Console& GetConsole() override { return *console_; }
    CrashReports& GetCrashReports() override { return *crashes_; }

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
    const std::unique_ptr<StatusBoard> status_;
    const std::unique_ptr<Executable> executable_ = MakeExecutable();
    const std::unique_ptr<Console> console_ = MakeConsole();
    const std::unique_ptr<CrashReports> crashes_ = MakeCrashReports();
};

}  // namespace

const char16_t kPathSeparator = u'\\';
const std::u16string_view kLibrarySuffix = u".dll";
const std::string_view kLineEnd = "\r\n";

std::vector<std::string> Arguments(int, char**) {
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; wide && i < count; ++i) arguments.push_back(ToUtf8(FromWide(wide[i])));
    LocalFree(wide);
    return arguments;
}

Roots UserRoots() {
    wchar_t* path = nullptr;
    const HRESULT found = SHGetKnownFolderPath(FOLDERID_ProgramData, 0, nullptr, &path);
    Roots roots;
    if (SUCCEEDED(found)) roots.programData = FromWide(path);
    CoTaskMemFree(path);
    return roots;
}

std::unique_ptr<System> MakeSystem(const Roots& roots) { return std::make_unique<WindowsSystem>(roots); }

std::optional<std::array<std::uint16_t, 4>> WindowsExecutable::FileVersion() const {
    const std::wstring path = ModulePath(nullptr);
    DWORD ignored = 0;
    std::vector<std::byte> block(GetFileVersionInfoSizeW(path.c_str(), &ignored));
    if (block.empty() || !GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data())) return std::nullopt;
    void* found = nullptr;
    UINT size = 0;
    if (!VerQueryValueW(block.data(), L"\\", &found, &size) || size < sizeof(VS_FIXEDFILEINFO)) return std::nullopt;
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    return std::array<std::uint16_t, 4>{HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS), HIWORD(info.dwFileVersionLS),
                                        LOWORD(info.dwFileVersionLS)};
}

std::unique_ptr<Executable> MakeExecutable() { return std::make_unique<WindowsExecutable>(); }

}  // namespace twr
