// SPDX-License-Identifier: MIT
#include "halyrigctl/setup/circumstances.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/numbers.h"
#include "base/wide_text.h"
#include "config/bridge_settings.h"
#include "core/days.h"
#include "core/record_access.h"
#include "deckman/deckman_library.h"
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
    for (const Finding& found : faults) {
        const auto feeds = [&](const MappingVar& row) { return row.line == found.line && Feeds(row, channel, boat); };
        if (std::ranges::any_of(meant, feeds)) return &found;
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
    pulse_.Look(bridge, static_cast<double>(services_.clock.SteadyMs()) / 1000);
    const bool chosenAgain = before != std::pair(bridge ? std::optional(bridge->mapping.readAt) : std::nullopt, settings.dfwFolder);
    if (chosenAgain) library_.reset();
    if (!chosenAgain && std::fabs(now - filesSince_) < kFilesLast) return;
    variables_.reset();
    mapping_.reset();
    dryRun_.reset();
    filesSince_ = now;
}

const LibraryLook& Circumstances::Library() {
    if (!library_) {
        library_ = LookAtLibrary(services_.files, system_.GetLibraries(), settings.dfwFolder);
        library_->fault = CauseOf(library_->fault);
    }
    return *library_;
}

// Lost settings may be why the folder is wrong. Without one a user may begin with the stand-in.
Fault Circumstances::CauseOf(Fault libraryFault) {
    if (libraryFault.reason != Reason::kNoFolderChosen && libraryFault.reason != Reason::kFolderMissing) return libraryFault;
    CollectedFindings heard;
    services_.registry.Check(heard);
    for (const Finding& finding : heard.found) {
        constexpr Flaw kLosing[] = {Flaw::kStoreNotRead, Flaw::kKeyNotRead, Flaw::kOtherKey, Flaw::kLineNotRead};
        if (folder_ || std::ranges::find(kLosing, finding.flaw) == std::end(kLosing)) continue;
        const Fault why = Because(finding, Reason::kListDamaged);
        const bool denied = why.reason == Reason::kNotPermitted;
        return Fault(Reason::kSettingsNotRead, {why.what},
                     why.todo + (denied ? "" : "; or move the file away, then 'halyrigctl choose FOLDER'"));
    }
    for (const std::u16string& folder : system_.GetExecutable().StandInFolders()) {
        const bool isThere = services_.files.Exists(DeckmanLibrary::PathIn(folder));
        if (isThere && libraryFault.reason == Reason::kNoFolderChosen) {
            libraryFault.todo += ", or the stand-in's, " + Harmless(folder);
            break;
        }
    }
    return libraryFault;
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
        for (Finding& finding : faults.found) {
            if (finding.flaw != Flaw::kReadFailed) continue;
            if (const Fault fault = FaultOnTheWay(services_.files, finding.path)) finding.text = FromUtf8(fault.what);
        }
        mapping_->faults = std::move(faults.found);
        mapping_->meant = ReadMeant(services_.xml, mapping_->path);
        mapping_->fault = MappingFault();
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

Fault Circumstances::Standstill() const {
    constexpr double kSurelyWaits = 1.0;
    const double waits = bridge && bridge->waitsSince ? std::fabs(now - *bridge->waitsSince) * kSecondsPerDay : 0.0;
    if (waits > kSurelyWaits || (StandsStill() && bridge->waitsSince))
        return Fault(Reason::kLibraryWaits, {Printed("%.1f s", waits)});
    return StandsStill() ? Fault(Reason::kStandsStill) : Fault();
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

Fault Circumstances::NoVariables() {
    Variables();
    const std::u16string usual = JoinPath(JoinPath(settings.dfwFolder, u"Data"), kUsualVariableFile);
    if (Fault onTheWay = FaultOnTheWay(services_.files, usual)) return onTheWay;
    if (!ofList_.found.empty()) return Because(ofList_.found.front(), Reason::kListDamaged);
    if (services_.files.Exists(usual)) return Fault(Reason::kVariablesNotRead, {PlaceInWords(usual, 0)});
    return Fault(Reason::kNoVariableFile, {Harmless(settings.dfwFolder), ToUtf8(kUsualVariableFile)});
}

bool Circumstances::IsForLackOfList(const Finding& finding) {
    return finding.flaw == Flaw::kNoSuchVariable && Variables().rows.empty();
}

Fault Circumstances::ListCutShort() {
    const DeckmanCatalogue& list = Variables();
    const auto ends = std::ranges::find_if(
        ofList_.found, [&](const Finding& finding) { return finding.path == list.path && EndsReading(finding.flaw); });
    return list.rows.empty() || ends == ofList_.found.end() ? Fault() : Because(*ends, Reason::kListDamaged);
}

Fault Circumstances::MappingFault() {
    if (Fault onTheWay = FaultOnTheWay(services_.files, mapping_->path)) return onTheWay;
    if (!mapping_->exists) return Fault(Reason::kNoMapping, {Harmless(mapping_->path)});
    const auto text = ReadWhole(services_.files, mapping_->path);
    if (text && text->empty()) return Fault(Reason::kMappingEmpty, {Harmless(mapping_->path)});
    const auto ends = std::ranges::find_if(mapping_->faults, EndsReading, &Finding::flaw);
    if (ends == mapping_->faults.end()) return {};
    Fault fault = Because(*ends, Reason::kMappingDamaged);
    if (ends->flaw == Flaw::kNotWellFormed)
        fault.todo += ", or move the file away, and 'halyrigctl map suggest --apply' makes a new one";
    return fault;
}

Fault Circumstances::AlternatesFault() {
    const std::u16string path = ConfigPath(u"alternate.csv");
    Renewed();
    if (Fault onTheWay = FaultOnTheWay(services_.files, path)) return onTheWay;
    const auto first = std::ranges::find(ofConfig_.found, path, &Finding::path);
    return first == ofConfig_.found.end() ? Fault() : Because(*first, Reason::kAlternatesDamaged);
}

const CoreRecord& Circumstances::Renewed() {
    if (!dryRun_) {
        ofConfig_.found.clear();
        dryRun_ = std::make_unique<DryRun>(services_, &ofConfig_);
    }
    return dryRun_->Record();
}

}  // namespace twr
