// SPDX-License-Identifier: MIT
// The whole bridge over a scripted host and a Deckman of the test's own; the rest of the machine is real, under the test's own
// roots.
#pragma once
#include <gtest/gtest.h>

#include "bridge/application.h"
#include "bridge/controls.h"
#include "config/bridge_settings.h"
#include "core/core.h"
#include "support/record_bytes.h"
#include "support/scripted_host.h"
#include "support/stub_deckman.h"
#include "support/test_system.h"

namespace twr::testing {

class BridgeMachine : public System, public Instance, public Executable, public CrashReports {
public:
    explicit BridgeMachine(System& real) : console(&real.GetConsole()), real_(real) {
        host.beforeTick = [this] { clock.AdvanceMs(100); };
    }

    CoreServices Core() override {
        const CoreServices real = real_.Core();
        return {clock, real.zone, real.memory, real.registry, real.files, real.xml, host};
    }
    Libraries& GetLibraries() override { return *libraries; }
    Instance& GetInstance() override { return *this; }
    StatusBoard& GetStatusBoard() override { return real_.GetStatusBoard(); }
    Executable& GetExecutable() override { return *this; }
    Console& GetConsole() override { return *console; }
    CrashReports& GetCrashReports() override { return *this; }

    bool Claim(std::u16string_view name) override { return claimed = name, !otherRuns; }
    NameLook Look(std::u16string_view) const override { return {host.timerRuns ? NameLook::kTaken : NameLook::kFree}; }
    void RaiseOther(std::u16string_view caption) override { raised = caption; }
    std::optional<std::array<std::uint16_t, 4>> FileVersion() const override { return version; }
    void Prepare(std::u16string_view file, std::u16string_view calls) override { crashFile = file, crashCalls = calls; }
    void Calling(bool calls) override { calling = calls; }

    FakeClock clock;
    ScriptedHost host;
    StubDeckman deckman;
    Libraries* libraries = &deckman;
    Console* console;
    bool otherRuns = false;
    std::u16string claimed, raised, crashFile, crashCalls;
    bool calling = false;
    std::optional<std::array<std::uint16_t, 4>> version = {{2, 5, 1, 0}};

private:
    System& real_;
};

struct BridgeTest : ::testing::Test {
    static constexpr const char* kMappingFile = "ProgramData/Tidewright/instruments/halyrig.xml";

    BridgeTest() { deckman.Install(stored->dfwFolder); }

    // Variables as "12 HDG\n", each completed to a whole row.
    void Variables(const std::string& list, const std::string& deckmanFolder = "Deckman") {
        std::string bytes = "[variables]\n";
        for (const char c : list) bytes += c == '\n' ? std::string(" u 1 1 1\n") : std::string(1, c);
        test.folder.Write(deckmanFolder + "/Data/J_vars06.d", bytes);
    }

    void MappingXml(const std::string& elements, const char* file = kMappingFile) {
        test.folder.Write(file, "<halyrig>" + elements + "</halyrig>");
    }

    // Writes no more than it must, since the disk takes its time for each value.
    void Save(const Settings& settings) {
        const Settings saved = ReadSettings(Stored());
        const bool boxes = saved.sendNames == settings.sendNames && saved.degreesTrue == settings.degreesTrue &&
                           saved.depthInFeet == settings.depthInFeet && saved.useTimer == settings.useTimer;
        if (!boxes) WriteSettings(Stored(), settings);
        if (saved.dfwFolder != settings.dfwFolder) WriteFolder(Stored(), settings.dfwFolder);
    }

    // Runs the program with what is stored while the script plays, beside another holder of a new record.
    void Run(std::function<void()> script) {
        other.reset();
        other = std::make_unique<CCore>(machine.Core());
        record = RecordBytes(other->View());
        beforeStart();
        if (stored) Save(*stored);
        host.boxes.clear();
        host.remarks.clear();
        host.script = std::move(script);
        EXPECT_FALSE(CHalyrig32App(machine).InitInstance());
    }

    Registry& Stored() { return machine.Core().registry; }
    double Own(ChannelId channel) const { return record.F64(RecordBytes::Value(0, channel)); }
    std::vector<int> TickReads() {
        deckman.reads.clear();
        host.Tick();
        return deckman.reads;
    }

    TestSystem test;
    BridgeMachine machine{*test.system};
    ScriptedHost& host = machine.host;
    StubDeckman& deckman = machine.deckman;
    std::optional<Settings> stored = Settings{.dfwFolder = test.folder.File("Deckman"), .depthInFeet = false};
    std::function<void()> beforeStart = [] {};
    std::unique_ptr<CCore> other;
    RecordBytes record{nullptr};
};

}  // namespace twr::testing
