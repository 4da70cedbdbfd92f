// SPDX-License-Identifier: MIT
// What Deckman's readings mean: their units, their signs, and which channels it gives in forms of its own.
#pragma once
#include "core/record_access.h"

namespace twr {

// The bearings. If Deckman's are true, the record's magnetic ones can't be computed without the variation.
inline bool IsInstrumentBearing(ChannelId channel) {
    return channel == kTwd || channel == kCourse || channel == kSet || channel == kHdg || channel == kCog;
}

// Position, COG and SOG come from one source, by the user's choice in sysInt[kIntPositionSource].
inline constexpr std::int32_t kPositionFromDeckman = 3;

inline bool FollowsPositionSource(ChannelId channel) {
    return channel == kLat || channel == kLon || channel == kCog || channel == kSog;
}

inline bool PositionFromDeckman(const CoreRecord& record) {
    return Load(record.sysInt[kIntPositionSource]) == kPositionFromDeckman;
}

struct ReadingUnits {
    bool degreesTrue;  // headings and directions are true
    bool depthInFeet;
    double variation;  // degrees, east positive; kNoValue if unknown
};

// A reading of Deckman in the channel's internal unit, with its sign. Deckman gives 32-bit floats, and the conversions use them
// too.
float InstrumentValue(ChannelId channel, float reading, const ReadingUnits& units);

// Subtracts the variation from a true bearing, and corrects the result by one turn. kNoValue without a variation.
float MagneticBearing(float trueBearing, double variation);

}  // namespace twr
