// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <map>

#include "halyrigctl/recordings/race.h"

namespace twr {
namespace {

constexpr int kBandWide = 4;                         // knots
constexpr int kMostWind = 100;                       // knots
constexpr int kCellWide = 10;                        // degrees
constexpr std::size_t kLeastSeconds = 20;            // in a cell, or beside a target; fewer say nothing
constexpr double kBesideTarget = 15.0;               // degrees; further off she sails to no target
constexpr std::size_t kTurnFrom = 15, kTurnTo = 45;  // seconds about a turn, in which no speed is steady

struct Sums {
    double twa = 0.0, bsp = 0.0, sailedTwa = 0.0, sailedBsp = 0.0;
    std::size_t count = 0;
};

struct Gathered {
    std::map<int, std::vector<float>> speeds;  // by the cell's angle
    Sums upwind, downwind;
    std::size_t count = 0;
};

void Gather(const RaceRow& row, Gathered& band) {
    const double angle = std::fabs(row.twa), target = std::fabs(row.targetTwa);
    ++band.count;
    band.speeds[static_cast<int>(std::min(angle, 179.0)) / kCellWide * kCellWide].push_back(static_cast<float>(row.bsp));
    if (!(std::fabs(angle - target) < kBesideTarget) || std::isnan(row.targetBsp)) return;
    Sums& sums = target < 90.0 ? band.upwind : band.downwind;
    sums.twa += target, sums.bsp += row.targetBsp, sums.sailedTwa += angle, sums.sailedBsp += row.bsp;
    ++sums.count;
}

std::optional<PolarTarget> Means(const Sums& sums) {
    if (sums.count < kLeastSeconds) return std::nullopt;
    const auto count = static_cast<double>(sums.count);
    return PolarTarget{sums.twa / count, sums.bsp / count, sums.sailedTwa / count, sums.sailedBsp / count, sums.count};
}

PolarCell CellOf(int angle, std::vector<float>& speeds) {
    std::ranges::sort(speeds);
    return {angle, speeds.size(), speeds[speeds.size() / 2], speeds[speeds.size() * 9 / 10]};
}

}  // namespace

std::vector<PolarBand> FindPolarBands(const std::vector<RaceRow>& rows, const std::vector<Turn>& turns) {
    std::map<int, Gathered> gathered;
    auto turn = turns.begin();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        while (turn != turns.end() && turn->row + kTurnTo < i) ++turn;
        const bool isInTurn = turn != turns.end() && i + kTurnFrom >= turn->row;
        if (isInTurn || SideOf(rows[i]) == 0 || std::isnan(rows[i].bsp) || !(rows[i].tws >= 0.0 && rows[i].tws < kMostWind))
            continue;
        Gather(rows[i], gathered[static_cast<int>(rows[i].tws) / kBandWide]);
    }
    std::vector<PolarBand> bands;
    for (auto& [band, all] : gathered) {
        PolarBand told{.from = 1.0 * band * kBandWide, .to = 1.0 * (band + 1) * kBandWide, .count = all.count};
        for (auto& [angle, speeds] : all.speeds) {
            if (speeds.size() >= kLeastSeconds) told.cells.push_back(CellOf(angle, speeds));
        }
        told.upwind = Means(all.upwind);
        told.downwind = Means(all.downwind);
        if (!told.cells.empty()) bands.push_back(told);
    }
    return bands;
}

}  // namespace twr
