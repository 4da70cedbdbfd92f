// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/circumstances.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/wide_text.h"
#include "config/bridge_settings.h"
#include "core/days.h"
#include "core/record_access.h"
#include "mapping/mapping_file.h"
#include "platform/files.h"

namespace twr {
namespace {

bool Feeds(const MappingVar& row, ChannelId channel, BoatSlot boat) {
    return row.channel == static_cast<std::int32_t>(channel) && row.boat == static_cast<std::int32_t>(boat);
}

std::vector<MappingVar> ReadMeant(Xml& xml, std::u16string_view path) {
    std::vector<MappingVar> meant;
    const auto reader = xml.OpenReader(path);
    XmlElement element;
    while (reader && reader->Next(element)) {
        if (MappingVar row; ParseVarElement(element, row)) {
            row.line = element.line;
            meant.push_back(row);
        }
    }
    return meant;
}

}  // namespace

const MappingVar* MappingLook::LineOf(ChannelId channel, BoatSlot boat) const {
    const auto last = std::find_if(mapping.varRows.rbegin(), mapping.varRows.rend(),
                                   [&](const MappingVar& row) { return Feeds(row, channel, boat); });
    return last == mapping.varRows.rend() ? nullptr : &*last;
}

const Finding* MappingLook::FaultOf(ChannelId channel, BoatSlot boat) const {
    for (const Finding& fault : faults) {
        const auto feeds = [&](const MappingVar& row) { return row.line == fault.line && Feeds(row, channel, boat); };
        if (std::ranges::any_of(meant, feeds)) return &fault;
    }
    return nullptr;
}

bool MappingLook::Means(ChannelId channel, BoatSlot boat) const {
    return std::ranges::any_of(meant, [&](const MappingVar& row) { return Feeds(row, channel, boat); });
}

Circumstances::Circumstances(System& system, const CCore& core, const std::optional<std::u16string>& folder)
    : system_(system), services_(system.Core()), folder_(folder) {
    if (core.View()) dataFolder_ = FieldText(core.View()->dataFolder);
    if (dataFolder_.empty()) dataFolder_ = FieldText(Renewed().dataFolder);
    LookAgain();
}

void Circumstances::LookAgain() {
    constexpr double kFilesLast = 5.0 / kSecondsPerDay;
    const auto before = std::pair(bridge ? std::optional(bridge->mapping.readAt) : std::nullopt, settings.dfwFolder);
    now = UtcNowDays(services_.clock);
    name = LookForBridge(system_);
    bridge = ReadBridgeStatus(system_);
    settings = bridge ? bridge->settings : ReadSettings(services_.registry);
    settings.dfwFolder = Trimmed(std::u16string_view(folder_ ? *folder_ : settings.dfwFolder));
    pulse_.Look(bridge, now * kSecondsPerDay);
    standsStill_.reset();
    const bool chosenAgain = before != std::pair(bridge ? std::optional(bridge->mapping.readAt) : std::nullopt, settings.dfwFolder);
    if (chosenAgain) library_.reset();
    if (!chosenAgain && std::fabs(now - filesSince_) < kFilesLast) return;
    variables_.reset();
    mapping_.reset();
    dryRun_.reset();
    filesSince_ = now;
}

const LibraryLook& Circumstances::Library() {
    if (!library_) library_ = LookAtLibrary(services_.files, system_.GetLibraries(), settings.dfwFolder);
    return *library_;
}

const DeckmanCatalogue& Circumstances::Variables() {
    // Deckman's list is not copied if it is locked: only the bridge may write to the data folder.
    if (!variables_) {
        ofList_.found.clear();
        variables_ = FindVariableFile(services_.files, settings.dfwFolder, {}, &ofList_);
    }
    return *variables_;
}

const MappingLook& Circumstances::TheMapping() {
    if (!mapping_) {
        mapping_.emplace();
        mapping_->path = MappingPath();
        mapping_->exists = services_.files.Exists(mapping_->path);
        CollectedFindings faults;
        mapping_->mapping = LoadMapping(services_.xml, mapping_->path, Variables().rows, &faults);
        mapping_->faults = std::move(faults.found);
        mapping_->meant = ReadMeant(services_.xml, mapping_->path);
    }
    return *mapping_;
}

const std::vector<Finding>& Circumstances::PassedOverInVariables() {
    Variables();
    return ofList_.found;
}

std::vector<Finding> Circumstances::PassedOver() {
    std::vector<Finding> found = PassedOverInVariables();
    const std::vector<Finding>& ofMapping = TheMapping().faults;
    found.insert(found.end(), ofMapping.begin(), ofMapping.end());
    return found;
}

std::u16string Circumstances::MappingPath() const {
    return dataFolder_.empty() ? std::u16string() : JoinPath(MappingFolder(), u"halyrig.xml");
}

std::u16string Circumstances::MappingFolder() const { return JoinPath(dataFolder_, u"instruments"); }

bool Circumstances::StandsStill() {
    constexpr int kStepMs = 20;
    if (!bridge) return false;
    if (const auto known = pulse_.StandsStill()) return *known;
    if (standsStill_) return *standsStill_;
    for (int waited = 0; waited < BridgePulse::kStandstillMs; waited += kStepMs) {
        if (!system_.GetConsole().Wait(kStepMs)) return false;  // the user has not the patience
        const auto later = ReadBridgeStatus(system_);
        if (!later || later->ticks != bridge->ticks) return *(standsStill_ = false);
    }
    return *(standsStill_ = true);
}

std::string Circumstances::BridgeWords() {
    if (!bridge) return WithoutBridge().what;
    return StandsStill() ? "the bridge stands still" : pulse_.Words();
}

Fault Circumstances::WithoutBridge() const {
    switch (name.state) {
        case NameLook::kTaken:
            return Fault(Reason::kStatusNotSeen);
        case NameLook::kUnknown:
            return Fault(Reason::kBridgeUnknown, {name.why});
        default:
            return Fault(Reason::kNotRunning);
    }
}

Fault Circumstances::NoVariables() const {
    return Fault(Reason::kNoVariableFile, {Harmless(settings.dfwFolder), ToUtf8(kUsualVariableFile)});
}

const CoreRecord& Circumstances::Renewed() {
    if (!dryRun_) dryRun_ = std::make_unique<DryRun>(services_);
    return dryRun_->Record();
}

}  // namespace twr
