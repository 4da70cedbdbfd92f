#include "platform/console.h"

#include "platform/windows/services.h"

namespace twr {
namespace {

// Set by the system's own thread, which runs the handler below.
HANDLE StopEvent() {
    static const UniqueHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    return event.get();
}

BOOL WINAPI OnStop(DWORD) { return SetEvent(StopEvent()); }

}  // namespace

WindowsConsole::WindowsConsole() : output_(GetStdHandle(STD_OUTPUT_HANDLE)) {
    DWORD mode = 0;
    isConsole_ = GetConsoleMode(output_, &mode);
}

std::optional<ConsoleSize> WindowsConsole::Size() const {
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!isConsole_ || !GetConsoleScreenBufferInfo(output_, &info)) return std::nullopt;
    return ConsoleSize{info.srWindow.Right - info.srWindow.Left + 1, info.srWindow.Bottom - info.srWindow.Top + 1};
}

bool WindowsConsole::Write(std::string_view utf8) {
    if (isConsole_) UnderstandText();
    while (!utf8.empty()) {
        DWORD written = 0;
        if (!WriteFile(output_, utf8.data(), static_cast<DWORD>(utf8.size()), &written, nullptr) || written == 0) return false;
        utf8.remove_prefix(written);
    }
    return true;
}

// From the first wait on, so that a command that never waits is ended by Ctrl-C as any other.
bool WindowsConsole::Wait(int milliseconds) {
    if (!listening_) listening_ = SetConsoleCtrlHandler(OnStop, TRUE);
    return WaitForSingleObject(StopEvent(), static_cast<DWORD>(milliseconds)) == WAIT_TIMEOUT;
}

// UTF-8 and the escape sequences that clear the screen and move on it.
void WindowsConsole::UnderstandText() {
    DWORD mode = 0;
    if (GetConsoleMode(output_, &mode))
        SetConsoleMode(output_, mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    SetConsoleOutputCP(CP_UTF8);
}

}  // namespace twr
