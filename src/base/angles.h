// SPDX-License-Identifier: MIT
// Angles in degrees, and vectors in the plane of the sea.
#pragma once
#include <cmath>
#include <numbers>

namespace twr {

// Towards 0 to 360, and towards -180 to 180, by one turn at most: what is further off stays so.
inline double TurnedBearing(double degrees) {
    if (degrees >= 360.0) return degrees - 360.0;
    if (degrees < 0.0) return degrees + 360.0;
    return degrees;
}
inline double TurnedAngle(double degrees) {
    if (degrees > 180.0) return degrees - 360.0;
    if (degrees < -180.0) return degrees + 360.0;
    return degrees;
}

// Into 0 to 360, and into -180 to 180, the upper end excluded, by as many turns as it takes.
inline double WrappedBearing(double degrees) {
    const double wrapped = std::fmod(degrees, 360.0);
    return wrapped < 0.0 ? std::fmod(wrapped + 360.0, 360.0) : wrapped;
}
inline double WrappedAngle(double degrees) { return WrappedBearing(degrees + 180.0) - 180.0; }

inline double Radians(double degrees) { return degrees * (std::numbers::pi / 180.0); }
inline double Degrees(double radians) { return radians * (180.0 / std::numbers::pi); }
inline double SinDegrees(double degrees) { return std::sin(Radians(degrees)); }
inline double CosDegrees(double degrees) { return std::cos(Radians(degrees)); }

struct Vector {
    double east = 0.0;
    double north = 0.0;
};

inline Vector operator+(Vector a, Vector b) { return {a.east + b.east, a.north + b.north}; }
inline Vector operator-(Vector a, Vector b) { return {a.east - b.east, a.north - b.north}; }
inline Vector operator*(Vector a, double factor) { return {a.east * factor, a.north * factor}; }
inline double Length(Vector a) { return std::hypot(a.east, a.north); }
inline double BearingOf(Vector a) { return WrappedBearing(Degrees(std::atan2(a.east, a.north))); }
inline Vector Towards(double bearing, double length) { return {length * SinDegrees(bearing), length * CosDegrees(bearing)}; }

}  // namespace twr
