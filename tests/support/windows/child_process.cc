// SPDX-License-Identifier: MIT
#include "support/child_process.h"

#include "base/wide_text.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"

namespace twr::testing {
namespace {

constexpr UINT kKilled = 137;  // as for a killed process of the other system

class WindowsChild final : public ChildProcess {
public:
    WindowsChild(UniqueHandle process, UniqueHandle input, UniqueHandle output)
        : process_(std::move(process)), input_(std::move(input)), output_(std::move(output)) {}
    ~WindowsChild() override {
        Kill();
        Wait();
    }

    std::string ReadLine() override {
        std::size_t end = 0;
        while ((end = read_.find('\n')) == std::string::npos) {
            char chunk[1024];
            DWORD got = 0;
            if (!ReadFile(output_.get(), chunk, sizeof chunk, &got, nullptr) || got == 0) return std::exchange(read_, {});
            read_.append(chunk, got);
        }
        std::string line = read_.substr(0, end);
        read_.erase(0, end + 1);
        if (line.ends_with('\r')) line.pop_back();
        return line;
    }

    void WriteLine(const std::string& line) override {
        const std::string text = line + '\n';
        DWORD written = 0;
        WriteFile(input_.get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
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
    UniqueHandle input_;
    UniqueHandle output_;
    std::string read_;
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
    return std::make_unique<WindowsChild>(UniqueHandle(started.hProcess), std::move(input), std::move(output));
}

std::string OwnProgram() { return ToUtf8(FromWide(ModulePath(nullptr))); }

void SetVariable(const char* name, const char* value) { SetEnvironmentVariableA(name, value); }

bool UnderWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

OrdinaryUser::OrdinaryUser(const TempFolder&) : counts_(false) {}
OrdinaryUser::~OrdinaryUser() = default;

}  // namespace twr::testing
