// A boat's values as sentences of NMEA 0183, for plotters and displays.
#pragma once
#include <string>

#include "streams/follower.h"

namespace twr {

// Appends the sentences of a boat: talker II, checksum, CR LF. Each is made from fresh values of channels that the follower tells;
// a field without one is empty, and a sentence with nothing to say is left out. Directions from true north need the variation.
void AppendSentences(std::string& out, const Follower& follower, BoatSlot boat);

}  // namespace twr
