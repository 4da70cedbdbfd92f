// SPDX-License-Identifier: MIT
#include "halyrigctl/map/map_change.h"

#include "base/wide_text.h"
#include "core/channel_catalogue.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/setup/names.h"
#include "halyrigctl/setup/reasons.h"
#include "mapping/mapping_text.h"
#include "platform/files.h"

namespace twr {
namespace {

// A bridge without a dialog, as Linux has it, reads the mapping again only if the suite's data folder changes.
std::string HowItIsRead(bool bridgeRuns) {
    if (!bridgeRuns) return HALYRIG_PROGRAM " reads it when it starts.\n";
    const bool mayBeService = kPathSeparator == u'/';
    return std::string("The running " HALYRIG_PROGRAM
                       " still has the former mapping: in its dialog press ... beside the Dfw folder and "
                       "choose the\nsame folder again.") +
           (mayBeService ? " As a service it has no dialog; restart it: systemctl --user restart halyrig\n" : "\n");
}

std::vector<std::u16string> CatalogueNames() {
    std::vector<std::u16string> names;
    for (ChannelId id = 0; id < kChannelCount; ++id) names.emplace_back(CatalogueName(id));
    return names;
}

}  // namespace

Status MapChange::Open() {
    Guest guest(system_, WithoutRecord::kGoOn);
    now_.emplace(system_, guest.Core());
    guest.Leave();
    return ReadFile();
}

Status MapChange::OpenFor(const std::string& channel) {
    Guest guest(system_, WithoutRecord::kGoOn);
    const auto found = FindChannel(guest.Core(), channel);
    if (!found) {
        guest.Leave();
        const std::u16string typed = FromUtf8(channel);
        return Refuse(
            "there is no channel " + Harmless(typed) + "; " + Guess(typed, CatalogueNames(), "'halyrigctl channels' lists them"),
            kMisunderstood);
    }
    channel_ = *found;
    shown_ = std::to_string(*found) + " " + Harmless(NameForPeople(guest.Core(), *found));
    now_.emplace(system_, guest.Core());
    guest.Leave();
    return ReadFile();
}

Status MapChange::ReadFile() {
    if (now_->MappingPath().empty()) return Refuse("the data folder is unknown; start " HALYRIG_PROGRAM " once, which makes it");
    if (ComplainOfUnread(system_.GetConsole(), now_->PassedOverInVariables())) return kFailed;
    services_.files.MakeFolder(now_->DataFolder());
    services_.files.MakeFolder(now_->MappingFolder());
    if (!TakeLock())
        return Refuse("another halyrigctl is changing " + Harmless(now_->MappingPath()) +
                      "; try again when it has ended, or end it");
    ReadMapFile(services_, *now_, file_);
    return file_.fault.empty() ? kDone : Refuse(Harmless(now_->MappingPath()) + " can't be changed by command: " + file_.fault);
}

// False if another process keeps it, or the user has asked to stop.
bool MapChange::TakeLock() {
    constexpr int kStepMs = 50, kLongestWaitMs = 5000;
    for (int waited = 0; waited <= kLongestWaitMs; waited += kStepMs) {
        lock_ = services_.files.Lock(now_->MappingPath());
        if (lock_ || !system_.GetConsole().Wait(kStepMs)) break;
    }
    return lock_ != nullptr;
}

bool MapChange::HasPlace(BoatSlot boat) const {
    return boat < kFullBoatCount || ChannelCatalogue()[channel_].shortIndex < kShortChannelCount;
}

std::string MapChange::ChannelOf(BoatSlot boat) const { return "channel " + shown_ + OfBoat(static_cast<std::int32_t>(boat)); }

Status MapChange::AddVar(const Mapping& intended, const std::string& done) {
    return Add(intended, "var", VarText(intended.varRows.back(), now_->Variables().rows), done);
}

Status MapChange::AddRemote(const Mapping& intended, const std::string& done) {
    return Add(intended, "remote", RemoteText(intended.remoteRows.back()), done);
}

Status MapChange::Add(const Mapping& intended, std::string_view kind, const std::string& element, const std::string& done) {
    const bool isNew = file_.text.empty();
    return Write(isNew ? NewMapText(services_, *now_, intended) : WithElement(file_.text, file_.spans, kind, element), intended,
                 done);
}

Status MapChange::Remove(const std::function<bool(const XmlElement&)>& goes, const Mapping& intended, const std::string& done,
                         const std::string& ifNone) {
    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < file_.elements.size(); ++i) {
        if (!goes(file_.elements[i])) continue;
        if (!IsRemovable(file_.text, file_.spans, i)) {
            return Refuse("line " + std::to_string(file_.elements[i].line) + " of " + Harmless(now_->MappingPath()) +
                          " holds more than the mapping; change it in an editor");
        }
        indices.push_back(i);
    }
    if (indices.empty()) return Refuse(ifNone + "; 'halyrigctl map' lists the lines");
    return Write(WithoutElements(file_.text, file_.spans, indices), intended, done);
}

Status MapChange::Write(const std::string& text, const Mapping& intended, const std::string& done) {
    if (const std::string failure = ReplaceMapFile(services_, *now_, file_, text, intended); !failure.empty())
        return Refuse(failure);
    return Print(system_.GetConsole(), done + ".\n" + HowItIsRead(now_->BridgeRuns()));
}

Status MapChange::Refuse(const std::string& why, Status status) {
    Complain(system_.GetConsole(), why);
    return status;
}

Status MapChange::RefusePlace(BoatSlot boat) {
    return Refuse("boat " + std::to_string(boat) + " has no place for channel " + shown_ +
                  ": boats 2 to 99 have room only for those with a number below short in 'halyrigctl channels'");
}

std::string Guess(std::u16string_view typed, const std::vector<std::u16string>& names, const std::string& otherwise) {
    const auto nearest = Nearest(typed, names);
    return nearest ? "did you mean " + Harmless(*nearest) + "?" : otherwise;
}

std::string OfBoat(std::int32_t boat) { return boat == 0 ? "" : " of boat " + std::to_string(boat); }

}  // namespace twr
