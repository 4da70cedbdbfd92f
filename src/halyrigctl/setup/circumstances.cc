#include "halyrigctl/setup/circumstances.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/wide_text.h"
#include "config/bridge_settings.h"
#include "core/days.h"
#include "core/record_access.h"
#include "halyrigctl/setup/finding_words.h"
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

Circumstances::Circumstances(System& system, const CoreRecord& record)
    : system_(system), services_(system.Core()), dataFolder_(FieldText(record.dataFolder)) {
    LookAgain();
}

void Circumstances::LookAgain() {
    constexpr double kFilesLast = 5.0 / kSecondsPerDay;
    const auto before = std::pair(bridge ? std::optional(bridge->mapping.readAt) : std::nullopt, settings.dfwFolder);
    now = UtcNowDays(services_.clock);
    name = LookForBridge(system_);
    bridge = ReadBridgeStatus(system_);
    settings = bridge ? bridge->settings : ReadSettings(services_.registry);
    settings.dfwFolder = Trimmed(std::u16string_view(settings.dfwFolder));
    const bool anew = before != std::pair(bridge ? std::optional(bridge->mapping.readAt) : std::nullopt, settings.dfwFolder);
    if (anew) library_.reset();
    if (!anew && std::fabs(now - filesSince_) < kFilesLast) return;
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
        mapping_->path = JoinPath(JoinPath(dataFolder_, u"instruments"), u"halyrig.xml");
        mapping_->exists = services_.files.Exists(mapping_->path);
        CollectedFindings faults;
        mapping_->mapping = LoadMapping(services_.xml, mapping_->path, Variables().rows, &faults);
        mapping_->faults = std::move(faults.found);
        mapping_->meant = ReadMeant(services_.xml, mapping_->path);
    }
    return *mapping_;
}

std::vector<Finding> Circumstances::PassedOver() {
    std::vector<Finding> found = TheMapping().faults;
    found.insert(found.begin(), ofList_.found.begin(), ofList_.found.end());
    return found;
}

Advice Circumstances::WithoutBridge() const {
    switch (name.state) {
        case NameLook::kTaken:
            return {"the bridge is running, but its status can't be seen", "restart it"};
        case NameLook::kUnknown:
            return {"whether the bridge is running can't be seen: " + name.why};
        default:
            return {"the bridge is not running", "start " HALYRIG_PROGRAM};
    }
}

const CoreRecord& Circumstances::Renewed() {
    if (!dryRun_) dryRun_ = std::make_unique<DryRun>(services_);
    return dryRun_->Record();
}

}  // namespace twr
