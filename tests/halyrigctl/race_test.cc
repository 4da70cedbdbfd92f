// SPDX-License-Identifier: MIT
#include "halyrigctl/recordings/race.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "base/angles.h"
#include "base/numbers.h"
#include "core/units.h"
#include "halyrigctl/recordings/race_log.h"
#include "halyrigctl/recordings/recorded_files.h"
#include "stand_in/sailing_simulation.h"
#include "streams/iso_time.h"
#include "streams/json_lines.h"
#include "support/fakes.h"

namespace twr::testing {
namespace {

constexpr double kRaceDay = 46320.0;  // on which it is recorded
constexpr double kSecondsBefore = kRaceDay * 86400.0;
constexpr double kMilesPerDegree = 60.0;
constexpr double kLatitude = 50.5, kLongitude = -7.0;  // of the middle of the simulation's line
constexpr double kHalfLine = 0.08;                     // nautical miles
constexpr double kKeptFor = 5.0;                       // seconds that she is on a side before she sails on it

// As the demo's mapping has them.
using Q = Quantity;
constexpr std::pair<ChannelId, Q> kTold[] = {
    {kBsp, Q::kBsp}, {kAwa, Q::kAwa}, {kTwa, Q::kTwa}, {kTws, Q::kTws}, {kTwd, Q::kTwd},           {kHdg, Q::kHdg},
    {kCog, Q::kCog}, {kSog, Q::kSog}, {kLat, Q::kLat}, {kLon, Q::kLon}, {kTmToGun, Q::kTimeToGun}, {kMkRng, Q::kMarkDistance}};

// Seconds from the start, and metres.
struct Sailed {
    struct Turn {
        double time;
        bool tack;
    };
    struct Leg {
        double from, to;
    };
    struct Gun {
        double time, below, crossed;
    };
    std::string recording;
    std::vector<Turn> turns;
    std::vector<Leg> legs;
    std::vector<Gun> guns;
};

// Watches a simulation ten times a second, and records it once a second.
class Watch {
public:
    explicit Watch(std::uint64_t seed) : simulation_(seed, 300) {
        AppendHeader(sailed_.recording, kRaceDay);
        LayLine();
    }

    Sailed Sail(int seconds) {
        for (step_ = 0; step_ < seconds * 10; ++step_) {
            if (step_ % 10 == 0) Record();
            simulation_.Advance(0.1);
            LookAtTurns();
            LookAtLegs();
        }
        if (leg_) sailed_.legs.back().to = Time();
        return sailed_;
    }

private:
    float Now(Quantity quantity) const { return simulation_.Now()[quantity]; }
    double Time() const { return step_ / 10.0; }

    // The line lies square to the bearing of the first mark, which only the start shows.
    void LayLine() {
        SailingSimulation ahead = simulation_;
        while (!ahead.Sailed().Leg()) ahead.Advance(1.0);
        axis_ = BearingOf(ahead.Sailed().Mark());
    }

    double Below() const {
        const Vector place{(Now(Q::kLon) - kLongitude) * CosDegrees(kLatitude), Now(Q::kLat) - kLatitude};
        return -Length(place) * CosDegrees(BearingOf(place) - axis_) * kMilesPerDegree * kMetresPerNauticalMile;
    }

    void Record() {
        std::string time;
        AppendIsoTime(time, kRaceDay + Time() / 86400.0);
        const auto tell = [&](ChannelId channel, double value) {
            sailed_.recording += R"({"time":")" + time + Printed(R"(","id":%u,"value":%.9g})", channel, value) + "\n";
        };
        tell(kTime, kRaceDay + Time() / 86400.0);
        for (const auto& [channel, quantity] : kTold) {
            if (Now(quantity) != kAbsent) tell(channel, Now(quantity));
        }
        const Vector end = Towards(axis_ + 90.0, kHalfLine / kMilesPerDegree);
        tell(kPortLat, kLatitude - end.north);
        tell(kPortLon, kLongitude - end.east / CosDegrees(kLatitude));
        tell(kStbdLat, kLatitude + end.north);
        tell(kStbdLon, kLongitude + end.east / CosDegrees(kLatitude));
    }

    void LookAtTurns() {
        const float twa = Now(Q::kTwa);
        const double side = twa > 0.0F ? 1.0 : -1.0, ordered = simulation_.Sailed().Side();
        if (side != sailing_ || side != ordered) since_ = Time();
        if (side != sailing_) tack_ = std::abs(twa) < 90.0F;
        sailing_ = side;
        if (side != ordered || side == board_ || Time() - since_ < kKeptFor) return;
        if (board_ != 0.0) sailed_.turns.push_back({since_, tack_});
        board_ = side;
    }

