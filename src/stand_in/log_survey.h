// SPDX-License-Identifier: MIT
// What the stand-in can use of a log, for a look at it before it is played.
#pragma once
#include <string>
#include <string_view>

#include "nmea/log_tally.h"
#include "platform/files.h"

namespace twr {

struct LogSurvey : LogTally {
    bool opened = false;
    std::string failure;  // why it can't be read to its end, in the system's words; empty if it can
    bool packed = false;  // by gzip
};

// Reads the whole file.
LogSurvey SurveyLog(Files& files, std::u16string_view path);

// Why playing it would give nothing; empty when it would give something.
std::string WhyUseless(const LogSurvey& survey);

}  // namespace twr
