// SPDX-License-Identifier: MIT
// What the page of a report shows, as JSON: src/page/report_data.js reads it.
#pragma once
#include <string>
#include <vector>

#include "core/core.h"
#include "halyrigctl/recordings/board_time.h"
#include "halyrigctl/recordings/race.h"

namespace twr {

struct RaceReport {
    std::string name;                // of the boat
    std::vector<std::string> files;  // that it is made from
    std::vector<std::string> notes;  // what is wrong with them
    bool dated = true;               // the times are of a day
    std::vector<RaceRow> rows;       // times in seconds since day 0
    std::vector<Turn> turns;
    std::vector<Start> starts;
    Legs legs;
    std::vector<PolarBand> bands;
};

// In the user's units. Of a long recording fewer rows are told than there are: every second, third, ... so that the page stays
// small.
std::string ReportData(const CCore& core, const BoardZone& board, const RaceReport& report);

}  // namespace twr
