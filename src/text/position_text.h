// Positions as whole degrees and minutes with four decimals, ended by the letter of the hemisphere.
#pragma once
#include <string>

namespace twr {

// "45 12.3420n" from degrees, north positive. Empty for kNoValue and beyond the poles.
std::u16string LatitudeText(double degrees);

// "009 05.5000w" from degrees, east positive. One excess turn is removed; empty for kNoValue and if the result is still beyond 180.
std::u16string LongitudeText(double degrees);

}  // namespace twr
