// SPDX-License-Identifier: MIT
// watch at a pseudo-terminal, over a record of the test's own. It looks again with each key alone, so that it is silent in between.
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>

#include "core/core.h"
#include "core/days.h"
#include "halyrigctl/commands.h"
#include "support/child_process.h"
#include "support/linux/pseudo_terminal.h"
#include "support/record_bytes.h"
#include "support/test_system.h"

namespace twr::testing {
namespace {

const Role kWatchRole("watch", [](const std::vector<std::string>& arguments) {
    const auto system = SystemOf(arguments);
    return static_cast<int>(RunCommandLine(*system, {"watch", "--interval", "3600000"}));
});

struct WatchTerminalTest : ::testing::Test {
    WatchTerminalTest() {
        const double now = UtcNowDays(test.system->Core().clock);
        for (ChannelId channel = 1; channel <= 40; ++channel) suite.SetChannel(channel, 0, 1.0, now);
    }
    void Open(const std::vector<std::string>& environment = {}) {
        terminal = std::make_unique<PseudoTerminal>("watch", test.Arguments(), environment);
        EXPECT_SHOWS("Scroll");  // stands in the last row, which is drawn last
    }

    TestSystem test;
    CCore suite{test.system->Core()};
    std::unique_ptr<PseudoTerminal> terminal;
};

TEST_F(WatchTerminalTest, ScrollsFiltersAndEndsByKeysAtAnySize) {
    Open();
    EXPECT_SHOWS("  the bridge is not running  ");
    EXPECT_SHOWS("fresh     1>BSP ");
    for (const auto& [keys, shown] : {std::pair("\033OB", " 2>AWA"),
                                      {"\033[5~", " 1>BSP"},
                                      {"\033[6~", "2-22 of 42"},
                                      {"\033OH", "1-21 of 42"},
                                      {"\033OF", "22-42 of"}}) {
        terminal->Type(keys);
        EXPECT_SHOWS(shown);
    }
    terminal->Type("/twqx\x7F\b\033[11~\033[[A");  // function keys as some terminals send them
    EXPECT_SHOWS("/tw_ ");
    EXPECT_SHOWS_NO("BSP");
    terminal->Resize(3, 20);
    EXPECT_SHOWS_NO("Enter Keep");
    EXPECT_SHOWS("f>TWA ");
    terminal->Resize(30, 100);
    EXPECT_SHOWS("last minute");
    terminal->Type("\033");
    EXPECT_SHOWS("BSP");
    terminal->Type("q");
    EXPECT_EQ(0, terminal->Wait());
    EXPECT_TRUE(terminal->GivenBack());
}

TEST_F(WatchTerminalTest, EndsForTheUserAndTheSuiteAndGivesTheTerminalBack) {
    for (const auto& [setting, colours] : {std::pair("X=", true), {"NO_COLOR=", true}, {"NO_COLOR=1", false}}) {
        Open({setting});
        EXPECT_EQ(colours, terminal->HasColours()) << setting;
    }
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"Ctrl-C", [&] { terminal->Type("\x03"); }},
        {"a signal", [&] { terminal->Signal(SIGTERM); }},
        {"the suite", [&] { RecordBytes(suite.View()).SetFlag(35, true); }}};
    for (const auto& [what, end] : rows) {
        SCOPED_TRACE(what);
        Open({"LC_ALL=C"});
        EXPECT_SHOWS("   = ");  // a bar, as a plain character
        end();
        EXPECT_EQ(0, terminal->Wait());
        EXPECT_TRUE(terminal->GivenBack());
    }
    EXPECT_SHOWS("the suite has been asked to close");
}

TEST_F(WatchTerminalTest, EndsThoughNobodyTakesItsOutput) {
    Open();
    for (int i = 0; i < 40; ++i) terminal->Type("\f\f\f\f\f");  // each draws the whole screen
    const auto begun = std::chrono::steady_clock::now();
    terminal->Signal(SIGTERM);
    EXPECT_EQ(0, terminal->WaitBlindly());
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(1));
}

}  // namespace
}  // namespace twr::testing
