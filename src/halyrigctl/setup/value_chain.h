// The way of a value, link by link: from Deckman through the bridge into the record, and on to its user.
#pragma once
#include "core/core.h"
#include "halyrigctl/setup/circumstances.h"
#include "halyrigctl/setup/links.h"

namespace twr {

// The links up to the value in the user's unit. An alternating channel's are those of the channel that it stands for.
Links ValueChain(CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances);

// Adds a link for each of Deckman's displays that shows the channel.
void AddRemoteLinks(Links& links, CCore& core, ChannelId channel, BoatSlot boat, Circumstances& circumstances);

}  // namespace twr
