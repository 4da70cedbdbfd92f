// Replays an NMEA 0183 recording, over and over. The instruments' source if there is one.
#pragma once
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "stand_in/bounded_lines.h"
#include "stand_in/moment.h"
#include "stand_in/nmea_sentence.h"
#include "stand_in/readings.h"
#include "stand_in/recording_clock.h"

namespace twr {

// Reads as it plays, so that a recording may be of any length. What is not in it, or was not renewed for a while, is absent; so is
// everything while the file can't be opened.
class RecordingReplay final : public InstrumentSource {
public:
    RecordingReplay(Files& files, std::u16string_view path);

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
    RecordingClock clock_;
    double playTime_ = 0.0;  // seconds since the start of the replay
    double readTime_ = 0.0;  // up to which it has been read
    Readings readings_;
    Moment moment_;
};

}  // namespace twr
