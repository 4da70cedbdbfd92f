// SPDX-License-Identifier: MIT
// Reads a log of NMEA 0183 sentences, as the stand-in for Deckman does, and maps it to channels.
#pragma once
#include <deque>
#include <memory>

#include "nmea/log_clock.h"
#include "nmea/readings.h"
#include "streams/change.h"
#include "streams/gzip.h"

namespace twr {

// What a file holds, by its first lines.
enum class RecordedForm {
    kRecording,
    kLog,  // without the time of day
    kLogWithClock,
    kNeither,
};
RecordedForm FormOf(ByteSource& source);

// Sentences that are broken, or of an unknown type, are passed over.
class NmeaLog : public RecordedSource {
public:
    NmeaLog(std::unique_ptr<UnpackingSource> file, bool hasClock);

    std::optional<Recorded> Next() override;
    std::string Fault() const override;

private:
    bool ReadEpoch();
    void Gather();

    const std::unique_ptr<UnpackingSource> file_;
    BoundedLines lines_;
    LogClock clock_;
    Readings readings_;
    double seconds_ = 0.0;
    std::optional<double> start_;  // seconds since midnight, of the log's first second
    bool heard_ = false;           // since the last gathering
    std::deque<Change> gathered_;
    double gatheredAt_ = 0.0;  // seconds
};

}  // namespace twr
