// SPDX-License-Identifier: MIT
// halyrigctlw: runs the halyrigctl beside it with the same arguments and no console window, for what goes on from log-on to
// log-off. What it says goes to a file of the user's local data, such as Halyrig\record.log. As a service of Linux does, it tries
// again a minute after a failure. Asked to close, or when the session ends, it asks halyrigctl to stop, and waits for what
// it has to save.
#include <string>

#include "platform/windows/stop_event.h"
#include "platform/windows/unique_handle.h"

namespace twr {
namespace {

constexpr DWORD kRestMs = 60'000;
constexpr DWORD kEndMs = 4'500;  // at the end of a session Windows waits for five seconds
constexpr DWORD kFailed = 1;     // halyrigctl's status for what may go well next time

UniqueHandle OpenInherited(const std::wstring& path, DWORD access, DWORD creation) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return UniqueHandle(
        NullIfInvalid(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, creation, 0, nullptr)));
}

// Named by the command, "record" of "record --keep 30".
UniqueHandle MakeLog(const std::wstring& arguments) {
    wchar_t folder[MAX_PATH];
    if (SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA | CSIDL_FLAG_CREATE, nullptr, SHGFP_TYPE_CURRENT, folder) != S_OK) return {};
    const std::wstring own = std::wstring(folder) + L"\\Halyrig";
    CreateDirectoryW(own.c_str(), nullptr);
    const std::size_t begin = arguments.starts_with(L'"') ? 1 : 0;
    const std::wstring command = arguments.substr(begin, arguments.find_first_of(L"\" ", begin) - begin);
    return OpenInherited(own + L"\\" + command + L".log", FILE_APPEND_DATA, CREATE_ALWAYS);
}

class Companion {
public:
    explicit Companion(std::wstring arguments)
        : arguments_(std::move(arguments)), none_(OpenInherited(L"NUL", GENERIC_READ, OPEN_EXISTING)), log_(MakeLog(arguments_)) {}

    // False if it can't be started.
    bool Start() {
        std::wstring path = ModulePath(nullptr);
        path.replace(path.find_last_of(L'\\') + 1, path.npos, L"halyrigctl.exe");
        std::wstring command = L"\"" + path + L"\" " + arguments_;
        STARTUPINFOW start{};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdInput = none_.get();
        start.hStdOutput = start.hStdError = log_.get();
        PROCESS_INFORMATION made{};
        if (!CreateProcessW(path.c_str(), command.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr, &start,
                            &made))
            return false;
        CloseHandle(made.hThread);
        process_ = UniqueHandle(made.hProcess);
        id_ = made.dwProcessId;
        return true;
    }

    HANDLE Process() const { return process_.get(); }

    bool HasFailed() const {
        DWORD status = 0;
        return GetExitCodeProcess(process_.get(), &status) && status == kFailed;
    }

    // As Ctrl-C does. One that does not wait yet has nothing to save.
    void Stop() const {
        const UniqueHandle stop(OpenEventW(EVENT_MODIFY_STATE, FALSE, StopEventName(id_).c_str()));
        if (!stop) TerminateProcess(process_.get(), 0);
        if (stop) SetEvent(stop.get());
        WaitForSingleObject(process_.get(), kEndMs);
    }

private:
    const std::wstring arguments_;
    const UniqueHandle none_, log_;
    UniqueHandle process_;
    DWORD id_ = 0;
};

Companion* companion = nullptr;

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wide, LPARAM extra) {
    const bool ends = message == WM_CLOSE || (message == WM_ENDSESSION && wide != 0);
    if (!ends) return DefWindowProcW(window, message, wide, extra);
    companion->Stop();
    PostQuitMessage(0);
    return 0;
}

// Top-level, though never shown: others hear nothing of the end of a session. The installer looks for it by its class.
bool MakeWindow(HINSTANCE program) {
    WNDCLASSW kind{};
    kind.lpfnWndProc = OnMessage;
    kind.hInstance = program;
    kind.lpszClassName = L"halyrigctlw";
    return RegisterClassW(&kind) &&
           CreateWindowW(kind.lpszClassName, L"Halyrig", 0, 0, 0, 0, 0, nullptr, nullptr, program, nullptr);
}

// Handles what waits. False once this program is to end.
bool HandleMessages() {
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) {
        if (message.message == WM_QUIT) return false;
        DispatchMessageW(&message);
    }
    return true;
}

// The same after a rest.
bool RestsWell() {
    const ULONGLONG end = GetTickCount64() + kRestMs;
    for (ULONGLONG now; (now = GetTickCount64()) < end;) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
        if (!HandleMessages()) return false;
    }
    return true;
}

int Run(HINSTANCE program) {
    Companion own(PathGetArgsW(GetCommandLineW()));
    companion = &own;
    if (!MakeWindow(program) || !own.Start()) return 1;
    for (;;) {
        const HANDLE process = own.Process();
        const DWORD what = MsgWaitForMultipleObjects(1, &process, FALSE, INFINITE, QS_ALLINPUT);
        if (!HandleMessages()) return 0;
        if (what != WAIT_OBJECT_0) continue;
        if (!own.HasFailed()) return 0;
        if (!RestsWell()) return 0;
        if (!own.Start()) return 1;
    }
}

}  // namespace
}  // namespace twr

int WINAPI WinMain(HINSTANCE program, HINSTANCE, LPSTR, int) { return twr::Run(program); }
