// SPDX-License-Identifier: MIT
#include "support/child_process.h"

#include <fcntl.h>
#include <io.h>

#include "base/wide_text.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"

namespace twr::testing {
namespace {

constexpr UINT kKilled = 137;  // as for a killed process of the other system

// As a stream, which owns it from now on; CR and LF are read as LF, and LF is written as both.
std::FILE* Opened(UniqueHandle& pipe, const char* mode) {
    const HANDLE handle = std::exchange(*pipe.Receive(), nullptr);
    return _fdopen(_open_osfhandle(reinterpret_cast<std::intptr_t>(handle), _O_TEXT), mode);
}

class WindowsChild final : public ChildProcess {
public:
    WindowsChild(UniqueHandle process, UniqueHandle& input, UniqueHandle& output)
        : ChildProcess(Opened(input, "w"), Opened(output, "r")), process_(std::move(process)) {}
    ~WindowsChild() override {
        Kill();
        Wait();
    }

    void Kill() override { TerminateProcess(process_.get(), kKilled); }

    int Wait() override {
        DWORD status = 0;
        WaitForSingleObject(process_.get(), INFINITE);
        GetExitCodeProcess(process_.get(), &status);
        return static_cast<int>(status);
    }

private:
    UniqueHandle process_;
};

// Quoted such that the C run time of the child takes it apart into the same argument.
std::wstring Quoted(const std::string& argument) {
    std::wstring quoted = L"\"";
    std::size_t slashes = 0;
    for (const wchar_t c : ToWide(FromUtf8(argument))) {
        if (c == L'"') quoted.append(slashes + 1, L'\\');
        slashes = c == L'\\' ? slashes + 1 : 0;
        quoted += c;
    }
    return quoted.append(slashes, L'\\') + L'"';
}

// The end that the child gets can be inherited, ours can't: the child's output ends with the child.
bool MakePipe(UniqueHandle& reading, UniqueHandle& writing, UniqueHandle& ours) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreatePipe(reading.Receive(), writing.Receive(), &inherited, 0) &&
           SetHandleInformation(ours.get(), HANDLE_FLAG_INHERIT, 0);
}

}  // namespace

std::unique_ptr<ChildProcess> StartProgram(const std::string& path, const std::vector<std::string>& arguments) {
    UniqueHandle childInput, input, output, childOutput;
    if (!MakePipe(childInput, input, input) || !MakePipe(output, childOutput, output)) return nullptr;
    std::wstring line = Quoted(path);
    for (const std::string& argument : arguments) line += L' ' + Quoted(argument);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = childInput.get();
    start.hStdOutput = childOutput.get();
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(ToWide(FromUtf8(path)).c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                        &started)) {
        return nullptr;
    }
    CloseHandle(started.hThread);
    return std::make_unique<WindowsChild>(UniqueHandle(started.hProcess), input, output);
}

std::string OwnProgram() { return ToUtf8(FromWide(ModulePath(nullptr))); }

void SetVariable(const char* name, const char* value) { SetEnvironmentVariableA(name, value); }

bool UnderWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

OrdinaryUser::OrdinaryUser(const TempFolder&) : counts_(false) {}
OrdinaryUser::~OrdinaryUser() = default;

}  // namespace twr::testing
