// The bearings that Deckman gives. Where they come true, the record's magnetic ones can't be made without the variation.
#pragma once
#include "base/channel_ids.h"

namespace twr {

inline bool IsInstrumentBearing(ChannelId channel) {
    return channel == kTwd || channel == kCourse || channel == kSet || channel == kHdg || channel == kCog;
}

}  // namespace twr
