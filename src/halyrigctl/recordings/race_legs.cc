// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>

#include "core/units.h"
#include "halyrigctl/recordings/race.h"

namespace twr {
namespace {

constexpr double kNear = 185.0;        // metres: closer to a mark than this, and away again, she has rounded it
constexpr double kJump = 100.0;        // metres: a change of the distance that no boat sails in a second
constexpr double kFastest = 12.0;      // metres a second, so much more for each second without a distance
constexpr double kSameMark = 20.0;     // metres
constexpr double kFollows = 300.0;     // seconds after a mark within which the next one must be chosen
constexpr std::size_t kShortest = 60;  // seconds of a leg that ends at no mark
constexpr std::size_t kShortestToMark = 10;
constexpr double kBeatsTo = 65.0, kReachesTo = 125.0;  // degrees from the wind
constexpr std::size_t kSteady = 120;                   // seconds of one point of sailing
constexpr std::size_t kSmooth = 30;                    // seconds to either side

PointOfSail PointAt(double angle) {
    if (std::isnan(angle)) return PointOfSail::kNone;
    return angle < kBeatsTo ? PointOfSail::kBeat : angle <= kReachesTo ? PointOfSail::kReach : PointOfSail::kRun;
}

// The legs that the marks make, as the rows go by.
class MarkFinder {
public:
    MarkFinder(const std::vector<RaceRow>& rows, const std::vector<Gun>& guns) : rows_(rows), guns_(guns) {}

    std::vector<Leg> All() {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            PassGuns(i);
            const double metres = MetresToMark(rows_[i]);
            if (std::isnan(metres)) continue;
            if (!known_) {
                begin_ = i;
                Approach(i, metres);
            } else if (IsOther(rows_[*known_], rows_[i], metres - metres_)) {
                End(i, true);
                begin_ = i;
                if (passed_ && rows_[i].time - rows_[*passed_].time < kFollows) begin_ = *passed_;
                passed_.reset();
                Approach(i, metres);
            } else if (metres < least_) {
                Approach(i, metres);
            } else if (least_ < kNear && metres > least_ + kNear) {
                End(nearest_, true);
                if (begin_) passed_ = nearest_;
                begin_.reset();
            }
            known_ = i;
            metres_ = metres;
        }
        End(rows_.size(), false);
        return legs_;
    }
    bool Any() const { return any_; }  // mark or gun was passed

private:
    void Approach(std::size_t at, double metres) { nearest_ = at, least_ = metres; }

    static bool IsOther(const RaceRow& before, const RaceRow& now, double change) {
        if (!std::isnan(before.markLatitude + now.markLatitude + before.markLongitude + now.markLongitude))
            return MetresBetween(before.markLatitude, before.markLongitude, now.markLatitude, now.markLongitude) > kSameMark;
        return std::fabs(change) > kJump + kFastest * (now.time - before.time - 1.0);
    }

    // A leg begins with the gun, and the count is none.
    void PassGuns(std::size_t at) {
        for (; gun_ < guns_.size() && guns_[gun_].time <= rows_[at].time; ++gun_) {
            any_ = true;
            std::erase_if(legs_, [&](const Leg& leg) { return rows_[leg.to - 1].time > guns_[gun_].countFrom; });
            begin_ = at;
            passed_.reset();
            least_ = metres_;
            nearest_ = at;
        }
    }

    void End(std::size_t at, bool toMark) {
        if (!begin_) return;
        any_ = any_ || toMark;
        if (at >= *begin_ + (toMark ? kShortestToMark : kShortest)) legs_.push_back({.from = *begin_, .to = at, .toMark = toMark});
    }

    const std::vector<RaceRow>& rows_;
    const std::vector<Gun>& guns_;
    std::vector<Leg> legs_;
    std::optional<std::size_t> begin_, passed_, known_;
    std::size_t gun_ = 0, nearest_ = 0;
    double metres_ = kUnmeasured, least_ = kUnmeasured;
    bool any_ = false;
};

// By the mean angle from the wind of the seconds about each row in which she sails, if she does so in most of them.
std::vector<PointOfSail> PointsOfSail(const std::vector<RaceRow>& rows) {
    std::vector<double> sums{0.0}, counts{0.0};
    for (const RaceRow& row : rows) {
        const bool sails = SideOf(row) != 0;
        sums.push_back(sums.back() + (sails ? std::fabs(row.twa) : 0.0));
        counts.push_back(counts.back() + (sails ? 1.0 : 0.0));
    }
    std::vector<PointOfSail> points;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::size_t from = i - std::min(i, kSmooth), to = std::min(i + kSmooth, rows.size());
        const double sails = counts[to] - counts[from];
        points.push_back(2.0 * sails < static_cast<double>(to - from) ? PointOfSail::kNone
                                                                      : PointAt((sums[to] - sums[from]) / sails));
    }
    return points;
}

// A stretch that is too short goes with the one before.
std::vector<Leg> Stretches(const std::vector<RaceRow>& rows) {
    const std::vector<PointOfSail> points = PointsOfSail(rows);
    std::vector<Leg> legs;
    for (std::size_t from = 0, to = 0; from < rows.size(); from = to) {
        while (to < rows.size() && points[to] == points[from] && (to == from || !IsApart(rows[to - 1], rows[to]))) ++to;
        const bool joins = !legs.empty() && legs.back().to == from && !IsApart(rows[from - 1], rows[from]) &&
                           (points[from] == points[legs.back().from] || to - from < kSteady) && points[from] != PointOfSail::kNone;
        if (joins) {
            legs.back().to = to;
        } else if (to - from >= kSteady && points[from] != PointOfSail::kNone) {
            legs.push_back({.from = from, .to = to});
        }
    }
    return legs;
}

void Describe(const std::vector<RaceRow>& rows, const std::vector<Turn>& turns, Leg& leg) {
    double angles = 0.0, count = 0.0;
    const RaceRow* before = nullptr;
    for (std::size_t i = leg.from; i < leg.to; ++i) {
        const RaceRow& row = rows[i];
        if (!std::isnan(row.twa)) angles += std::fabs(row.twa), ++count;
        if (i > leg.from && IsApart(rows[i - 1], row)) before = nullptr;
        if (std::isnan(row.latitude + row.longitude)) continue;
        if (before)
            leg.miles += MetresBetween(before->latitude, before->longitude, row.latitude, row.longitude) / kMetresPerNauticalMile;
        before = &row;
    }
    leg.sailed = PointAt(angles / count);
    for (const Turn& turn : turns) {
        if (turn.row >= leg.from && turn.row < leg.to) ++(turn.tack ? leg.tacks : leg.gybes);
    }
}

}  // namespace

double MetresToMark(const RaceRow& row) {
    const double metres = MetresBetween(row.latitude, row.longitude, row.markLatitude, row.markLongitude);
    return std::isnan(metres) ? row.markRange * kMetresPerNauticalMile : metres;
}

Legs FindLegs(const std::vector<RaceRow>& rows, const std::vector<Gun>& guns, const std::vector<Turn>& turns) {
    MarkFinder marks(rows, guns);
    Legs legs{.all = marks.All()};
    legs.byMarks = marks.Any();
    if (!legs.byMarks) legs.all = Stretches(rows);
    for (Leg& leg : legs.all) Describe(rows, turns, leg);
    return legs;
}

}  // namespace twr
