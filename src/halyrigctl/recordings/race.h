// SPDX-License-Identifier: MIT
// What was sailed, found in what was recorded: tacks and gybes, the start, legs, and speeds beside the targets. All of it is pure
// arithmetic on rows, one a second, of one boat.
#pragma once
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

namespace twr {

inline constexpr double kUnmeasured = std::numeric_limits<double>::quiet_NaN();

// One second. Directions are true or magnetic, but all alike; angles to the wind are positive with the wind on the starboard side.
// What was not fresh is kUnmeasured.
struct RaceRow {
    double time = 0.0;  // seconds, rising from row to row
    bool seam = false;  // what lies ahead of it is missing, whatever the times say
    double latitude = kUnmeasured, longitude = kUnmeasured;
    double bsp = kUnmeasured, sog = kUnmeasured, tws = kUnmeasured;           // knots
    double twa = kUnmeasured, awa = kUnmeasured, twd = kUnmeasured;           // degrees
    double heading = kUnmeasured, cog = kUnmeasured;                          // degrees
    double targetBsp = kUnmeasured, targetTwa = kUnmeasured;                  // knots, degrees of the upwind or downwind target
    double heel = kUnmeasured, depth = kUnmeasured, variation = kUnmeasured;  // degrees, metres
    double markLatitude = kUnmeasured, markLongitude = kUnmeasured;           // where she sails to
    double markRange = kUnmeasured;                                           // nautical miles, likewise
    double lineDistance = kUnmeasured;                                        // metres to the start line, negative beyond it
    double portLatitude = kUnmeasured, portLongitude = kUnmeasured;           // the ends of the start line
    double starboardLatitude = kUnmeasured, starboardLongitude = kUnmeasured;

    double Speed() const;   // through the water, else over the ground
    double Course() const;  // the heading, else over the ground
    double Vmg() const;     // knots along the true wind, positive against it
};

// The side of the wind on which she sails: 1 starboard, -1 port. 0 where she does not, as far as can be told: drifting, closer to
// the bow or to the stern than a boat sails, or faster in that wind than without an engine.
int SideOf(const RaceRow& row);

// Whether there is a gap between two rows.
bool IsApart(const RaceRow& before, const RaceRow& after);

// Metres between two places.
double MetresBetween(double latitude, double longitude, double toLatitude, double toLongitude);

double MetresToMark(const RaceRow& row);

// What a turn has cost: the way along the wind that she would have made at the mean speed made good of the time from 30 to 10
// seconds before it, less the way that she made, from 10 seconds before it to 50 after it.
struct TurnCost {
    double metres, seconds;  // the latter at the speed made good before
};

struct Turn {
    std::size_t row = 0;                                         // the first on the new side of the wind
    bool tack = false;                                           // through the wind; else a gybe
    double degrees = kUnmeasured;                                // by which she turned, positive to starboard
    double speedBefore = kUnmeasured, speedLeast = kUnmeasured;  // knots
    std::optional<TurnCost> cost = {};                           // nullopt if something for it is missing
};

// A turn leads from a board on one side of the wind to one on the other. She is on a board once she has sailed on that side for
// five seconds, and she must sail for most of the minute before and of the minute after; and between the two boards she must have
// turned, so that neither the wind that swings about the bow of a boat under engine nor a shift is one. What happened in a gap is
// not known, and no turn.
std::vector<Turn> FindTurns(const std::vector<RaceRow>& rows);

struct Gun {
    double time;       // seconds, as the rows'
    double countFrom;  // when the count was first seen
};

struct Start {
    Gun gun;
    std::optional<std::size_t> row = {};  // at the gun; nullopt in a gap
    double distance = kUnmeasured;        // metres to the line at the gun, negative beyond it
    double lineLength = kUnmeasured;      // metres
    double alongLine = kUnmeasured;       // at the gun, the share of the line from its port end; beyond 0 to 1 outside it
    double crossed = kUnmeasured;         // seconds from the gun to the line
};

// Looks at the line for each gun.
std::vector<Start> FindStarts(const std::vector<RaceRow>& rows, const std::vector<Gun>& guns);

enum class PointOfSail { kNone, kBeat, kReach, kRun };

struct Leg {
    std::size_t from = 0, to = 0;  // rows, the end excluded
    bool toMark = false;           // it ends at a mark; else the recording, or what is known of the mark, ends
    PointOfSail sailed = PointOfSail::kNone;
    double miles = 0.0;  // over the ground, without what was sailed in gaps
    int tacks = 0, gybes = 0;
};

// Where the mark is known, a leg begins with a gun or with a mark, and ends at the next one: where the mark changes, or where she
// was closest to it if that is near. Where it is not, a leg is a stretch of two minutes or more of one point of sailing; `byMarks`
// tells which.
struct Legs {
    bool byMarks = false;
    std::vector<Leg> all;
};
Legs FindLegs(const std::vector<RaceRow>& rows, const std::vector<Gun>& guns, const std::vector<Turn>& turns);

// Completes the turns. One outside the legs, or so near to their ends, to another turn or to a gap that this has a part in its
// cost, has none.
void FindCosts(const std::vector<RaceRow>& rows, const std::vector<Leg>& legs, std::vector<Turn>& turns);

// Speeds beside the targets, in bands of wind, of the seconds in which she sails and does not turn.
struct PolarCell {
    int angle = 0;                    // its lower end, degrees from the wind
    std::size_t count = 0;            // of seconds
    double middle = 0.0, fast = 0.0;  // knots: the median, and what a tenth of the seconds exceed
};
struct PolarTarget {
    double twa, bsp;              // means of what was told
    double sailedTwa, sailedBsp;  // of the same seconds
    std::size_t count;
};
struct PolarBand {
    double from = 0.0, to = 0.0;  // knots of true wind
    std::size_t count = 0;
    std::vector<PolarCell> cells = {};
    std::optional<PolarTarget> upwind = {}, downwind = {};
};
std::vector<PolarBand> FindPolarBands(const std::vector<RaceRow>& rows, const std::vector<Turn>& turns);

}  // namespace twr
