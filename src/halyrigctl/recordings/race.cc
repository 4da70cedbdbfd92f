// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/race.h"

#include <algorithm>
#include <cmath>

#include "base/angles.h"

namespace twr {
namespace {

constexpr double kMetresPerDegree = 111'120.0;        // sixty miles
constexpr double kClosest = 20.0, kSquarest = 177.0;  // degrees from the wind between which a boat sails on a side of it
constexpr double kClosestApparent = 12.0;             // degrees; closer to the bow only an engine keeps it
constexpr double kFastestForWind = 3.0;               // times the true wind; likewise
constexpr double kLeastWay = 1.0;                     // knots; a slower boat drifts
constexpr double kAside = 0.1;                        // of the line beyond its ends, where she still crosses it
constexpr double kLatest = 600.0;                     // seconds after the gun

// In metres from the port end: along the line, and below it, negative on the side of the course.
struct OfLine {
    double length = kUnmeasured, along = kUnmeasured, below = kUnmeasured;
};

OfLine PlaceAtLine(const RaceRow& row) {
    const auto from = [&](double latitude, double longitude) {
        const double shrunk = CosDegrees((latitude + row.portLatitude) / 2);
        return Vector{WrappedAngle(longitude - row.portLongitude) * shrunk, latitude - row.portLatitude} * kMetresPerDegree;
    };
    const Vector line = from(row.starboardLatitude, row.starboardLongitude), boat = from(row.latitude, row.longitude);
    const double length = Length(line);
    if (!(length > 0.0)) return {};
    return {length, (boat.east * line.east + boat.north * line.north) / length,
            (boat.east * line.north - boat.north * line.east) / length};
}

double MetresToLine(const RaceRow& row) {
    const double below = PlaceAtLine(row).below;
    return std::isnan(below) ? row.lineDistance : below;
}

void Describe(const std::vector<RaceRow>& rows, std::size_t at, Start& start) {
    const OfLine place = PlaceAtLine(rows[at]);
    start.row = at;
    start.distance = MetresToLine(rows[at]);
    start.lineLength = place.length;
    start.alongLine = place.along / place.length;
    for (std::size_t i = at + 1; i < rows.size() && rows[i].time < start.gun.time + kLatest; ++i) {
        const double before = MetresToLine(rows[i - 1]), after = MetresToLine(rows[i]);
        const OfLine now = PlaceAtLine(rows[i]);
        const double share = now.along / now.length;
        if (IsApart(rows[i - 1], rows[i]) || !(before > 0.0 && after <= 0.0)) continue;
        if (share < -kAside || share > 1.0 + kAside) continue;
        start.crossed = rows[i - 1].time + before / (before - after) - start.gun.time;
        return;
    }
}

}  // namespace

double RaceRow::Speed() const { return std::isnan(bsp) ? sog : bsp; }
double RaceRow::Course() const { return std::isnan(heading) ? cog : heading; }
double RaceRow::Vmg() const { return bsp * CosDegrees(twa); }

int SideOf(const RaceRow& row) {
    const double angle = std::fabs(row.twa);
    if (!(angle >= kClosest && angle <= kSquarest) || !(row.Speed() >= kLeastWay)) return 0;
    if (std::fabs(row.awa) < kClosestApparent || row.Speed() > kFastestForWind * row.tws) return 0;
    return row.twa > 0.0 ? 1 : -1;
}

bool IsApart(const RaceRow& before, const RaceRow& after) { return after.seam || after.time - before.time > 1.5; }

double MetresBetween(double latitude, double longitude, double toLatitude, double toLongitude) {
    const double north = toLatitude - latitude;
    const double east = WrappedAngle(toLongitude - longitude) * CosDegrees((latitude + toLatitude) / 2);
    return std::hypot(north, east) * kMetresPerDegree;
}

std::vector<Start> FindStarts(const std::vector<RaceRow>& rows, const std::vector<Gun>& guns) {
    std::vector<Start> starts;
    for (const Gun& gun : guns) {
        starts.push_back({.gun = gun});
        const auto at = std::ranges::lower_bound(rows, gun.time - 0.5, {}, &RaceRow::time);
        if (at != rows.end() && at->time < gun.time + 1.5)
            Describe(rows, static_cast<std::size_t>(at - rows.begin()), starts.back());
    }
    return starts;
}

}  // namespace twr
