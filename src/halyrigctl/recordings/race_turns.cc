// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>

#include "base/angles.h"
#include "core/units.h"
#include "halyrigctl/recordings/race.h"

namespace twr {
namespace {

constexpr std::size_t kToBoard = 5;                                           // seconds
constexpr std::size_t kAround = 60;                                           // seconds, for most of which she sails
constexpr double kLongestTurn = 60.0;                                         // seconds between two boards
constexpr double kLeastTack = 30.0, kLeastGybe = 15.0;                        // degrees
constexpr std::size_t kCourseAhead = 12, kCourseClear = 4, kCourseAfter = 8;  // seconds
constexpr double kSecondsPerHour = 3600.0;

constexpr std::size_t kSteadyFrom = 30, kCostFrom = 10, kCostTo = 50;  // seconds before and after a turn

// Boards as they come, and the turn between two of them.
class TurnFinder {
public:
    explicit TurnFinder(const std::vector<RaceRow>& rows) : rows_(rows), course_(rows.size(), kUnmeasured) {
        double last = kUnmeasured;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const double course = rows[i].Course();
            if (std::isnan(course)) continue;
            last = std::isnan(last) ? course : last + WrappedAngle(course - last);
            course_[i] = last;
        }
    }

    std::vector<Turn> All() {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            if (i > 0 && IsApart(rows_[i - 1], rows_[i])) board_ = 0, run_ = 0, begin_ = i;
            const int side = SideOf(rows_[i]);
            run_ = side == 0 ? 0 : side == runSide_ ? run_ + 1 : 1;
            runSide_ = side;
            if (run_ < kToBoard) continue;
            if (board_ != 0 && side != board_ && rows_[i].time - rows_[last_].time < kLongestTurn) Judge(i);
            board_ = side;
            last_ = i;
        }
        return turns_;
    }

private:
    double Course(std::size_t from, std::size_t to) const {
        double sum = 0.0;
        int count = 0;
        for (std::size_t i = from; i < std::min(to, rows_.size()); ++i) {
            if (i > from && IsApart(rows_[i - 1], rows_[i])) break;
            if (!std::isnan(course_[i])) sum += course_[i], ++count;
        }
        return count == 0 ? kUnmeasured : sum / count;
    }

    // Whether she sails for most of the time that there is from one row to the other.
    bool Sails(std::size_t from, std::size_t to) const {
        std::size_t sails = 0, all = 0;
        for (std::size_t i = from; i < std::min(to, rows_.size()) && (i == from || !IsApart(rows_[i - 1], rows_[i])); ++i, ++all)
            sails += SideOf(rows_[i]) != 0 ? 1 : 0;
        return 2 * sails >= all;
    }

    // Whether what lies between the last row of the board before and this one is a turn.
    void Judge(std::size_t now) {
        const std::size_t ahead = std::max(last_ - std::min(last_, kCourseAhead), begin_);
        const std::size_t clear = std::max(last_ - std::min(last_, kCourseClear), ahead + 1);
        Turn turn;
        const auto isThere = [&](std::size_t row) { return rows_[row].twa * board_ < 0.0; };
        turn.row = now;
        for (std::size_t row = now; row > last_ && !(rows_[row].twa * board_ > 0.0); --row)
            turn.row = isThere(row) ? row : turn.row;
        turn.tack = std::fabs(rows_[turn.row].twa) < 90.0;
        turn.degrees = Course(now, now + kCourseAfter) - Course(ahead, clear);
        // Luffing up turns her towards the side from which the wind comes.
        const double turned = turn.degrees * (turn.tack ? board_ : -board_);
        const bool sails = Sails(std::max(last_ - std::min(last_, kAround), begin_), last_) && Sails(now, now + kAround);
        if (sails && turned >= (turn.tack ? kLeastTack : kLeastGybe)) turns_.push_back(turn);
    }

    const std::vector<RaceRow>& rows_;
    std::vector<double> course_;  // without jumps at north
    std::vector<Turn> turns_;
    int board_ = 0, runSide_ = 0;
    std::size_t run_ = 0, last_ = 0, begin_ = 0;
};

double MadeGood(const RaceRow& row, bool tack) { return row.Vmg() * (tack ? 1.0 : -1.0); }

// Whether all from one row to the other is there, a row a second.
bool IsWhole(const std::vector<RaceRow>& rows, std::size_t from, std::size_t to) {
    for (std::size_t i = from; i <= to; ++i) {
        if (std::isnan(rows[i].Vmg()) || (i > from && IsApart(rows[i - 1], rows[i]))) return false;
    }
    return true;
}

}  // namespace

std::vector<Turn> FindTurns(const std::vector<RaceRow>& rows) { return TurnFinder(rows).All(); }

void FindCosts(const std::vector<RaceRow>& rows, const std::vector<Leg>& legs, std::vector<Turn>& turns) {
    for (std::size_t t = 0; t < turns.size(); ++t) {
        Turn& turn = turns[t];
        const auto leg = std::ranges::find_if(legs, [&](const Leg& each) { return turn.row >= each.from && turn.row < each.to; });
        if (leg == legs.end() || turn.row < leg->from + kSteadyFrom || turn.row + kCostTo >= leg->to) continue;
        const std::size_t from = turn.row - kSteadyFrom, steady = turn.row - kCostFrom, to = turn.row + kCostTo;
        const bool alone = (t == 0 || turns[t - 1].row < from) && (t + 1 == turns.size() || turns[t + 1].row > to);
        if (!alone || !IsWhole(rows, from, to)) continue;
        double before = 0.0, made = 0.0;
        turn.speedBefore = 0.0;
        for (std::size_t i = from; i < steady; ++i) {
            before += MadeGood(rows[i], turn.tack) / static_cast<double>(steady - from);
            turn.speedBefore += rows[i].Speed() / static_cast<double>(steady - from);
        }
        turn.speedLeast = rows[steady].Speed();
        for (std::size_t i = steady; i < to; ++i) {
            made += MadeGood(rows[i], turn.tack) / kSecondsPerHour;
            turn.speedLeast = std::min(turn.speedLeast, rows[i].Speed());
        }
        const double lost = before * static_cast<double>(to - steady) / kSecondsPerHour - made;  // miles
        if (before > 0.0) turn.cost = TurnCost{lost * kMetresPerNauticalMile, lost / before * kSecondsPerHour};
    }
}

}  // namespace twr
