// From a reading of Deckman to the value of a channel. Deckman gives 32-bit floats, and the conversions keep to them.
#pragma once
#include "base/channel_ids.h"

namespace twr {

struct ReadingUnits {
    bool degreesTrue;  // headings and directions come true
    bool depthInFeet;
    double variation;  // degrees, east positive; kNoValue when unknown
};

// The reading in the channel's internal unit, with its sign.
float InstrumentValue(ChannelId channel, float reading, const ReadingUnits& units);

// Takes the variation off a true bearing, with one turn of correction. kNoValue without a variation.
float MagneticBearing(float trueBearing, double variation);

}  // namespace twr
