// SPDX-License-Identifier: MIT
// What another process can see of the bridge: whether it runs, and what it says of its own run, by which can be said why a value is
// missing. The bridge reads nothing back, and nothing that it does depends on whether it can say it.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "config/bridge_settings.h"
#include "platform/system.h"

namespace twr {

// The name that the running bridge has.
inline constexpr std::u16string_view kBridgeName = u"Halyrig";

// The name that whoever publishes a recording has, so that nobody takes it for what is measured now.
inline constexpr std::u16string_view kReplayName = u"HalyrigReplay";

// What is wrong, and what to do, if a bridge runs whose record no program finds any more.
inline constexpr const char* kRecordLost =
    "the bridge is running, but the name of its record has been removed, so no other program finds it";
inline constexpr const char* kRecordLostToDo =
    "it ends by itself, unless it hangs; else end it by force, then start it again. The guide says what removes names, and how to "
    "prevent that";

struct LibraryState {
    bool loaded = false;
    bool reads = false;  // it has the function that reads a variable
};

// What came of the last load of Deckman's variables and the mapping.
struct LoadedMapping {
    std::int32_t variables = 0;  // TIMER not counted
    std::int32_t varRows = 0;
    double readAt = 0.0;  // days
};

// A line of the mapping as the bridge has read it.
struct MappedLine {
    std::int32_t channel, boat;
    std::int32_t variable;                        // Deckman's number
    std::optional<float> reading = std::nullopt;  // what Deckman gave last; nullopt before the first
};

// One look at a running bridge.
struct BridgeStatus {
    Settings settings;  // in force, saved or not; at most 1023 characters of the folder
    LibraryState library;
    LoadedMapping mapping;
    std::uint32_t ticks = 0;           // ten times a second
    std::int64_t sinceTickMs = 0;      // since the last one, or since it started
    std::optional<double> waitsSince;  // days: since then it waits for a pass, that is for Deckman's library
    double passSeconds = 0.0;          // how long the last pass took
    std::vector<MappedLine> lines;     // in their order, the first 512

    // The line that feeds the channel of a boat; of several the last, whose value stays. nullptr if none does.
    const MappedLine* LineOf(std::int32_t channel, std::int32_t boat) const;

    // It has not ticked for a second: it is stopped, or something holds it up.
    bool StandsStill() const { return sinceTickMs > 1000; }
};

struct StatusBlock;

// The bridge's side. Without a block every operation does nothing.
class BridgeStatusWriter {
public:
    BridgeStatusWriter(StatusBoard& board, const Clock& clock);

    void LibraryLoaded(std::u16string_view dfwFolder, LibraryState library);
    void MappingLoaded(LoadedMapping mapping, std::span<const MappedLine> lines = {});
    void BoxesInForce(const Settings& settings);
    void Ticked();

    // Around the two passes of a tick; `now` in days.
    void PassBegins(double now);
    void PassEnds(double now);

    // What Deckman gave for one of the lines, by its place among them.
    void Noted(std::size_t line, float reading);

private:
    const Clock& clock_;
    std::unique_ptr<SharedBlock> memory_;
    StatusBlock* block_ = nullptr;
};

// Whether the bridge runs.
NameLook LookForBridge(System& system);

// nullopt if the bridge is not running, or can't be seen.
std::optional<BridgeStatus> ReadBridgeStatus(System& system);

// Whether the bridge runs and its record's name is gone. For a moment this is so at each start and end of the bridge: more than a
// second of it counts, in which a bridge that ticks would have noticed.
bool RecordIsLost(System& system);

}  // namespace twr
