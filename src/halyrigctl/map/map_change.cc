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

}  // namespace

Status MapChange::Open() {
    Guest guest(system_, WithoutRecord::kGoOn);
    now_.emplace(system_, guest.Core());
    guest.Leave();
    return ReadFile();
}

Status MapChange::OpenFor(const std::vector<std::string>& channels) {
    Guest guest(system_, WithoutRecord::kGoOn);
    for (const std::string& typed : channels) {
        const auto found = FindChannel(guest.Core(), typed);
        if (!found) {
            const NamedChannels named = FindChannels(guest.Core(), {typed});
            guest.Leave();
            return ComplainOfChannel(system_.GetConsole(), named);
        }
        channels_.push_back({*found, std::to_string(*found) + " " + Harmless(NameForPeople(guest.Core(), *found))});
    }
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
    return boat < kFullBoatCount || ChannelCatalogue()[Channel()].shortIndex < kShortChannelCount;
}

std::string MapChange::ChannelOf(BoatSlot boat) const {
    return "channel " + channels_[of_].shown + OfBoat(static_cast<std::int32_t>(boat));
}

Status MapChange::AddVars(const Mapping& intended, std::size_t count, const std::string& done) {
    const auto& listed = now_->Variables().rows;
    std::string text = file_.text;
    for (auto row = intended.varRows.end() - static_cast<std::ptrdiff_t>(count); row != intended.varRows.end(); ++row) {
        const auto spans = FindElements(text);
        text = text.empty() || !spans ? NewMapText(services_, *now_, {.varRows = {*row}, .remoteRows = {}})
                                      : WithElement(text, *spans, "var", VarText(*row, listed));
    }
    return Write(text, intended, done);
}

Status MapChange::AddRemote(const Mapping& intended, const std::string& done) {
    return Write(file_.text.empty() ? NewMapText(services_, *now_, intended)
                                    : WithElement(file_.text, file_.spans, "remote", RemoteText(intended.remoteRows.back())),
                 intended, done);
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
    return Refuse("boat " + std::to_string(boat) + " has no place for channel " + channels_[of_].shown +
                  ": boats 2 to 99 have room only for those with a number below short in 'halyrigctl channels'");
}

std::string OfBoat(std::int32_t boat) { return boat == 0 ? "" : " of boat " + std::to_string(boat); }

}  // namespace twr
