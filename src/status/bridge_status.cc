// SPDX-License-Identifier: MIT
#include "status/bridge_status.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "core/core.h"
#include "core/days.h"
#include "core/record_access.h"

namespace twr {

// One line of the mapping. What has not been read has no reading.
struct LineBlock {
    std::int32_t channel, boat, variable;
    std::uint32_t isRead;
    float reading;
};

// Other processes read while the bridge writes, so every number is one atomic access. The folder is written only when the library
// is loaded; a look at that very moment may find a mixture of two paths.
struct StatusBlock {
    std::uint32_t version;  // kVersion once all else stands
    std::uint8_t sendNames, degreesTrue, depthInFeet, useTimer;
    std::uint8_t loaded, reads;
    std::uint8_t gap[2];
    std::uint32_t ticks;
    std::int32_t variables, varRows;
    double readAt;
    double passBegan;  // 0 between passes
    double passSeconds;
    std::int64_t tickedAt;  // ms of the steady clock
    std::uint32_t lineCount;
    LineBlock lines[512];
    std::uint32_t endGap;
    char16_t dfwFolder[1024];
};
static_assert(sizeof(StatusBlock) == 12352 && offsetof(StatusBlock, sendNames) == 4 && offsetof(StatusBlock, loaded) == 8 &&
              offsetof(StatusBlock, ticks) == 12 && offsetof(StatusBlock, variables) == 16 && offsetof(StatusBlock, readAt) == 24 &&
              offsetof(StatusBlock, passBegan) == 32 && offsetof(StatusBlock, passSeconds) == 40 &&
              offsetof(StatusBlock, tickedAt) == 48 && offsetof(StatusBlock, lines) == 60 &&
              offsetof(StatusBlock, dfwFolder) == 10304);

namespace {

constexpr std::uint32_t kVersion = 2;  // of the layout
constexpr int kLooks = 15, kBetweenLooksMs = 100;

StatusBlock* BlockIn(const std::unique_ptr<SharedBlock>& memory) {
    return memory ? static_cast<StatusBlock*>(memory->Data()) : nullptr;
}

void PutFlag(std::uint8_t& field, bool set) { Put(field, static_cast<std::uint8_t>(set)); }

bool IsSet(const std::uint8_t& field) { return Load(field) != 0; }

}  // namespace

BridgeStatusWriter::BridgeStatusWriter(StatusBoard& board, const Clock& clock)
    : clock_(clock), memory_(board.Post(kBridgeName, sizeof(StatusBlock))), block_(BlockIn(memory_)) {
    if (!block_) return;
    Put(block_->tickedAt, clock_.SteadyMs());
    MappingLoaded({});
    BoxesInForce({});
    PutInOrder(block_->version, kVersion);
}

void BridgeStatusWriter::LibraryLoaded(std::u16string_view dfwFolder, LibraryState library) {
    if (!block_) return;
    SetFieldText(block_->dfwFolder, dfwFolder);
    PutFlag(block_->loaded, library.loaded);
    PutFlag(block_->reads, library.reads);
}

void BridgeStatusWriter::MappingLoaded(LoadedMapping mapping, std::span<const MappedLine> lines) {
    if (!block_) return;
    const std::size_t count = std::min(lines.size(), std::size(block_->lines));
    PutInOrder(block_->lineCount, std::uint32_t{0});
    for (std::size_t i = 0; i < count; ++i) {
        LineBlock& line = block_->lines[i];
        Put(line.isRead, std::uint32_t{0});
        Put(line.channel, lines[i].channel);
        Put(line.boat, lines[i].boat);
        Put(line.variable, lines[i].variable);
    }
    PutInOrder(block_->lineCount, static_cast<std::uint32_t>(count));
    Put(block_->variables, mapping.variables);
    Put(block_->varRows, mapping.varRows);
    Put(block_->readAt, mapping.readAt);
}

void BridgeStatusWriter::BoxesInForce(const Settings& settings) {
    if (!block_) return;
    PutFlag(block_->sendNames, settings.sendNames);
    PutFlag(block_->degreesTrue, settings.degreesTrue);
    PutFlag(block_->depthInFeet, settings.depthInFeet);
    PutFlag(block_->useTimer, settings.useTimer);
}

void BridgeStatusWriter::Ticked() {
    if (!block_) return;
    Put(block_->tickedAt, clock_.SteadyMs());
    Put(block_->ticks, Load(block_->ticks) + 1);
}

void BridgeStatusWriter::PassBegins(double now) {
    if (block_) Put(block_->passBegan, now);
}

void BridgeStatusWriter::PassEnds(double now) {
    if (!block_) return;
    Put(block_->passSeconds, (now - Load(block_->passBegan)) * kSecondsPerDay);
    Put(block_->passBegan, 0.0);
}

void BridgeStatusWriter::Noted(std::size_t line, float reading) {
    if (!block_ || line >= Load(block_->lineCount)) return;
    Put(block_->lines[line].reading, reading);
    Put(block_->lines[line].isRead, std::uint32_t{1});
}

const MappedLine* BridgeStatus::LineOf(std::int32_t channel, std::int32_t boat) const {
    const auto last = std::find_if(lines.rbegin(), lines.rend(),
                                   [&](const MappedLine& line) { return line.channel == channel && line.boat == boat; });
    return last == lines.rend() ? nullptr : &*last;
}

NameLook LookForBridge(System& system) { return system.GetInstance().Look(kBridgeName); }

std::optional<BridgeStatus> ReadBridgeStatus(System& system) {
    if (LookForBridge(system).state == NameLook::kFree) return std::nullopt;
    const auto seen = system.GetStatusBoard().See(kBridgeName, sizeof(StatusBlock));
    const StatusBlock* block = BlockIn(seen);
    if (!block || Load(block->version) != kVersion) return std::nullopt;
    const double began = Load(block->passBegan);
    BridgeStatus status{
        .settings = {.dfwFolder = FieldText(block->dfwFolder),
                     .sendNames = IsSet(block->sendNames),
                     .degreesTrue = IsSet(block->degreesTrue),
                     .depthInFeet = IsSet(block->depthInFeet),
                     .useTimer = IsSet(block->useTimer)},
        .library = {IsSet(block->loaded), IsSet(block->reads)},
        .mapping = {Load(block->variables), Load(block->varRows), Load(block->readAt)},
        .ticks = Load(block->ticks),
        .sinceTickMs = system.Core().clock.SteadyMs() - Load(block->tickedAt),
        .waitsSince = began != 0.0 ? std::optional(began) : std::nullopt,
        .passSeconds = Load(block->passSeconds),
        .lines = {},
    };
    const std::span<const LineBlock> lines(block->lines);
    for (const LineBlock& line : lines.first(std::min<std::size_t>(Load(block->lineCount), lines.size()))) {
        status.lines.push_back({Load(line.channel), Load(line.boat), Load(line.variable),
                                Load(line.isRead) != 0 ? std::optional(Load(line.reading)) : std::nullopt});
    }
    return status;
}

bool RecordIsLost(System& system) {
    for (int looks = 0; looks < kLooks; ++looks) {
        if (LookForBridge(system).state != NameLook::kTaken || CCore::RecordHasName(system.Core())) return false;
        if (!system.GetConsole().Wait(kBetweenLooksMs)) return false;
    }
    return true;
}

}  // namespace twr
