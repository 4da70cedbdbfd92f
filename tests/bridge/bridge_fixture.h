// The whole bridge over a scripted host, a Deckman of the test's own, and real files in a temporary folder.
#pragma once
#include <gtest/gtest.h>

#include "bridge/application.h"
#include "bridge/controls.h"
#include "core/core.h"
#include "platform/paths.h"
#include "support/fakes.h"
#include "support/record_bytes.h"
#include "support/scripted_host.h"
#include "support/stub_deckman.h"
#include "support/temp_folder.h"

namespace twr::testing {

class FakeInstance : public Instance {
public:
    bool Claim(std::u16string_view name) override {
        claimed = name;
        return !otherRuns;
    }
    void RaiseOther(std::u16string_view caption) override { raised = caption; }

    bool otherRuns = false;
    std::u16string claimed, raised;
};

class FakeExecutable : public Executable {
public:
    std::optional<std::array<std::uint16_t, 4>> FileVersion() const override { return version; }
    std::optional<std::array<std::uint16_t, 4>> version = {{2, 5, 1, 0}};
};

class BridgeMachine : public System {
public:
    BridgeMachine() : real(MakeSystem({.programData = folder.Text()})) {}

    CoreServices Core() override {
        // Without a record the log goes to the root of the drive.
        Files& files = memory.failCreate ? rootFiles : real->Core().files;
        return {clock, zone, memory, registry, files, real->Core().xml, host};
    }
    Libraries& GetLibraries() override { return deckman; }
    Instance& GetInstance() override { return instance; }
    Executable& GetExecutable() override { return executable; }
    Console& GetConsole() override { return real->GetConsole(); }

    TempFolder folder;
    std::unique_ptr<System> real;
    FakeClock clock;
    FakeZone zone;
    FakeMemory memory;
    FakeFiles rootFiles;
    FakeRegistry registry;
    ScriptedHost host;
    StubDeckman deckman;
    FakeInstance instance;
    FakeExecutable executable;
};

class BridgeTest : public ::testing::Test {
protected:
    BridgeTest() {
        machine.host.beforeTick = [this] { machine.clock.AdvanceMs(100); };
        Install("Deckman");
        SaveSetting(u"DfwFolder", StringValue(machine.folder.File("Deckman")));
        SaveSetting(u"DfwDepth", DwordValue(0));
    }

    // Puts a library into a folder of the machine.
    void Install(const std::string& folder) {
        machine.deckman.installed.insert(JoinPath(machine.folder.File(folder), std::u16string(u"ShDfW2").append(kLibrarySuffix)));
    }

    void SaveSetting(std::u16string_view name, const RegistryValue& value) {
        machine.registry.Write(u"Software\\Tidewright\\Halyrig32\\settings", name, value);
    }
    std::optional<RegistryValue> Setting(std::u16string_view name) const {
        return machine.registry.Read(u"Software\\Tidewright\\Halyrig32\\settings", name);
    }

    // Variables as "12 HDG\n", each completed to a whole row.
    void Variables(const std::string& list, const std::string& folder = "Deckman") {
        std::string bytes = "[variables]\n";
        for (const char c : list) bytes += c == '\n' ? std::string(" u 1 1 1\n") : std::string(1, c);
        machine.folder.Write(folder + "/Data/J_vars06.d", bytes);
    }

    void MappingXml(const std::string& elements) {
        machine.folder.Write("Tidewright/instruments/halyrig.xml", "<halyrig>" + elements + "</halyrig>");
    }

    // One variable 12 called X, mapped to a channel.
    void MapOne(ChannelId channel) {
        Variables("12 X\n");
        MappingXml("<var twr='" + std::to_string(channel) + "' dfw='12'/>");
    }

    // Runs the program while the script plays, beside another holder of the record.
    void Run(std::function<void()> script) {
        other = std::make_unique<CCore>(machine.Core());
        record = std::make_unique<RecordBytes>(other->View());
        machine.host.script = std::move(script);
        EXPECT_FALSE(CHalyrig32App(machine).InitInstance());
    }

    double Own(ChannelId channel) const { return record->F64(RecordBytes::Value(0, channel)); }
    double OwnTime(ChannelId channel) const { return record->F64(RecordBytes::Time(0, channel)); }

    BridgeMachine machine;
    ScriptedHost& host = machine.host;
    StubDeckman& deckman = machine.deckman;
    std::unique_ptr<CCore> other;
    std::unique_ptr<RecordBytes> record;
};

}  // namespace twr::testing
