#include "status/bridge_status.h"

#include <algorithm>

#include "core/days.h"
#include "core/record_access.h"

namespace twr {

// Other processes read while the bridge writes, so every field is one atomic access. The folder is written only when the library is
// loaded; a look at that very moment may find a mixture of two paths.
struct StatusBlock {
    std::uint32_t filled;  // 1 once all else stands
    std::uint32_t ticks;
    double startedAt, mappingReadAt, tickedAt;
    std::uint8_t sendNames, degreesTrue, depthInFeet, useTimer;
    std::uint8_t loaded, read, getPosition, setData, setName;
    std::int32_t variables, timer, varRows, remoteRows;
    float readings[kChannelCount];
    char16_t dfwFolder[1024];
};

namespace {

constexpr std::u16string_view kName = u"HalyrigStatus";

StatusBlock* BlockIn(const std::unique_ptr<SharedBlock>& memory) {
    return memory ? static_cast<StatusBlock*>(memory->Data()) : nullptr;
}

void PutFlag(std::uint8_t& field, bool set) { Put(field, static_cast<std::uint8_t>(set)); }

void ForgetReadings(StatusBlock& block) {
    for (float& reading : block.readings) Put(reading, kNoReading);
}

}  // namespace

BridgeStatusWriter::BridgeStatusWriter(SharedMemory& memory, const Clock& clock)
    : clock_(clock), memory_(memory.CreateOrOpen(kName, sizeof(StatusBlock))), block_(BlockIn(memory_)) {
    if (!block_) return;
    // A viewer may have kept the block of an earlier run.
    Put(block_->filled, 0u);
    Put(block_->ticks, 0u);
    Put(block_->tickedAt, 0.0);
    Put(block_->startedAt, UtcNowDays(clock_));
    LibraryLoaded({}, {});
    MappingLoaded({});
    Ticked({});
    Put(block_->ticks, 0u);
    Put(block_->tickedAt, 0.0);
    PutInOrder(block_->filled, 1u);
}

void BridgeStatusWriter::LibraryLoaded(std::u16string_view dfwFolder, const LibraryParts& library) {
    if (!block_) return;
    SetFieldText(block_->dfwFolder, dfwFolder);
    PutFlag(block_->loaded, library.loaded);
    PutFlag(block_->read, library.read);
    PutFlag(block_->getPosition, library.getPosition);
    PutFlag(block_->setData, library.setData);
    PutFlag(block_->setName, library.setName);
}

void BridgeStatusWriter::MappingLoaded(const LoadedMapping& mapping) {
    if (!block_) return;
    ForgetReadings(*block_);
    Put(block_->variables, mapping.variables);
    Put(block_->timer, mapping.timer);
    Put(block_->varRows, mapping.varRows);
    Put(block_->remoteRows, mapping.remoteRows);
    Put(block_->mappingReadAt, UtcNowDays(clock_));
}

void BridgeStatusWriter::Ticked(const Settings& settings) {
    if (!block_) return;
    PutFlag(block_->sendNames, settings.sendNames);
    PutFlag(block_->degreesTrue, settings.degreesTrue);
    PutFlag(block_->depthInFeet, settings.depthInFeet);
    PutFlag(block_->useTimer, settings.useTimer);
    Put(block_->tickedAt, UtcNowDays(clock_));
    Put(block_->ticks, Load(block_->ticks) + 1u);
}

float* BridgeStatusWriter::Readings() const { return block_ ? block_->readings : nullptr; }

std::optional<BridgeStatus> ReadBridgeStatus(SharedMemory& memory) {
    const auto held = memory.OpenExisting(kName, sizeof(StatusBlock));
    const StatusBlock* block = BlockIn(held);
    if (!block || Load(block->filled) == 0) return std::nullopt;
    const auto flag = [](const std::uint8_t& field) { return Load(field) != 0; };
    BridgeStatus status{
        .startedAt = Load(block->startedAt),
        .mappingReadAt = Load(block->mappingReadAt),
        .tickedAt = Load(block->tickedAt),
        .ticks = Load(block->ticks),
        .settings = {.dfwFolder = FieldText(block->dfwFolder),
                     .sendNames = flag(block->sendNames),
                     .degreesTrue = flag(block->degreesTrue),
                     .depthInFeet = flag(block->depthInFeet),
                     .useTimer = flag(block->useTimer)},
        .library = {flag(block->loaded), flag(block->read), flag(block->getPosition), flag(block->setData), flag(block->setName)},
        .mapping = {Load(block->variables), Load(block->timer), Load(block->varRows), Load(block->remoteRows)},
    };
    std::ranges::transform(block->readings, status.readings.begin(), [](const float& reading) { return Load(reading); });
    return status;
}

}  // namespace twr
