// Angles in degrees, brought into their range by one turn at most.
#pragma once

namespace twr {

// Towards 0 to 360.
inline double TurnedBearing(double degrees) {
    if (degrees >= 360.0) return degrees - 360.0;
    if (degrees < 0.0) return degrees + 360.0;
    return degrees;
}

// Towards -180 to 180.
inline double TurnedAngle(double degrees) {
    if (degrees > 180.0) return degrees - 360.0;
    if (degrees < -180.0) return degrees + 360.0;
    return degrees;
}

}  // namespace twr
