// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <set>

#include "base/wide_text.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/guest.h"
#include "halyrigctl/recordings/board_time.h"
#include "halyrigctl/recordings/recorded_files.h"
#include "halyrigctl/recordings/replay_desk.h"
#include "halyrigctl/recordings/replayer.h"
#include "halyrigctl/setup/names.h"
#include "status/bridge_status.h"

namespace twr {
namespace {

constexpr int kBetweenChecksMs = 1000;
constexpr double kLongestStep = 1.0;  // seconds; a machine that slept, or whose clock was set, plays on where it was

// The replay of one file, from its start to its end.
class Replay {
public:
    Replay(System& system, const ReplayOptions& options)
        : system_(system), options_(options), file_{FromUtf8(options.file)}, desk_(system.GetConsole(), options.speed) {}

    Status Run();

private:
    std::unique_ptr<RecordedSource> OpenSource();
    bool Understands();
    bool Attach();
    bool ChooseChannels();
    bool PlayOnce();
    bool PlayUntilEnd(Replayer& replayer);
    bool Steps(const Replayer& replayer, double& played);
    void Show(const Replayer& replayer, double played);
    bool Pause(int milliseconds);
    bool GoesOn(int milliseconds = 0);
    bool Fail(const std::string& why);
    bool IsAlone(const std::string& ifNot);

