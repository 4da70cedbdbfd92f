// The very short text that a remote shows.
#pragma once
#include "core/core.h"

namespace twr {

// The text of a value in the user's units: upper-case, "-0" for kNoValue. More than 4 characters are cut to 4 when there is a point
// in them, wherever the cut falls.
std::u16string RemoteValueText(CCore& core, ChannelId channel, double value);

}  // namespace twr
