// Degrees, and vectors in the plane of the sea.
#pragma once
#include <algorithm>
#include <cmath>
#include <numbers>

namespace twr {

inline double Radians(double degrees) { return degrees * (std::numbers::pi / 180.0); }
inline double Degrees(double radians) { return radians * (180.0 / std::numbers::pi); }
inline double SinDegrees(double degrees) { return std::sin(Radians(degrees)); }
inline double CosDegrees(double degrees) { return std::cos(Radians(degrees)); }

// Into 0 to 360, 360 excluded.
inline double WrappedBearing(double degrees) {
    const double wrapped = std::fmod(degrees, 360.0);
    return wrapped < 0.0 ? std::fmod(wrapped + 360.0, 360.0) : wrapped;
}

// Into -180 to 180, 180 excluded.
inline double WrappedAngle(double degrees) { return WrappedBearing(degrees + 180.0) - 180.0; }

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

// A wind: where it comes from and how fast.
struct Wind {
    double from = 0.0;   // bearing, degrees true
    double speed = 0.0;  // knots
};

inline Vector VelocityOf(Wind wind) { return Towards(wind.from + 180.0, wind.speed); }
inline Wind WindOf(Vector velocity) { return {BearingOf(velocity * -1.0), Length(velocity)}; }

}  // namespace twr
