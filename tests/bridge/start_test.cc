// SPDX-License-Identifier: MIT
// Programs of the suite that start at the same moment. One of them makes the record and fills it from the registry, and the others
// read in it meanwhile. Nobody waits, and yet all must come to the data folder that the registry names.
#include <iostream>

#include "bridge_fixture.h"
#include "core/record_access.h"
#include "support/child_process.h"

namespace twr::testing {
namespace {

// Runs the bridge again and again. It goes on from each line that it has written when it is sent one.
const Role bridge("bridge among others", [](const std::vector<std::string>& arguments) {
    const auto system = SystemOf(arguments);
    BridgeMachine machine(*system);
    machine.deckman.Install(ReadSettings(machine.Core().registry).dfwFolder);
    std::string line;
    const auto tell = [&](const std::string& told) {
        std::cout << told << std::endl;
        return static_cast<bool>(std::getline(std::cin, line));
    };
    machine.host.script = [&] {
        machine.deckman.reads.clear();
        tell("open");
        machine.host.Tick();
        tell(::testing::PrintToString(machine.deckman.reads));
    };
    while (tell("ready")) CHalyrig32App(machine).InitInstance();
    return 0;
});

TEST(Start, AllComeToTheDataFolderOfTheRegistry) {
    const TestSystem test;
    test.folder.Write("Deckman/Data/J_vars06.d", "[variables]\n12 X u 1 1 1\n13 Y u 1 1 1\n");
    test.folder.Write("ProgramData/Tidewright/instruments/halyrig.xml", "<halyrig><var twr='1' dfw='12'/></halyrig>");
    test.folder.Write("Ashore/instruments/halyrig.xml", "<halyrig><var twr='1' dfw='13'/></halyrig>");
    Registry& registry = test.system->Core().registry;
    WriteSettings(registry, {.dfwFolder = test.folder.File("Deckman")});
    registry.Write(u"Software\\Tidewright\\core", u"DataFolder", StringValue(test.folder.File("Ashore")));

    std::vector<std::unique_ptr<ChildProcess>> programs(3);
    for (auto& program : programs) program = StartRole("bridge among others", test.Arguments());
    const auto allSay = [&](const std::string& expected) {
        bool right = true;
        for (const auto& program : programs) right &= program->ReadLine() == expected;
        return right;
    };
    const auto sendOn = [&] {
        for (const auto& program : programs) program->WriteLine("");
    };
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(allSay("ready"));
        sendOn();
        ASSERT_TRUE(allSay("open"));
        sendOn();
        ASSERT_TRUE(allSay("{ 13 }")) << "the wrong mapping in round " << round;
        const CCore guest(test.system->Core(), Attachment::kOpenOnly);
        ASSERT_NE(nullptr, guest.View());
        ASSERT_TRUE(FieldTextIs(guest.View()->dataFolder, test.folder.File("Ashore"))) << "in round " << round;
        sendOn();
    }
    EXPECT_TRUE(allSay("ready")) << "all have let go of the record";
}

}  // namespace
}  // namespace twr::testing
