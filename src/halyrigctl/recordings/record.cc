// SPDX-License-Identifier: MIT
#include <algorithm>
#include <optional>
#include <string>

#include "base/wide_text.h"
#include "core/days.h"
#include "halyrigctl/recordings/day_files.h"
#include "halyrigctl/setup/dry_run.h"
#include "halyrigctl/stream/streamer.h"
#include "streams/iso_time.h"
#include "streams/recording_name.h"
#include "streams/recording_queue.h"

namespace twr {
namespace {

constexpr int kCallsBetweenTending = 10;  // of one a second
constexpr int kMostDrainMs = 30'000;      // what waits is 30 s of every channel, and a service is killed after 90 s

class RecordingOutlet : public Outlet {
public:
    RecordingOutlet(System& system, const RecordingOptions& options, Streamer& streamer)
        : services_(system.Core()),
          console_(system.GetConsole()),
          streamer_(streamer),
          name_(options.name),
          changes_(ChangesWithTime(name_)),
          queue_(services_.files, options) {}

    bool HasRoom() override {
        hasRoom_ = queue_.HasRoom();
        if (!hasRoom_ && !gapFrom_) {
            gapFrom_ = last_;
            Complain(console_, "the disk takes nothing; what is published from " + IsoTime(last_) +
                                   " on is lost until it does. Is it too slow, or failing?");
        }
        return hasRoom_;
    }

    bool Put(std::string_view lines) override {
        if (hasRoom_) Queue(lines);
        return Follow();
    }

    // Waits until all is written, unless the disk holds that up for too long, or the user asks a second time. False if not all is.
    bool Finish() {
        hasRoom_ = true;
        if (gapFrom_) Queue({});
        console_.ForgetStop();
        int left = kMostDrainMs;
        while (!queue_.Finish(kSliceMs) && left > 0 && console_.Wait(0)) left -= kSliceMs;
        const bool ended = queue_.Finish(0);
        Follow();
        const auto state = queue_.Now();
        const std::string file = Harmless(state.path.empty() ? name_ : state.path);
        const double kept = std::max(state.kept, first_.value_or(0.0));
        if (!ended) Complain(console_, file + ": the disk takes nothing; what was published after " + IsoTime(kept) + " is lost.");
        if (!state.fault.empty()) Complain(console_, file + " " + state.fault);
        return ended && state.fault.empty();
    }

private:
    void Queue(std::string_view lines) {
        const RecordingMoment now = Now();
        // A name without fields needs no zone, which the record names: a bad one is told at once.
        if (!begins_ && (!changes_ || streamer_.Core())) begins_ = true, queue_.Begin(now);
        if (!first_) first_ = now.utc;
        std::string gap;
        if (gapFrom_) {
            Complain(console_, "what was published from " + IsoTime(*gapFrom_) + " to " + IsoTime(now.utc) +
                                   " is lost, since the disk took nothing; the recording tells so.");
            AppendGap(gap, *gapFrom_, now.utc);
            gapFrom_.reset();
        }
        queue_.Put(gap.append(lines), now);
        last_ = now.utc;
    }

    // Each file can be played alone, so all that is fresh is told again in a new one.
    bool Follow() {
        const auto state = queue_.Now();
        if (state.begun > begun_ && !state.lost.empty()) {
            Complain(console_,
                     Harmless(state.lost) + " was removed, renamed or replaced; the recording goes on in " + Harmless(state.path));
        }
        if (state.begun > std::max(begun_, 1)) streamer_.TellAll();  // the first file begins with it anyway
        begun_ = state.begun;
        return state.fault.empty();
    }

    // The zone is that of the record, as long as it is known.
    RecordingMoment Now() {
        const double utc = UtcNowDays(services_.clock);
        if (streamer_.Core()) ahead_ = streamer_.Core()->ToDisplayTime(utc) - utc;
        return {utc, utc + ahead_};
    }

