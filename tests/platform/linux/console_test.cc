#include "platform/console.h"

#include <gtest/gtest.h>
#include <signal.h>

#include "platform/linux/services.h"
#include "support/child_process.h"
#include "support/linux/pseudo_terminal.h"

namespace twr::testing {
namespace {

const Role kSize("console size", [](const std::vector<std::string>&) {
    const auto size = MakeConsole()->Size();
    std::printf("%s\n", size ? (std::to_string(size->columns) + "x" + std::to_string(size->rows)).c_str() : "no pictures");
    std::fflush(stdout);
    return getchar() == 'q' ? 0 : 1;
});

// Asks for signals only while its output is held up.
const Role kTicking("console ticking", [](const std::vector<std::string>&) {
    const auto console = MakeConsole();
    Output output = console->Wait(0) ? Output::kWritten : Output::kRefused;
    while (output == Output::kWritten) output = console->Write("tick ", [&] { return console->Wait(0); });
    return output == Output::kGivenUp ? 0 : 1;
});

TEST(PosixConsole, EndsByASignalWhileItsTerminalIsHeld) {
    PseudoTerminal terminal("console ticking", {});
    ASSERT_TRUE(terminal.Shows("tick"));
    terminal.Type("\x13");  // Ctrl-S
    terminal.Signal(SIGTERM);
    EXPECT_EQ(0, terminal.Wait());
}

TEST(PosixConsole, DrawsOnlyOnATerminalThatTakesPictures) {
    const std::pair<const char*, const char*> rows[] = {
        {"TERM=xterm", "80x24"}, {"TERM=dumb", "no pictures"}, {"TERM=", "no pictures"}};
    for (const auto& [term, shown] : rows) EXPECT_TRUE(PseudoTerminal("console size", {}, {term}).Shows(shown)) << term;
}

}  // namespace
}  // namespace twr::testing
