// SPDX-License-Identifier: MIT
// The units of a table's columns.
#pragma once
#include <string>

#include "core/core.h"

namespace twr {

enum class TableUnits {
    kInternal,  // those of the record
    kUser,      // those that the crew has chosen
    kSi,
};

class ColumnUnit {
public:
    ColumnUnit(const CCore& core, ChannelId channel, TableUnits units);

    // A plain word, in UTF-8; empty if there is none.
    const std::string& Name() const { return name_; }

    // The value is told as a moment, in days of UTC.
    bool IsMoment() const { return moment_; }

    // From the internal unit; kNoValue if it can't be told in this one. `variation` in degrees, for a bearing that is shown true.
    double Convert(double value, double variation) const;

private:
    const CCore& core_;
    ChannelId channel_;
    TableUnits units_;
    std::string name_;
    bool moment_ = false;
    double factor_ = 1.0, offset_ = 0.0;  // where the user has no choice
};

}  // namespace twr
