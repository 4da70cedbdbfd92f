// SPDX-License-Identifier: MIT
// The marks of the course and the ends of the start line, as they were recorded.
#pragma once
#include <optional>
#include <vector>

#include "halyrigctl/recordings/table_formats.h"
#include "streams/change.h"

namespace twr {

class MarksSeen {
public:
    void Take(const Recorded& recorded);

    // Each mark once, in the order in which they came; of the ends of the line those that held last.
    std::vector<GpxMark> All();

private:
    void EndLook();

    double latitudes_[3] = {kNoValue, kNoValue, kNoValue}, longitudes_[3] = {kNoValue, kNoValue, kNoValue};
    double look_ = 0.0;     // its moment
    bool changed_ = false;  // since then
    std::vector<GpxMark> marks_;
};

}  // namespace twr
