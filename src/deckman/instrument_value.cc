// SPDX-License-Identifier: MIT
#include "deckman/instrument_value.h"

#include "base/angles.h"

namespace twr {

float InstrumentValue(ChannelId channel, float reading, const ReadingUnits& units) {
    if (IsInstrumentBearing(channel)) return units.degreesTrue ? MagneticBearing(reading, units.variation) : reading;
    switch (channel) {
        case kLeeway:
        case kHeel:
            return reading * -1.0f;
        case kDepth:
            return units.depthInFeet ? reading / kDeckmanFeetPerMetre : reading;
        default:
            return reading;
    }
}

float MagneticBearing(float trueBearing, double variation) {
    double bearing = trueBearing;
    if (bearing == kNoValue || variation == kNoValue) return static_cast<float>(kNoValue);
    bearing -= variation;
    return static_cast<float>(bearing == kNoValue ? bearing : TurnedBearing(bearing));
}

}  // namespace twr
