// What the bridge says of its own run, in a block of shared memory of its own: with it another process can say why a value is
// missing. The bridge reads nothing back.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "config/bridge_settings.h"
#include "core/channel_catalogue.h"
#include "platform/shared_memory.h"

namespace twr {

struct LibraryState {
    bool loaded = false;
    bool reads = false;  // it has Usr_Read
};

// What came of the last load of Deckman's variables and the mapping.
struct LoadedMapping {
    std::int32_t variables = 0;  // TIMER not counted
    std::int32_t varRows = 0;
    double readAt = 0.0;  // days
};

// No variable of an instrument gives it.
inline constexpr float kNoReading = -3.4e38f;

// One look at a running bridge.
struct BridgeStatus {
    Settings settings;  // in force, saved or not; at most 1023 characters of the folder
    LibraryState library;
    LoadedMapping mapping;
    std::uint32_t ticks = 0;                      // ten times a second
    std::optional<double> waitsSince;             // days: since then it waits for a pass, that is for Deckman's library
    double passSeconds = 0.0;                     // how long the last pass took
    std::array<float, kChannelCount> readings{};  // per channel: what Deckman gave last; kNoReading before the first reading
};

struct StatusBlock;

// The bridge's side. Without a block every operation does nothing.
class BridgeStatusWriter {
public:
    explicit BridgeStatusWriter(SharedMemory& memory);

    void LibraryLoaded(std::u16string_view dfwFolder, LibraryState library);
    void MappingLoaded(LoadedMapping mapping);  // forgets the readings
    void BoxesInForce(const Settings& settings);
    void Ticked();

    // Around the two passes of a tick; `now` in days.
    void PassBegins(double now);
    void PassEnds(double now);

    // Where each channel's last reading is noted; nullptr without a block.
    float* Readings() const;

private:
    std::unique_ptr<SharedBlock> memory_;
    StatusBlock* block_ = nullptr;
};

// nullopt if no bridge is running. The block is held only for the look, so that the bridge's end is seen.
std::optional<BridgeStatus> ReadBridgeStatus(SharedMemory& memory);

}  // namespace twr
