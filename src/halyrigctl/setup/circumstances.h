// SPDX-License-Identifier: MIT
// What decides besides the record whether a channel has a value: the bridge's state, and the user's files as they are now.
#pragma once
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/findings.h"
#include "core/core.h"
#include "deckman/variable_file.h"
#include "halyrigctl/setup/bridge_pulse.h"
#include "halyrigctl/setup/dry_run.h"
#include "halyrigctl/setup/file_faults.h"
#include "halyrigctl/setup/library_look.h"
#include "halyrigctl/setup/reasons.h"
#include "mapping/mapping_rows.h"
#include "platform/system.h"
#include "status/bridge_status.h"

namespace twr {

// The mapping file as the bridge would read it now.
struct MappingLook {
    std::u16string path;
    bool exists = false;
    Mapping mapping;
    std::vector<Finding> faults;
    Fault fault;  // why the bridge reads nothing, or not all, of it; it comes before those of the lines

    // The line of the file that feeds the channel of a boat; of several the last, whose value stays. nullptr if none does.
    const MappingVar* LineOf(ChannelId channel, BoatSlot boat) const;
    // The fault of a line that was meant to feed the channel; nullptr if there is none.
    const Finding* FaultOf(ChannelId channel, BoatSlot boat) const;

    // Whether a line was meant to feed it.
    bool Means(ChannelId channel, BoatSlot boat) const;

    std::vector<MappingVar> meant;  // every line that names a variable and a channel, usable or not
};

// One moment. The files are read when they are first asked for, and nothing is written.
class Circumstances {
public:
    // The data folder is that of the record; without one, or one that names none, that of the record that a start would make. A
    // `folder` takes the place of the Dfw folder that is in force or saved.
    Circumstances(System& system, const CCore& core, const std::optional<std::u16string>& folder = std::nullopt);

    // The next moment. The user's files are read again if asked for after five seconds, or after the bridge has read them; the
    // library only if another has been chosen.
    void LookAgain();

    const LibraryLook& Library();
    const DeckmanCatalogue& Variables();
    const MappingLook& TheMapping();
    // What was passed over on the way to the variables, and there and in the mapping; a file that could not be read to its end is
    // among it.
    const std::vector<Finding>& PassedOverInVariables();
    std::vector<Finding> PassedOver();

    std::u16string MappingPath() const;  // empty if the data folder is unknown
    std::u16string MappingFolder() const;
    std::u16string ConfigPath(std::u16string_view file) const { return JoinPath(JoinPath(dataFolder_, u"config"), file); }
    const std::u16string& DataFolder() const { return dataFolder_; }  // it may not exist yet

    bool BridgeRuns() const { return bridge || name.state == NameLook::kTaken; }
    bool StandsStill() const { return bridge && bridge->StandsStill(); }
    // Why it does, or that it waits for the library; nothing if it ticks, or can't be seen.
    Fault Standstill() const;
    // Of the bridge, for people.
    std::string BridgeWords() const { return bridge ? pulse_.Words() : WithoutBridge().what; }
    // Why the bridge can't be seen, for when it can't.
    Fault WithoutBridge() const;
    // What is wrong if Variables() has no rows.
    Fault NoVariables();
    // Why Deckman's list is read only up to a line; nothing if it is read to its end, or not at all.
    Fault ListCutShort();
    // Without Deckman's list no line can name a variable of it, and that is no fault of the line.
    bool IsForLackOfList(const Finding& finding);
    // What alternate.csv is if nothing of it, or not all, is read; nothing if all is.
    Fault AlternatesFault();
    // Why a finding is there, with its place: the rights of its file where they are the cause, else `reason` with its own words.
    Fault Because(const Finding& finding, Reason reason) const { return FaultOfFinding(services_.files, finding, reason); }

    // The record that a start of the whole suite would make.
    const CoreRecord& Renewed();

    double now = 0.0;                    // days
    NameLook name;                       // whether the bridge runs
    std::optional<BridgeStatus> bridge;  // nullopt if it is not running, or can't be seen
    Settings settings;                   // the bridge's; the saved ones while it can't be seen

private:
    Fault CauseOf(Fault libraryFault);
    Fault MappingFault();

    System& system_;
    CoreServices services_;
    const std::optional<std::u16string> folder_;
    std::u16string dataFolder_;
    BridgePulse pulse_;
    double filesSince_ = 0.0;  // days: none was read before
    std::optional<LibraryLook> library_;
    std::optional<DeckmanCatalogue> variables_;
    CollectedFindings ofList_;
    std::optional<MappingLook> mapping_;
    CollectedFindings ofConfig_;
    std::unique_ptr<DryRun> dryRun_;
};

}  // namespace twr
