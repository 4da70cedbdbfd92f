// SPDX-License-Identifier: MIT
// The rows of a table over time, made from what was recorded.
#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "core/core.h"
#include "streams/change.h"

namespace twr {

struct TableWish {
    std::int64_t step;  // ms, above 0; the rows are at whole multiples of it
    std::vector<ChannelId> channels;
    std::vector<BoatSlot> boats;
    double from = -1e9, to = 1e9;  // days of UTC, both included
};

// One boat at one moment.
struct TableRow {
    double time;  // days of UTC
    BoatSlot boat;
    std::span<const double> values;  // of each channel, in its internal unit; kNoValue where none is fresh
    double variation;                // degrees, east positive; kNoValue if none is fresh
};

// Each value holds from its publication until it is replaced, ends, or is older than its channel's limit. There is no row where
// nothing is fresh, and none in a gap. A clock that was set back is set back in the rows too.
class TableRows {
public:
    // Both must outlive this.
    TableRows(const CCore& core, const TableWish& wish, std::function<void(const TableRow&)> tell);

    void Take(const Recorded& recorded);

    // What comes last. False, of this and before, once `to` is behind.
    void Finish() { EndLook(); }

private:
    struct Slot {
        double value = kNoValue;
        double time = 0.0;       // its stamp
        std::int16_t limit = 0;  // seconds
        std::uint32_t file = 0;  // that has told it
    };

    std::size_t Width() const { return wish_.channels.size() + 1; }  // the variation is the last
    void BeginLook(const Recorded& recorded);
    void EndLook();
    void Apply(const Change& change);
    void TellRows(double time);
    double Fresh(const Slot& slot, double time) const;

    const CCore& core_;
    const TableWish wish_;
    const std::function<void(const TableRow&)> tell_;
    std::vector<std::int32_t> columns_;    // by channel; -1 for none
    std::vector<std::int32_t> lines_;      // by boat; -1 for none
    std::vector<Slot> slots_;              // line by line
    std::vector<double> values_;           // of a row
    std::vector<Change> look_;             // what was found at the look of now, if a row falls ahead of it
    bool waits_ = false;                   // such a row does
    std::optional<double> now_;            // the look's moment, days
    std::int64_t next_ = 0;                // ms, of the next row
    std::uint32_t file_ = 0, oldest_ = 0;  // files count from here on
};

}  // namespace twr
