// SPDX-License-Identifier: MIT
// Which lines of a log of NMEA 0183 are of use.
#pragma once
#include <cstddef>
#include <map>
#include <string>

#include "nmea/readings.h"

namespace twr {

class LogTally {
public:
    using Counts = std::map<std::string, std::size_t>;  // of sentences, by their type of three letters

    void CountBroken() { ++lines, ++broken; }

    // `heard`: it holds a reading.
    void Count(const NmeaSentence& sentence, bool heard) {
        ++lines;
        hasReading = hasReading || heard;
        ++(heard || TimeOfDayOf(sentence) ? used : unused)[std::string(sentence.type)];
    }

    double BrokenPercent() const { return lines == 0 ? 0.0 : 100.0 * static_cast<double>(broken) / static_cast<double>(lines); }

    std::size_t lines = 0;    // blank ones not counted; one of some kilobytes counts more than once
    std::size_t broken = 0;   // of these, those that are not whole sentences
    bool hasReading = false;  // at least one sentence gives a value
    Counts used;              // a value or the time of day
    Counts unused;            // empty, marked as invalid, or of a type that is not read
};

// In three lines.
std::string Described(const LogTally& tally);

}  // namespace twr
