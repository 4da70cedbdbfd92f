// SPDX-License-Identifier: MIT
// The time on board: moments as texts of the zone in which the suite shows times, and times as a user types them.
#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "core/core.h"

namespace twr {

class BoardZone {
public:
    // The machine's zone, or UTC if the record of the core says so, or if the zone is unknown.
    BoardZone(const CCore& core, const Zone& zone);

    // The moments of a log without a date are of no day, so they stay in UTC.
    static bool IsDated(double utc) { return utc >= 1000.0; }

    int MinutesAhead(double utc) const;  // of UTC, at that moment

    // The moment, in days of UTC, that was shown so: of two the earlier or the later, for one that never was the hour before.
    double Utc(double shown, bool later = false) const;

    // As ISO 8601, with the zone behind it; the time of day alone if the moment has no date.
    void Append(std::string& out, double utc) const;

private:
    const Zone& zone_;
    const bool utc_;
};

// The same in UTC.
void AppendUtc(std::string& out, double utc);

// A moment of a recording as a user types it: 2026-11-25T12:30:00Z, 2026-11-25 12:30+02:00, 2026-11-25, 12:30, 12:30:05Z, +2h,
// +1h30m. Without a zone it is on board.
struct TypedTime {
    double days = 0.0;              // the moment, the time of day or the duration
    bool ofDay = false;             // the first such in the recording
    bool fromStart = false;         // so long after its start
    std::optional<int> ahead = {};  // minutes of its zone before UTC

    // In days of UTC, for a recording that starts then.
    double MomentFrom(double start, const BoardZone& board) const;
};
std::optional<TypedTime> ParseTypedTime(std::string_view text);
inline constexpr const char* kTypedTimes =
    "a moment such as 2026-11-25T12:30, or a time of day such as 12:30, on board, or with Z or +02:00 behind it for another zone, "
    "or "
    "+2h from the start";

// "1:05:09", hours and all, cut to the second.
std::string DurationWords(double seconds);

// "1s", "100ms", "5min", "2h", "1h30m", or a number of seconds. Seconds; nullopt for anything else.
std::optional<double> ParseDuration(std::string_view text);

}  // namespace twr