    System& system_;
    const ReplayOptions options_;
    RecordedFile file_;
    ReplayDesk desk_;
    std::optional<TypedTime> from_;
    std::set<ChannelId> channels_;
    std::unique_ptr<CCore> core_;
    int sinceCheck_ = 0;          // milliseconds
    std::optional<double> back_;  // to so many seconds from the beginning of the file, as the user wants
    Status status_ = kDone;
};

Status Replay::Run() {
    if (!Understands() || !OpenSource() || !Attach() || !ChooseChannels()) return status_;
    Complain(system_.GetConsole(),
             "publishing what was recorded into the live record: every program of the suite takes it for what is measured now. "
             "Ctrl-C ends it.");
    desk_.Open();
    while (PlayOnce() && (back_ || options_.loop)) continue;
    desk_.Close();
    if (file_.tally.lines > 0) {
        std::string found = Described(file_.tally);
        found.pop_back();  // the end of its last line
        Complain(system_.GetConsole(), Harmless(file_.path) + ": " + found);
    }
    return status_;
}

bool Replay::Fail(const std::string& why) {
    desk_.Close();  // which would hide it
    Complain(system_.GetConsole(), why);
    status_ = kFailed;
    return false;
}

bool Replay::Understands() {
    from_ = ParseTypedTime(options_.from);
    if (from_ || options_.from.empty()) return true;
    Complain(system_.GetConsole(), std::string("--from must be ") + kTypedTimes + "; not " + Harmless(FromUtf8(options_.from)));
    status_ = kMisunderstood;
    return false;
}

std::unique_ptr<RecordedSource> Replay::OpenSource() {
    auto source = OpenRecorded(system_.Core().files, file_, [this] { return GoesOn(); });
    if (!source && GoesOn()) Fail(Harmless(file_.path) + " " + Harmless(FromUtf8(file_.fault)));
    return source;
}

// Beside the bridge, what is recorded would mix with what is measured. A bridge that can't be seen may run.
bool Replay::IsAlone(const std::string& ifNot) {
    if (options_.into) return true;
    const NameLook bridge = LookForBridge(system_);
    if (bridge.state == NameLook::kTaken) return Fail(HALYRIG_PROGRAM + ifNot);
    return bridge.state == NameLook::kFree ||
           Fail("whether " HALYRIG_PROGRAM " is running can't be seen, and a replay would mix with what it publishes: " +
                bridge.why + ", or publish into that with --into.");
}

bool Replay::Attach() {
    if (!IsAlone(" is running and publishes what is measured; end it first, or publish into that with --into.")) return false;
    core_ = std::make_unique<CCore>(system_.Core());
    if (!core_->View()) return Fail("the record can't be made or joined.");
    if (!core_->QuitRequested()) {
        system_.GetInstance().Claim(kReplayName);  // another replay may have it, which says the same
        return true;
    }
    core_.reset();  // the request would last as long as the record
    return Fail("the suite has been asked to close; try again when all its programs have ended.");
}

bool Replay::ChooseChannels() {
    const NamedChannels named = FindChannels(*core_, options_.channels);
    channels_.insert(named.found.begin(), named.found.end());
    if (named.unknown) status_ = ComplainOfChannel(system_.GetConsole(), named);
    return !named.unknown;
}

// False if that is to be the last time.
bool Replay::PlayOnce() {
    const auto source = OpenSource();
    if (!source) return false;
    ReplayStart start;
    if (from_ && !back_) start = [&](double first) { return from_->MomentFrom(first, BoardZone(*core_, system_.Core().zone)); };
    Replayer replayer(*core_, *source, channels_, start, std::exchange(back_, std::nullopt).value_or(0.0));
    const bool ended = PlayUntilEnd(replayer);
    if (source->Tally()) file_.tally = *source->Tally();
    if (!ended) return false;
    if (back_) return true;
    if (!source->Fault().empty()) return Fail(Harmless(file_.path) + " " + Harmless(FromUtf8(source->Fault())) + "; ended there.");
    if (!replayer.Started()) {
        return Fail(Harmless(file_.path) +
                    (options_.from.empty() ? " holds no value." : " ends before " + Harmless(FromUtf8(options_.from))));
    }
    return !options_.loop || Pause(kSliceMs);
}

// False if the user or the suite asks to stop, or the bridge has started. Where the user goes back it ends too.
bool Replay::PlayUntilEnd(Replayer& replayer) {
    const Clock& clock = system_.Core().clock;
    double played = 0.0;  // seconds of the recording
    std::int64_t before = clock.Ticks();
    for (;;) {
        const Replayer::Result result = replayer.PlayTo(played);
        if (result == Replayer::Result::kEnded) return Pause(0);
        if (Steps(replayer, played)) return true;
        Show(replayer, played);
        const double speed = desk_.Speed();
        const double leftMs = speed > 0.0 ? std::ceil((replayer.Due() - played) / speed * 1000) : double{kSliceMs};
        const bool waits = result == Replayer::Result::kWaits;
        if (!Pause(waits ? static_cast<int>(std::clamp(leftMs, 1.0, double{kSliceMs})) : 0)) return false;
        const std::int64_t now = clock.Ticks();
        const double passed = std::clamp(static_cast<double>(now - before) / kTicksPerSecond, 0.0, kLongestStep);
        before = now;
        // What was due but not published yet is not overtaken.
        if (waits) played += passed * speed;
    }
}

// Ahead, what lies between is published at once; back, the file is read from its start. True if it is.
bool Replay::Steps(const Replayer& replayer, double& played) {
    const double step = replayer.Started() ? desk_.TakeStep() : 0.0;
    if (step < 0.0) back_ = replayer.SecondsAt(played) + step;
    played += std::max(step, 0.0);
    return back_.has_value();
}

void Replay::Show(const Replayer& replayer, double played) {
    if (!desk_.IsOpen() || !replayer.Started()) return;
    ReplayScene scene{Harmless(file_.path), {}, played, 0.0};
    BoardZone(*core_, system_.Core().zone).Append(scene.time, replayer.MomentAt(played));
    const auto size = system_.Core().files.SizeOf(file_.path).value_or(0);
    if (size > 0) scene.percent = 100.0 * static_cast<double>(*file_.read) / static_cast<double>(size);
    desk_.Show(scene);
}

bool Replay::Pause(int milliseconds) {
    core_->StampTime();
    if (!GoesOn(milliseconds)) return false;
    sinceCheck_ += milliseconds;
    if (sinceCheck_ < kBetweenChecksMs) return true;
    sinceCheck_ = 0;
    if (core_->RecordIsLost()) return Fail("the replay has ended, since nobody can follow it.");
    return IsAlone(" has been started; the replay has ended, so as not to mix with what is measured.");
}

// False once the user or the suite has asked to stop.
bool Replay::GoesOn(int milliseconds) { return desk_.Wait(milliseconds) && !(core_ && core_->QuitRequested()); }

}  // namespace

Status ReplayRecording(System& system, const ReplayOptions& options) { return Replay(system, options).Run(); }

}  // namespace twr
