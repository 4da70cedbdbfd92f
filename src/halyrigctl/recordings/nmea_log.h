// SPDX-License-Identifier: MIT
// Reads a log of NMEA 0183 sentences, as the stand-in for Deckman does, and maps it to channels.
#pragma once
#include <deque>
#include <memory>
#include <set>

#include "nmea/log_clock.h"
#include "nmea/log_tally.h"
#include "streams/change.h"
#include "streams/gzip.h"

namespace twr {

// What a file holds, by its first lines.
struct RecordedForm {
    enum Kind { kNeither, kRecording, kLog } kind = kNeither;
    bool hasClock = false;  // a log that tells the time of day
    bool hasDate = false;
    // The first that it tells: seconds since 1899-12-30 UTC; without a date, of that day.
    std::optional<double> moment = std::nullopt;
};
RecordedForm FormOf(ByteSource& source);

// Sentences that are broken, or of an unknown type, are passed over. A value that is not renewed for ten seconds ends.
class NmeaLog : public RecordedSource {
public:
    NmeaLog(std::unique_ptr<UnpackingSource> file, const RecordedForm& form);

    std::optional<Recorded> Next() override;
    std::string Fault() const override;
    const LogTally* Tally() const override { return &tally_; }

private:
    bool ReadEpoch();
    double MomentAfter(const NmeaSentence& sentence, double step) const;
    void Gather();
    void Tell(ChannelId channel, std::optional<double> value);

    const std::unique_ptr<UnpackingSource> file_;
    BoundedLines lines_;
    LogClock clock_;
    Readings readings_;
    LogTally tally_;
    double seconds_ = 0.0;
    double moment_;            // seconds since 1899-12-30 UTC; of a log without a date, of its first day
    bool toldTime_ = false;    // the log has
    bool heard_ = false;       // since the last gathering
    std::set<ChannelId> has_;  // a value
    std::deque<Change> gathered_;
    double gatheredAt_ = 0.0;  // seconds
};

}  // namespace twr
