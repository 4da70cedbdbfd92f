#include "base/wide_text.h"
#include "core/days.h"
#include "halyrigctl/stream/streamer.h"
#include "streams/recording_name.h"
#include "streams/recording_writer.h"

namespace twr {
namespace {

class RecordingOutlet : public Outlet {
public:
    RecordingOutlet(const CoreServices& services, const RecordOptions& options, Streamer& streamer)
        : services_(services),
          streamer_(streamer),
          changes_(ChangesWithTime(FromUtf8(options.file))),
          writer_(services.files, {FromUtf8(options.file), options.gzip, options.maxSize}) {}

    // Each file can be played alone, so all that is fresh is told again in a new one.
    bool Put(std::string_view lines) override {
        const RecordingMoment now = Now();
        const std::u16string before = writer_.Path();
        // A name without fields needs no zone, which the record names: a bad one is told at once.
        const bool begun = (changes_ && !streamer_.Core()) || !before.empty() || writer_.Begin(now);
        if (!begun || !writer_.Put(lines, now)) return false;
        if (!before.empty() && writer_.Path() != before) streamer_.TellAll();
        return true;
    }

    RecordingWriter& Writer() { return writer_; }

private:
    // The zone is that of the record, as long as it is known.
    RecordingMoment Now() {
        const double utc = UtcNowDays(services_.clock);
        if (streamer_.Core()) ahead_ = streamer_.Core()->ToDisplayTime(utc) - utc;
        return {utc, utc + ahead_};
    }

    const CoreServices services_;
    Streamer& streamer_;
    const bool changes_;  // the file's name, with time
    RecordingWriter writer_;
    double ahead_ = 0.0;  // days by which the zone is ahead of UTC
};

}  // namespace

Status Record(System& system, const RecordOptions& options) {
    Console& console = system.GetConsole();
    if (const auto unknown = UnknownFieldIn(FromUtf8(options.file))) {
        Complain(console, "FILE has " + Harmless(*unknown) + "; its fields are %Y %m %d %H %M %S, and %% for the sign itself");
        return kMisunderstood;
    }
    StreamOptions lines;
    lines.channels = options.channels;
    lines.boat = options.boat;
    Streamer streamer(system, lines);
    RecordingOutlet outlet(system.Core(), options, streamer);
    const Status status = streamer.Run(outlet);
    if (outlet.Writer().Close()) return status;
    Complain(console, Harmless(outlet.Writer().Path()) + " " + outlet.Writer().Fault());
    return kFailed;
}

}  // namespace twr
