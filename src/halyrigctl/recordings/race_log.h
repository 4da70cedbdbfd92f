// SPDX-License-Identifier: MIT
// The rows of a race, made from what was recorded of one boat.
#pragma once
#include <memory>

#include "halyrigctl/recordings/race.h"
#include "halyrigctl/recordings/table_rows.h"

namespace twr {

// Guns are seen in the count of TmToGun: one that was counted down to its last seconds.
class GunWatch {
public:
    void Take(const Recorded& recorded);
    const std::vector<Gun>& All() const { return guns_; }

private:
    std::optional<Gun> count_;         // that runs, with its gun
    double first_ = 0.0, last_ = 0.0;  // seconds that it told
    std::vector<Gun> guns_;
};

class RaceLog {
public:
    static constexpr std::size_t kMostRows = 8 * 86'400;

    // `core` must outlive this. `from` and `to` are days of UTC, both included.
    RaceLog(const CCore& core, BoatSlot boat, double from, double to);

    void Take(const Recorded& recorded);
    void Finish() { table_.Finish(); }

    const std::vector<RaceRow>& Rows() const { return rows_; }  // times in seconds since day 0 of the suite
    const std::vector<Gun>& Guns() const { return guns_.All(); }
    std::size_t Repeated() const { return repeated_; }  // seconds left out, since the clock was set back to them
    bool IsFull() const { return rows_.size() >= kMostRows; }

private:
    void Append(const TableRow& row);

    BoatSlot boat_;
    TableRows table_;
    GunWatch guns_;
    std::vector<RaceRow> rows_;
    std::size_t repeated_ = 0;
    bool seam_ = false;  // rows were left out since the last
};

}  // namespace twr
