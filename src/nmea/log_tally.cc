// SPDX-License-Identifier: MIT
#include "nmea/log_tally.h"

#include "base/numbers.h"

namespace twr {
namespace {

std::string Listed(const char* heading, const LogTally::Counts& counts) {
    std::string text = heading;
    const char* separator = " ";
    for (const auto& [type, count] : counts) {
        text += separator + type + " " + std::to_string(count);
        separator = ", ";
    }
    return text + (counts.empty() ? " none\n" : "\n");
}

}  // namespace

std::string Described(const LogTally& tally) {
    return std::to_string(tally.lines) + " lines, of which " + std::to_string(tally.broken) +
           Printed(" (%.1f %%) are broken\n", tally.BrokenPercent()) + Listed("  used:", tally.used) +
           Listed("  empty, or of no use:", tally.unused);
}

}  // namespace twr
