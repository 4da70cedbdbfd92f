// What the bridge says of its own run, in a block of shared memory of its own: with it another process can say why a value is
// missing. The bridge reads nothing back.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "config/bridge_settings.h"
#include "core/channel_catalogue.h"
#include "platform/clock.h"
#include "platform/shared_memory.h"

namespace twr {

// Which of the library's functions were found.
struct LibraryParts {
    bool loaded = false;
    bool read = false, getPosition = false, setData = false, setName = false;
};

// What came of the last load of Deckman's variables and the mapping.
struct LoadedMapping {
    std::int32_t variables = 0;  // TIMER not counted
    std::int32_t timer = -1;     // the number of TIMER, -1 if there is none
    std::int32_t varRows = 0;
    std::int32_t remoteRows = 0;
};

// One look at a running bridge.
struct BridgeStatus {
    double startedAt = 0.0;      // days
    double mappingReadAt = 0.0;  // days
    double tickedAt = 0.0;       // days, 0 before the first tick
    std::uint32_t ticks = 0;     // since the start
    Settings settings;           // in force, saved or not; of the folder as much as 1023 characters
    LibraryParts library;
    LoadedMapping mapping;
    std::array<float, kChannelCount> readings{};  // per channel: what Deckman gave last; kNoReading before the first reading
};

// No variable of an instrument gives it.
inline constexpr float kNoReading = -3.4e38f;

struct StatusBlock;

// The bridge's side. Without a block every operation does nothing.
class BridgeStatusWriter {
public:
    BridgeStatusWriter(SharedMemory& memory, const Clock& clock);

    void LibraryLoaded(std::u16string_view dfwFolder, const LibraryParts& library);
    void MappingLoaded(const LoadedMapping& mapping);  // forgets the readings
    void Ticked(const Settings& settings);

    // Where each channel's last reading is noted; nullptr without a block.
    float* Readings() const;

private:
    const Clock& clock_;
    std::unique_ptr<SharedBlock> memory_;
    StatusBlock* block_ = nullptr;
};

// nullopt if no bridge is running. The block is held only for the look, so that the bridge's end is seen.
std::optional<BridgeStatus> ReadBridgeStatus(SharedMemory& memory);

}  // namespace twr
