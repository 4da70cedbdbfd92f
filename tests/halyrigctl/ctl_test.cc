// SPDX-License-Identifier: MIT
#include <algorithm>

#include "config/bridge_settings.h"
#include "halyrigctl/ctl_fixture.h"
#include "halyrigctl/setup/names.h"

namespace twr::testing {
namespace {

TEST_F(CtlTest, FindsAChannelByNumberOrNameOrTheUsersOwnName) {
    StartSuite();
    Record().SetText(RecordBytes::Channel(172) + 12, u"Jib lead position");
    Record().SetText(RecordBytes::Channel(172) + 76, u"Jib lead positi");
    const std::string last = std::to_string(kChannelCount - 1), beyond = std::to_string(kChannelCount);
    const std::pair<std::optional<ChannelId>, std::vector<std::string>> rows[] = {
        {0, {"0", "Time"}},          {13, {"13", "hdg"}},
        {34, {"Tm on S"}},           {172, {"jib lead position", "Jib lead positi"}},
        {kChannelCount - 1, {last}}, {{}, {beyond, "", "User0", "-1", "xyz", "13x", "99999999999"}}};
    for (const auto& [channel, names] : rows) {
        for (const std::string& name : names) EXPECT_EQ(channel, FindChannel(*suite, name)) << name;
    }
}

TEST_F(CtlTest, NoTextOfTheRecordCommandsTheTerminal) {
    StartSuite({{kSail, 1.0}, {172, 1.0}});
    Record().SetText(1780, u"A\x1b[31m\u0085\u007F\u202E2");
    Record().SetText(RecordBytes::Channel(172) + 76, u"Lead\a\u009B");
    ExpectSaid(0, {{"get sail", {"text     A\u00B7[31m\u00B7\u00B7\u00B72\n"}},
                   {"get 172", {"channel  172 Lead\u00B7\u00B7\n"}},
                   {"watch --snapshots 1", {"A\u00B7[31m\u00B7\u00B7\u00B72", " 172  Lead\u00B7\u00B7 "}},
                   {"get sail --json", {R"("text":"A\u001b[31m\u0085\u007f\u202e2")"}}});
    ExpectSaid(2, {{"get speed\x1b", {"there is no channel speed\u00B7;"}},
                   {"bogus\x1b", {"halyrigctl: there is no command or option bogus\u00B7; see 'halyrigctl --help'\n"}}});
}

TEST_F(CtlTest, EveryHelpEndsWithAnExampleThatIsUnderstood) {
    std::vector<std::string> commands = {"map suggest", "map add", "map add-remote", "map remove", "map remove-remote"};
    const std::string all = Said("--help"), example = "\nExample: halyrigctl ";
    for (const std::string& line : LinesOf(all)) {
        if (line.starts_with("  halyrigctl ")) commands.push_back(line.substr(13, line.find(' ', 13) - 13));
    }
    EXPECT_LE(20u, commands.size());
    for (const std::string& command : commands) {
        const std::string said = Said(command + " --help"),
                          typed = said.substr(std::min(said.size(), said.rfind(example) + example.size()));
        EXPECT_TRUE(typed.starts_with(command)) << said;
        EXPECT_TRUE(command.starts_with("map ") || all.find("  halyrigctl " + typed) != all.npos) << typed;
        std::istringstream words(typed);
        EXPECT_NE(kMisunderstood, RunCommandLine(*this, {std::istream_iterator<std::string>(words), {}})) << typed;
    }
}

TEST_F(CtlTest, QuitWaitsUntilAllHaveLeft) {
    // leaves: ms after which the suite lets go of the record
    // patience: ms after which the user has enough
    const std::tuple<const char*, const char*, int, int, int, int> rows[] = {
        {"all leave", "quit", 300, 20000, 400, 0},
        {"one stays", "quit", 20000, 20000, 10000, 1},
        {"the user does not wait", "quit", 20000, 500, 500, 1},
        {"not to be waited for", "quit --no-wait", 0, 20000, 0, 0}};
    for (const auto& [what, typed, leaves, patience, waited, status] : rows) {
        SCOPED_TRACE(what);
        StartSuite();
        console.waited = 0;
        console.goOn = [&, leave = leaves, enough = patience] {
            if (console.waited >= leave) suite.reset();
            return console.waited < enough;
        };
        const std::string said = Said(typed, status);
        ExpectIn(said, {"Asked the programs of the suite to close.\n"});
        EXPECT_EQ(status == 1, said.find("still hold the record") != std::string::npos) << said;
        EXPECT_EQ(waited, console.waited);
        EXPECT_TRUE(!suite || suite->QuitRequested());
        suite.reset();
        EXPECT_FALSE(Held());
    }
}

}  // namespace
}  // namespace twr::testing
