// Groups of channels that Deckman gives in forms of their own.
#pragma once
#include "core/record_access.h"

namespace twr {

// The bearings. If Deckman's are true, the record's magnetic ones can't be computed without the variation.
inline bool IsInstrumentBearing(ChannelId channel) {
    return channel == kTwd || channel == kCourse || channel == kSet || channel == kHdg || channel == kCog;
}

// Position, COG and SOG come from one source, by the user's choice in sysInt[kIntPositionSource].
inline constexpr std::int32_t kPositionFromDeckman = 3;
inline constexpr std::int32_t kNoPositionSource = 7;  // of a new record, above every valid choice

inline bool FollowsPositionSource(ChannelId channel) {
    return channel == kLat || channel == kLon || channel == kCog || channel == kSog;
}

inline bool PositionFromDeckman(const CoreRecord& record) {
    return Load(record.sysInt[kIntPositionSource]) == kPositionFromDeckman;
}

}  // namespace twr
