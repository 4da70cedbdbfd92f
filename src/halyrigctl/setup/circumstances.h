// What decides besides the record whether a channel has a value: the bridge's state, and the user's files as they are now.
#pragma once
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/findings.h"
#include "core/core_record.h"
#include "deckman/variable_file.h"
#include "halyrigctl/output/say.h"
#include "halyrigctl/setup/dry_run.h"
#include "halyrigctl/setup/library_look.h"
#include "mapping/mapping_rows.h"
#include "platform/system.h"
#include "status/bridge_status.h"

namespace twr {

// What makes the bridge look at the library, Deckman's list and the mapping again.
inline constexpr const char* kRestartAll = "end all programs of the suite and start them again";
inline constexpr const char* kReadAgain = "choose the Dfw folder once more in the dialog, even the same one, or restart the bridge";

// The mapping file as the bridge would read it now.
struct MappingLook {
    std::u16string path;
    bool exists = false;
    Mapping mapping;
    std::vector<Finding> faults;

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
    Circumstances(System& system, const CoreRecord& record);

    // The next moment. The user's files are read anew if asked for again after five seconds, or after the bridge has read them; the
    // library only if the bridge has chosen anew.
    void LookAgain();

    const LibraryLook& Library();
    const DeckmanCatalogue& Variables();
    const MappingLook& TheMapping();
    // What was passed over in both, a file that could not be read to its end among it.
    std::vector<Finding> PassedOver();
    // Why the bridge can't be seen, for when it can't.
    Advice WithoutBridge() const;

    // The record that a start of the whole suite would make.
    const CoreRecord& Renewed();

    double now = 0.0;                    // days
    NameLook name;                       // whether the bridge runs
    std::optional<BridgeStatus> bridge;  // nullopt if it is not running, or can't be seen
    bool standsStill = false;            // the bridge runs, but does not tick
    Settings settings;                   // the bridge's; the saved ones while it can't be seen

private:
    System& system_;
    CoreServices services_;
    std::u16string dataFolder_;
    double filesSince_ = 0.0;  // days: none was read before
    std::optional<LibraryLook> library_;
    std::optional<DeckmanCatalogue> variables_;
    CollectedFindings ofList_;
    std::optional<MappingLook> mapping_;
    std::unique_ptr<DryRun> dryRun_;
};

}  // namespace twr