    void LookAtLegs() {
        const auto leg = simulation_.Sailed().Leg();
        const double now = Time() + 0.1, below = Below();
        if (!sailed_.guns.empty() && leg == 0 && below_ > 0.0 && below <= 0.0) sailed_.guns.back().crossed = now;
        below_ = below;
        if (Now(Q::kTimer) == 300.0F && timer_ == 0.0F) LayLine();
        timer_ = Now(Q::kTimer);
        if (leg == leg_) return;
        if (leg_) sailed_.legs.back().to = now;
        if (leg) sailed_.legs.push_back({now, now});
        if (leg == 0) sailed_.guns.push_back({now, below, kUnmeasured});
        leg_ = leg;
    }

    SailingSimulation simulation_;
    Sailed sailed_;
    int step_ = 0;
    double axis_ = 0.0, below_ = 0.0;
    std::optional<int> leg_;
    double board_ = 0.0, sailing_ = 0.0, since_ = 0.0;
    float timer_ = 0.0F;
    bool tack_ = false;
};

struct Found {
    std::vector<RaceRow> rows = {};
    std::vector<Turn> turns = {};
    std::vector<Start> starts = {};
    Legs legs = {};
};

Found Read(const std::string& recording) {
    FakeMachine machine;
    CCore core(machine.Services());
    machine.files.files = {{u"race", recording}};
    RecordedFiles files(machine.files, {"race"}, [] { return true; });
    RaceLog log(core, 0, -1e9, 1e9);
    while (const auto next = files.Next()) log.Take(*next);
    log.Finish();
    Found found{log.Rows(), FindTurns(log.Rows()), FindStarts(log.Rows(), log.Guns())};
    found.legs = FindLegs(found.rows, log.Guns(), found.turns);
    return found;
}

// What neither knows is the same.
bool IsFar(double a, double b, double most) { return std::isnan(a) ? !std::isnan(b) : !(std::abs(a - b) <= most); }

// The first in which what was found differs from what was sailed; empty if there is none.
std::string Difference(const Sailed& sailed, const Found& found) {
    const auto at = [&](std::size_t row) { return found.rows[row].time - kSecondsBefore; };
    const auto& legs = found.legs.all;
    const auto count = [](const auto& of) { return static_cast<int>(of.size()); };
    if (count(sailed.turns) != count(found.turns)) return Printed("%d turns, not %d", count(found.turns), count(sailed.turns));
    for (std::size_t i = 0; i < sailed.turns.size(); ++i) {
        const auto& [time, tack] = sailed.turns[i];
        if (tack != found.turns[i].tack || IsFar(time, at(found.turns[i].row), 2.0)) return Printed("the turn at %.0f", time);
    }
    if (count(sailed.legs) != count(legs)) return Printed("%d legs, not %d", count(legs), count(sailed.legs));
    for (std::size_t i = 0; i < legs.size(); ++i) {
        const auto& [from, to] = sailed.legs[i];
        const double atEnd = i % 4 == 3 ? 25.0 : 2.0;  // no mark behind the finish tells when: it is where she was closest
        const PointOfSail point = i % 2 == 0 ? PointOfSail::kBeat : PointOfSail::kRun;
        if (IsFar(from, at(legs[i].from), 2.0) || IsFar(to, at(legs[i].to - 1), atEnd) || legs[i].sailed != point)
            return Printed("the leg from %.0f to %.0f, found from %.0f to %.0f", from, to, at(legs[i].from), at(legs[i].to - 1));
    }
    if (count(sailed.guns) != count(found.starts)) return Printed("%d guns, not %d", count(found.starts), count(sailed.guns));
    for (std::size_t i = 0; i < sailed.guns.size(); ++i) {
        const auto& [time, below, crossed] = sailed.guns[i];
        const Start& start = found.starts[i];
        // The count is told in whole seconds, once a second, in which she sails some metres.
        if (IsFar(time, start.gun.time - kSecondsBefore, 1.0) || IsFar(below, start.distance, 8.0) ||
            (std::abs(below) > 5.0 && IsFar(crossed - time, start.crossed, 1.5)) ||
            IsFar(2 * kHalfLine * kMetresPerNauticalMile, start.lineLength, 0.5))
            return Printed("the gun at %.1f, %.1f m below, crossed after %.1f; found %.1f, %.1f, %.1f, line of %.1f", time, below,
                           crossed - time, start.gun.time - kSecondsBefore, start.distance, start.crossed, start.lineLength);
    }
    return {};
}

TEST(RaceTest, FindsWhatTheSimulationSailed) {
    for (const std::uint64_t seed : {1, 4, 7}) {
        const Sailed sailed = Watch(seed).Sail(14400);
        EXPECT_LT(50u, sailed.turns.size());
        EXPECT_EQ("", Difference(sailed, Read(sailed.recording))) << seed;
    }
}

// Rows of a boat, made up second by second.
std::vector<RaceRow> Rows(int seconds, const std::function<void(int second, RaceRow& row)>& make) {
    std::vector<RaceRow> rows;
    for (int second = 0; second < seconds; ++second) {
        RaceRow row{.time = 1.0 * second, .bsp = 6.0, .tws = 12.0, .twa = 42.0, .awa = 28.0, .twd = 0.0};
        make(second, row);
        row.heading = std::isnan(row.heading) ? WrappedBearing(row.twd - row.twa) : row.heading;
        if (row.time >= 0.0) rows.push_back(row);
    }
    return rows;
}

// From one side to the other between these angles, in ten seconds from the hundredth on.
double Turning(int second, double from, double to) { return std::lerp(from, to, std::clamp((second - 100) / 10.0, 0.0, 1.0)); }

TEST(RaceTest, TellsATurnFromWhatIsNone) {
    // tacks, gybes
    const std::tuple<const char*, std::size_t, std::size_t, std::function<void(int, RaceRow&)>> rows[] = {
        {"a tack", 1, 0, [](int s, RaceRow& row) { row.twa = Turning(s, 42, -42); }},
        {"a gybe", 0, 1, [](int s, RaceRow& row) { row.twa = WrappedAngle(Turning(s, -150, -210)); }},
        {"a small gybe", 0, 1, [](int s, RaceRow& row) { row.twa = WrappedAngle(Turning(s, 168, 192)); }},
        {"all the way round", 1, 1, [](int s, RaceRow& row) { row.twa = WrappedAngle(42 - std::clamp(s - 100, 0, 72) * 5.0); }},
        {"a tack without a heading", 1, 0,
         [](int s, RaceRow& row) {
             row.twa = Turning(s, 42, -42), row.cog = WrappedBearing(3 - row.twa), row.heading = kUnmeasured;
         }},
        {"a gap in the tack", 0, 0, [](int s, RaceRow& row) { row.twa = Turning(s, 42, -42), row.time = s == 105 ? -1.0 : s; }},
        {"a clock set back in the tack", 0, 0, [](int s, RaceRow& row) { row.twa = Turning(s, 42, -42), row.seam = s == 105; }},
        {"no angle for three seconds of the tack", 1, 0,
         [](int s, RaceRow& row) { row.twa = s > 103 && s < 107 ? kUnmeasured : Turning(s, 42, -42); }},
        {"shot up into the wind, and back", 0, 0, [](int s, RaceRow& row) { row.twa = s < 110 ? Turning(s, 42, -4) : 42; }},
        {"held head to wind", 0, 0, [](int s, RaceRow& row) { row.twa = s < 60 ? 42 : 18 * std::sin(s / 3.0), row.bsp = 2; }},
        {"the wind shifts across the bow", 0, 0, [](int s, RaceRow& row) { row.twa = Turning(s, 42, -42), row.heading = 7; }},
        {"by the lee and back", 0, 0, [](int s, RaceRow& row) { row.twa = WrappedAngle(176 + 8 * std::sin(s / 2.0)); }},
        {"engine, no wind", 0, 0,
         [](int s, RaceRow& row) { row.tws = 1, row.twa = Turning(s, 120, -120), row.awa = row.twa / 12; }},
        {"adrift", 0, 0, [](int s, RaceRow& row) { row.bsp = 0.3, row.twa = Turning(s, 42, -42); }},
        {"no angle at all", 0, 0, [](int, RaceRow& row) { row.twa = kUnmeasured; }},
    };
    for (const auto& [what, tacks, gybes, make] : rows) {
        const std::vector<Turn> turns = FindTurns(Rows(300, make));
        const auto found = static_cast<std::size_t>(std::ranges::count_if(turns, &Turn::tack));
        EXPECT_EQ(tacks, found) << what;
        EXPECT_EQ(gybes, turns.size() - found) << what;
    }
}

// A tack in which the speed is 2 knots less for half a minute, so that the loss can be told by hand.
TEST(RaceTest, CountsWhatATurnCosts) {
    const auto tack = [](int s, RaceRow& row) {
        row.twa = s < 105 ? 60.0 : -60.0;
        if (s >= 105 && s < 135) row.bsp = 4.0;
    };
    // legTo: where the leg ends
    const std::tuple<const char*, std::function<void(int, RaceRow&)>, std::size_t, bool> rows[] = {
        {"all is there", [](int, RaceRow&) {}, 300, true},
        {"the leg ends", [](int, RaceRow&) {}, 150, false},
        {"no speed at one second", [](int s, RaceRow& row) { row.bsp = s == 120 ? kUnmeasured : row.bsp; }, 300, false},
        {"a gap", [](int s, RaceRow& row) { row.time = s == 120 ? -1.0 : row.time; }, 299, false},
        {"another tack", [](int s, RaceRow& row) { row.twa = s >= 145 ? 60.0 : row.twa; }, 300, false}};
    for (const auto& [what, more, legTo, costs] : rows) {
        const auto sailed = Rows(300, [&, &also = more](int s, RaceRow& row) { tack(s, row), also(s, row); });
        auto turns = FindTurns(sailed);
        ASSERT_FALSE(turns.empty()) << what;
        FindCosts(sailed, {{.from = 0, .to = legTo}}, turns);
        ASSERT_EQ(costs, turns[0].cost.has_value()) << what;
        if (!costs) continue;
        EXPECT_NEAR(2.0 * 0.5 * 30 / 3600 * kMetresPerNauticalMile, turns[0].cost->metres, 0.01);
        EXPECT_NEAR(10.0, turns[0].cost->seconds, 0.01);
        EXPECT_NEAR(6.0, turns[0].speedBefore, 1e-6);
        EXPECT_EQ(4.0, turns[0].speedLeast);
    }
}

TEST(RaceTest, TellsLegsByThePointOfSailWhereNoMarkIsKnown) {
    const auto rows = Rows(2000, [](int s, RaceRow& row) {
        row.twa = s < 600 ? (s % 300 < 150 ? 42 : -42) : s < 1000 ? 100 : s < 1060 ? 40 : s < 1400 ? 95 : -150;
        if (s >= 1700 && s < 1710) row.time = -1.0;
    });
    const Legs legs = FindLegs(rows, {}, FindTurns(rows));
    const std::tuple<PointOfSail, int, int> expected[] = {
        {PointOfSail::kBeat, 600, 3}, {PointOfSail::kReach, 800, 0}, {PointOfSail::kRun, 300, 0}, {PointOfSail::kRun, 290, 0}};
    EXPECT_FALSE(legs.byMarks);
    ASSERT_EQ(std::size(expected), legs.all.size());
    for (std::size_t i = 0; i < legs.all.size(); ++i) {
        const auto& [point, seconds, tacks] = expected[i];
        EXPECT_EQ(point, legs.all[i].sailed) << i;
        EXPECT_NEAR(seconds, static_cast<double>(legs.all[i].to - legs.all[i].from), 30) << i;
        EXPECT_EQ(tacks, legs.all[i].tacks) << i;
    }
}

// A count that was stopped, or whose end is not in the file, is no start; the clock's rows come once.
TEST(RaceTest, ReadsGunsAndRows) {
    const auto count = [](int from, int to, int gun) {
        std::string lines;
        for (int s = from; s < to; ++s) {
            std::string time;
            AppendIsoTime(time, kRaceDay + s / 86400.0);
            const auto tell = [&](int id, double value) {
                lines += R"({"time":")" + time + Printed(R"(","id":%d,"value":%.12g})", id, value) + "\n";
            };
            tell(0, kRaceDay + s / 86400.0);
            tell(1, 6.0);
            if (s < gun) tell(204, (gun - s) / 86400.0);
        }
        return lines;
    };
    const std::tuple<const char*, std::string, std::size_t, std::size_t> rows[] = {
        {"a start", count(0, 400, 300), 1, 400},
        {"counted anew", count(0, 250, 300) + count(250, 800, 550), 1, 800},
        {"ends in the count", count(0, 290, 300), 0, 290},
        {"stopped", count(0, 200, 300) + count(200, 400, 0), 0, 400},
        {"set back after the start", count(0, 400, 300) + count(100, 500, 0), 1, 500}};
    for (const auto& [what, recording, guns, seconds] : rows) {
        const Found found = Read(recording);
        EXPECT_EQ(guns, found.starts.size()) << what;
        EXPECT_EQ(seconds, found.rows.size()) << what;
        if (found.starts.empty()) continue;
        const double gun = std::string_view(what) == "counted anew" ? 550.0 : 300.0;
        EXPECT_NEAR(gun, found.starts[0].gun.time - kSecondsBefore, 0.1) << what;
    }
}

}  // namespace
}  // namespace twr::testing