    const CoreServices services_;
    Console& console_;
    Streamer& streamer_;
    const std::u16string name_;
    const bool changes_;  // the name, with time
    RecordingQueue queue_;
    bool begins_ = false;
    std::optional<double> first_;  // look
    bool hasRoom_ = true;
    int begun_ = 0;                  // files
    double ahead_ = 0.0;             // days by which the zone is ahead of UTC
    double last_ = 0.0;              // look that the queue took; days, UTC
    std::optional<double> gapFrom_;  // the last look before the queue was full
};

// Who only looks whether somebody has the right to make them has it for a moment.
std::shared_ptr<FileLock> TakeDaysSoon(System& system, const std::u16string& folder) {
    constexpr int kTries = 20, kPauseMs = 50;
    auto taken = TakeDays(system.Core().files, folder);
    for (int tries = 1; !taken && tries < kTries && system.GetConsole().Wait(kPauseMs); ++tries)
        taken = TakeDays(system.Core().files, folder);
    return taken;
}

// A file a day in the data folder; nullopt, and the reason is said, if there can be none now.
std::optional<RecordingOptions> ByItself(System& system, const RecordOptions& options) {
    Files& files = system.Core().files;
    const auto keep = options.keep.empty() ? KeptDays{} : ParseKeep(options.keep).value_or(KeptDays{});
    const DryRun dryRun(system.Core());  // there may be no record yet
    const std::u16string data = dryRun.Core().GetDataFolder(u""), folder = RecordingsFolder(data);
    for (const std::u16string& path : {data, folder}) {
        if (!files.Exists(path)) files.MakeFolder(path);
    }
    const auto taken = data.empty() ? nullptr : TakeDaysSoon(system, folder);
    auto days = std::make_shared<DayFiles>(files, folder, keep);
    const double now = UtcNowDays(system.Core().clock);
    const std::string why = !taken ? "is being made already; 'halyrigctl check' says since when."
                                   : days->Tend({}, static_cast<std::int64_t>(dryRun.Core().ToDisplayTime(now)));
    if (data.empty() || !why.empty()) {
        Complain(system.GetConsole(),
                 data.empty() ? "the data folder is not known; give a FILE." : Harmless(folder) + ": the recording " + why);
        return std::nullopt;
    }
    RecordingOptions recording{days->Name(), true, options.maxSize};
    recording.tend = [days, taken, calls = 0](std::u16string_view path, std::int64_t today) mutable {
        return calls++ % kCallsBetweenTending == 0 ? days->Tend(path, today) : std::string();
    };
    return recording;
}

bool Understands(Console& console, const RecordOptions& options) {
    const char* const wrong = options.keep.empty()    ? nullptr
                              : !options.file.empty() ? "--keep is for the recordings in the data folder: it does not go with FILE"
                              : !ParseKeep(options.keep) ? "--keep must be days, such as 30, or a size, such as 4G"
                                                         : nullptr;
    if (wrong) Complain(console, wrong);
    return !wrong;
}

}  // namespace

Status Record(System& system, const RecordOptions& options) {
    Console& console = system.GetConsole();
    if (!Understands(console, options)) return kMisunderstood;
    if (const auto unknown = UnknownFieldIn(FromUtf8(options.file))) {
        Complain(console, "FILE has " + Harmless(*unknown) + "; its fields are %Y %m %d %H %M %S, and %% for the sign itself");
        return kMisunderstood;
    }
    StreamOptions lines;
    lines.channels = options.channels;
    lines.boat = options.boat;
    std::optional<RecordingOptions> recording = RecordingOptions{FromUtf8(options.file), options.gzip, options.maxSize};
    if (options.file.empty()) recording = ByItself(system, options);
    if (!recording) return kFailed;
    Streamer streamer(system, lines);
    console.Wait(0);  // a request to end is for this thread: from here on those that it begins don't get one
    RecordingOutlet outlet(system, *recording, streamer);
    const Status status = streamer.Run(outlet);
    return outlet.Finish() ? status : kFailed;
}

}  // namespace twr
