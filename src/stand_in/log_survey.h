// SPDX-License-Identifier: MIT
// What the stand-in can use of a log, for a look at it before it is played.
#pragma once
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace twr {

struct LogSurvey {
    using Counts = std::map<std::string, std::size_t>;  // of sentences, by their type of three letters

    bool opened = false;
    std::string failure;      // why it can't be read to its end, in the system's words; empty if it can
    bool packed = false;      // by gzip
    bool hasReading = false;  // at least one sentence gives the instruments a value
    std::size_t lines = 0;    // blank ones not counted; one of some kilobytes counts more than once
    std::size_t broken = 0;   // of these, those that are not whole sentences
    Counts used;              // a value or the time of day
    Counts unused;            // empty, marked as invalid, or of a type that the stand-in doesn't read
};

// Reads the whole file.
LogSurvey SurveyLog(Files& files, std::u16string_view path);

// Why playing it would give nothing; empty when it would give something.
std::string WhyUseless(const LogSurvey& survey);

// A summary of a usable log, in lines.
std::string Described(const LogSurvey& survey);

}  // namespace twr
