// SPDX-License-Identifier: MIT
// Replays a log of NMEA 0183, over and over. The instruments' source if there is one.
#pragma once
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "nmea/log_clock.h"
#include "nmea/readings.h"
#include "nmea/sentence.h"
#include "platform/files.h"
#include "stand_in/instrument_source.h"

namespace twr {

// Reads as it plays, so that a log may be of any length. What is not in it, or was not renewed for a while, is absent; so is
// everything while the file can't be opened.
class LogReplay final : public InstrumentSource {
public:
    LogReplay(Files& files, std::u16string_view path);

    void Advance(double seconds) override;
    const Moment& Now() const override { return moment_; }

private:
    bool Open();
    bool TellsTime();
    void Close();
    void Play();
    bool Read();

    Files& files_;
    std::u16string path_;
    std::unique_ptr<ByteSource> source_;
    std::optional<BoundedLines> lines_;
    std::optional<NmeaSentence> next_;  // read, and due at readTime_
    LogClock clock_;
    double playTime_ = 0.0;  // seconds since the start of the replay
    double readTime_ = 0.0;  // up to which it has been read
    Readings readings_;
    Moment moment_;
};

}  // namespace twr
