// SPDX-License-Identifier: MIT
#include "platform/console.h"

#include "platform/held_output.h"
#include "platform/services.h"
#include "platform/windows/console_screen.h"
#include "platform/windows/stop_event.h"
#include "platform/windows/unique_handle.h"

namespace twr {
namespace {

// Sets the encoding of the process's console for the life of the object.
class WindowsConsole final : public Console {
public:
    WindowsConsole();
    ~WindowsConsole() override;
    WindowsConsole(const WindowsConsole&) = delete;
    WindowsConsole& operator=(const WindowsConsole&) = delete;
    std::unique_ptr<ConsoleScreen> TakeScreen() override;
    Output Write(std::string_view utf8, const std::function<bool()>& goOn) override;
    void WriteError(std::string_view utf8) override;
    std::optional<std::string> ReadLine() override;
    bool Wait(int milliseconds) override;
    void ForgetStop() override;

private:
    void Listen();

    HANDLE output_;
    HANDLE error_;
    UINT formerCodePage_;  // 0 without a console
    bool listening_ = false;
};

// Set by the system's own thread, which runs the handler below, or by halyrigctlw.
HANDLE StopEvent() {
    static const UniqueHandle event(CreateEventW(nullptr, TRUE, FALSE, StopEventName(GetCurrentProcessId()).c_str()));
    return event.get();
}

BOOL WINAPI OnStop(DWORD what) {
    SetEvent(StopEvent());
    if (what == CTRL_CLOSE_EVENT) Sleep(INFINITE);  // Windows ends the process once this returns, and five seconds later anyway
    return TRUE;
}

Output WriteAll(HANDLE to, std::string_view text) {
    while (!text.empty()) {
        DWORD written = 0;
        if (!WriteFile(to, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) || written == 0) {
            const DWORD error = GetLastError();
            return error == ERROR_NO_DATA || error == ERROR_BROKEN_PIPE ? Output::kReaderGone : Output::kRefused;
        }
        text.remove_prefix(written);
    }
    return Output::kWritten;
}

std::function<Output()> Writer(HANDLE to, std::string_view text) {
    return [to, owned = std::string(text)] { return WriteAll(to, owned); };
}

}  // namespace

// UTF-8, on standard error too.
WindowsConsole::WindowsConsole()
    : output_(GetStdHandle(STD_OUTPUT_HANDLE)), error_(GetStdHandle(STD_ERROR_HANDLE)), formerCodePage_(GetConsoleOutputCP()) {
    if (formerCodePage_ != 0) SetConsoleOutputCP(CP_UTF8);
}

// The console outlives the program and is then used by the command prompt.
WindowsConsole::~WindowsConsole() {
    if (formerCodePage_ != 0) SetConsoleOutputCP(formerCodePage_);
}

std::unique_ptr<ConsoleScreen> WindowsConsole::TakeScreen() {
    Listen();
    return MakeConsoleScreen(GetStdHandle(STD_INPUT_HANDLE), output_, StopEvent());
}

Output WindowsConsole::Write(std::string_view utf8, const std::function<bool()>& goOn) {
    return RunWrite(Writer(output_, utf8), goOn);
}

void WindowsConsole::WriteError(std::string_view utf8) { RunShortWrite(Writer(error_, utf8)); }

// Ctrl-C ends the program as long as it has not waited.
std::optional<std::string> WindowsConsole::ReadLine() {
    for (std::string line;;) {
        char typed = 0;
        DWORD got = 0;
        if (!ReadFile(GetStdHandle(STD_INPUT_HANDLE), &typed, 1, &got, nullptr) || got == 0) return std::nullopt;
        if (typed == '\n') return line;
        if (typed != '\r') line += typed;
    }
}

// Only from the first wait or check on, so that Ctrl-C ends a command that never waits as usual.
void WindowsConsole::Listen() {
    if (!listening_) listening_ = SetConsoleCtrlHandler(OnStop, TRUE);
}

bool WindowsConsole::Wait(int milliseconds) {
    Listen();
    return WaitForSingleObject(StopEvent(), static_cast<DWORD>(milliseconds)) == WAIT_TIMEOUT;
}

void WindowsConsole::ForgetStop() { ResetEvent(StopEvent()); }

std::unique_ptr<Console> MakeConsole() { return std::make_unique<WindowsConsole>(); }

}  // namespace twr
