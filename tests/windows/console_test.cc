#include <gtest/gtest.h>

#include "platform/windows/services.h"
#include "platform/windows/unique_handle.h"
#include "support/child_process.h"

namespace twr::testing {
namespace {

constexpr UINT kWestern = 850;

// In a console of its own, which is that of a western command prompt.
const Role kConsole("console", [](const std::vector<std::string>&) {
    FreeConsole();
    if (!AllocConsole()) return 2;
    const UniqueHandle screen(NullIfInvalid(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)));
    const HANDLE pipe = GetStdHandle(STD_OUTPUT_HANDLE);
    SetStdHandle(STD_OUTPUT_HANDLE, screen.get());
    SetConsoleOutputCP(kWestern);
    DWORD before = 0, during = 0, after = 0;
    GetConsoleMode(screen.get(), &before);
    UINT codePage = 0;
    {
        const std::unique_ptr<Console> console = MakeConsole();
        codePage = GetConsoleOutputCP();
        GetConsoleMode(screen.get(), &during);
    }
    GetConsoleMode(screen.get(), &after);
    SetStdHandle(STD_OUTPUT_HANDLE, pipe);
    char text[100];
    std::snprintf(text, sizeof text, "%u %d, then %u %d\n", codePage, (during & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0,
                  GetConsoleOutputCP(), before == after);
    DWORD written = 0;
    WriteFile(pipe, text, static_cast<DWORD>(strlen(text)), &written, nullptr);
    return 0;
});

TEST(WindowsConsole, GivesTheConsoleBackAsItWas) { EXPECT_EQ("65001 1, then 850 1", StartRole("console", {})->ReadLine()); }

}  // namespace
}  // namespace twr::testing
