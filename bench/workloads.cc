// SPDX-License-Identifier: MIT
// Fixed pieces of work for a count of their instructions: the machine is one of fakes, and its clock moves on by 100 ns a reading,
// so every run does exactly the same. Callgrind counts within Counted() alone.
//   halyrig_workloads           prints the names
//   halyrig_workloads NAME      does the work once uncounted and once counted
#include <cstdio>
#include <functional>
#include <string_view>

#include "bridge.h"
#include "deckman/remote_text.h"
#include "streams/follower.h"
#include "streams/json_lines.h"
#include "support/fakes.h"

extern "C" [[gnu::noinline]] void Counted(const std::function<void()>& work) { work(); }

namespace twr {
namespace {

class SteppingClock final : public Clock {
public:
    std::int64_t Ticks() const override { return ++ticks_; }

private:
    mutable std::int64_t ticks_ = 17950464000000000;  // 2026-11-19 00:00 UTC
};

class NoLibraries final : public Libraries {
public:
    std::unique_ptr<Library> Load(std::u16string_view) override { return nullptr; }
};

struct Machine {
    explicit Machine(BoatSlot boats = 1) : bridge(services, libraries, kChannelCount, boats) {
        bridge.PublishAll();
        bridge.Tick();
    }

    testing::FakeMachine fakes;
    SteppingClock clock;
    NoLibraries libraries;
    CoreServices services{clock, fakes.zone, fakes.memory, fakes.registry, fakes.files, fakes.xml, fakes.desktop};
    Bridge bridge;
};

void Twice(const std::function<void()>& work) {
    work();
    Counted(work);
}

void Publish(BoatSlot boats) {
    Machine machine(boats);
    Twice([&] { machine.bridge.PublishAll(); });
}

void Tick(bool changing) {
    Machine machine;
    Twice([&] {
        if (changing) Bridge::Change();
        machine.bridge.Tick();
    });
}

void ReadAll() {
    const Machine machine;
    Twice([&] {
        double value;
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
            machine.bridge.core.GetFreshChannel(channel, value, 0, false, true, kNoValue);
        }
    });
}

void TextOfRemotes() {
    const Machine machine;
    Twice([&] {
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) {
            ToRemoteField(RemoteValueText(machine.bridge.core, channel, 12.34));
        }
    });
}

void LookAndJsonLines() {
    Machine machine;
    Follower follower(machine.bridge.core, machine.clock, {});
    std::string out;
    Twice([&] {
        out.clear();
        machine.bridge.PublishAll();
        for (const Change& change : follower.Look()) AppendJsonLine(out, change, machine.bridge.core);
    });
}

constexpr struct {
    std::string_view name;
    void (*run)();
} kWorkloads[] = {
    {"publish_all_channels", [] { Publish(1); }},
    {"publish_all_channels_100_boats", [] { Publish(kBoatCount); }},
    {"quiet_tick_414_rows", [] { Tick(false); }},
    {"busy_tick_414_rows", [] { Tick(true); }},
    {"read_all_channels", ReadAll},
    {"text_of_all_remotes", TextOfRemotes},
    {"publish_and_json_lines", LookAndJsonLines},
};

}  // namespace
}  // namespace twr

int main(int argc, char** argv) {
    for (const auto& workload : twr::kWorkloads) {
        if (argc < 2) std::puts(workload.name.data());
        if (argc == 2 && workload.name == argv[1]) {
            workload.run();
            return 0;
        }
    }
    return argc < 2 ? 0 : 2;
}
