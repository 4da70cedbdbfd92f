// SPDX-License-Identifier: MIT
// What has changed in the record, from which all formats of a stream are made, and what had changed when it was recorded.
#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "base/channel_ids.h"
#include "base/no_value.h"

namespace twr {

// One thing that has changed.
struct Change {
    double time;  // days: the publication's stamp; the moment of the look for a value that is found stale or gone
    ChannelId channel;
    BoatSlot boat;
    double value;  // in the channel's internal unit; kNoValue once it is stale or gone

    bool operator==(const Change&) const = default;
};

// What lies between a change and the one before it.
enum class Seam : std::uint8_t {
    kNone,
    kGap,    // the recorder has missed what was published
    kStart,  // a file begins, which tells all that holds
};

// What was published at some time, to be published again.
struct Recorded {
    double seconds;  // since the start of the recording, never less than those before it
    double time;     // that moment, days; of a log that tells the time of day alone, its day is day 0
    Change change;
    Seam seam = Seam::kNone;
};

class LogTally;  // nmea/log_tally.h

class RecordedSource {
public:
    virtual ~RecordedSource() = default;

    // Whether the last line has no end, as of one that a kill or a power cut has torn.
    virtual bool IsTorn() const { return false; }

    // Of a log of NMEA 0183: which lines were of use so far. nullptr for others.
    virtual const LogTally* Tally() const { return nullptr; }

    // The next one; nullopt at the end, and for ever at what is no recording: Fault() then says where and why.
    virtual std::optional<Recorded> Next() = 0;
    virtual std::string Fault() const = 0;  // in UTF-8; empty while there is none
};

}  // namespace twr
