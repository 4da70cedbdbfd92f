// Which channels get a value once the bridge runs with a mapping.
#pragma once
#include "halyrigctl/setup/dry_run.h"
#include "mapping/mapping_rows.h"

namespace twr {

class FedChannels {
public:
    // Publishes every row in a record of its own, so that what the core derives from it is there as well. `inForce` has the
    // settings and the alternates, and what other programs publish.
    FedChannels(const CoreServices& services, const Mapping& mapping, CoreRecord& inForce);

    // An alternating channel is fed if one of those for which it may stand is.
    bool Feeds(ChannelId channel, BoatSlot boat) const;

private:
    bool FeedsItself(ChannelId channel, BoatSlot boat) const;

    DryRun trial_;
    CoreRecord& inForce_;
};

}  // namespace twr
