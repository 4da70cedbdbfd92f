#include <algorithm>
#include <cmath>
#include <set>

#include "base/wide_text.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/recordings/nmea_log.h"
#include "halyrigctl/recordings/replayer.h"
#include "halyrigctl/setup/names.h"
#include "status/bridge_status.h"
#include "streams/recording.h"

namespace twr {
namespace {

constexpr int kSliceMs = 100;
constexpr int kBetweenChecksMs = 1000;
constexpr double kLongestStep = 1.0;  // seconds; a machine that slept, or whose clock was set, plays on where it was

// The replay of one file, from its start to its end.
class Replay {
public:
    Replay(System& system, const ReplayOptions& options) : system_(system), options_(options), file_(FromUtf8(options.file)) {}

    Status Run();

private:
    std::unique_ptr<UnpackingSource> Open();
    std::unique_ptr<RecordedSource> OpenSource();
    bool Understands();
    bool Attach();
    bool ChooseChannels();
    bool PlayOnce();
    bool PlayUntilEnd(Replayer& replayer);
    bool Pause(int milliseconds);
    bool GoesOn(int milliseconds = 0);
    bool Fail(const std::string& why);
    bool IsAlone(const std::string& ifNot);

    System& system_;
    const ReplayOptions options_;
    const std::u16string file_;
    ReplayStart start_;
    std::set<ChannelId> channels_;
    std::unique_ptr<CCore> core_;
    int sinceCheck_ = 0;  // milliseconds
    Status status_ = kDone;
};

Status Replay::Run() {
    if (!Understands() || !OpenSource() || !Attach() || !ChooseChannels()) return status_;
    Complain(system_.GetConsole(),
             "publishing what was recorded into the live record: every program of the suite takes it for what is measured now. "
             "Ctrl-C ends it.");
    while (PlayOnce() && options_.loop) continue;
    return status_;
}

bool Replay::Fail(const std::string& why) {
    Complain(system_.GetConsole(), why);
    status_ = kFailed;
    return false;
}

bool Replay::Understands() {
    if (options_.from.empty()) return true;
    const auto start = ParseReplayStart(options_.from);
    if (start) {
        start_ = *start;
        return true;
    }
    Complain(system_.GetConsole(),
             "--from must be a moment such as 2026-11-25T12:30:00Z, or a time of day such as 12:30, in UTC; not " +
                 Harmless(FromUtf8(options_.from)));
    status_ = kMisunderstood;
    return false;
}

std::unique_ptr<UnpackingSource> Replay::Open() {
    auto file = system_.Core().files.Open(file_);
    if (!file) return nullptr;
    return std::make_unique<UnpackingSource>(std::move(file), [this] { return GoesOn(); });
}

std::unique_ptr<RecordedSource> Replay::OpenSource() {
    auto lookedAt = Open(), played = Open();
    if (!lookedAt || !played) {
        Fail(Harmless(file_) + " can't be read; give the path of a recording.");
        return nullptr;
    }
    const RecordedForm form = FormOf(*lookedAt);
    if (form == RecordedForm::kRecording) return std::make_unique<RecordingReader>(std::move(played));
    if (form != RecordedForm::kNeither) return std::make_unique<NmeaLog>(std::move(played), form == RecordedForm::kLogWithClock);
    if (!GoesOn()) return nullptr;
    const std::string fault = lookedAt->Fault();
    Fail(Harmless(file_) +
         " line 1: " + (fault.empty() ? "it is neither a recording, nor are there sentences of NMEA 0183 below it." : fault + "."));
    return nullptr;
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
    if (named.unknown) status_ = ComplainOfChannel(system_.GetConsole(), *named.unknown);
    return !named.unknown;
}

// False if that is to be the last time.
bool Replay::PlayOnce() {
    const auto source = OpenSource();
    if (!source) return false;
    Replayer replayer(*core_, *source, channels_, start_);
    if (!PlayUntilEnd(replayer)) return false;
    if (!source->Fault().empty()) return Fail(Harmless(file_) + " " + Harmless(FromUtf8(source->Fault())) + "; ended there.");
    if (!replayer.Started()) {
        return Fail(Harmless(file_) +
                    (options_.from.empty() ? " holds no value." : " ends before " + Harmless(FromUtf8(options_.from))));
    }
    return !options_.loop || Pause(kSliceMs);
}

// False if the user or the suite asks to stop, or the bridge has started.
bool Replay::PlayUntilEnd(Replayer& replayer) {
    const Clock& clock = system_.Core().clock;
    double played = 0.0;  // seconds of the recording
    std::int64_t before = clock.Ticks();
    for (;;) {
        const Replayer::Result result = replayer.PlayTo(played);
        if (result == Replayer::Result::kEnded) return Pause(0);
        const double leftMs = std::ceil((replayer.Due() - played) / options_.speed * 1000);
        const bool waits = result == Replayer::Result::kWaits;
        if (!Pause(waits ? static_cast<int>(std::clamp(leftMs, 1.0, double{kSliceMs})) : 0)) return false;
        const std::int64_t now = clock.Ticks();
        const double passed = std::clamp(static_cast<double>(now - before) / (kTicksPerDay / kSecondsPerDay), 0.0, kLongestStep);
        before = now;
        // What was due but not published yet is not overtaken.
        if (waits) played += passed * options_.speed;
    }
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
bool Replay::GoesOn(int milliseconds) { return system_.GetConsole().Wait(milliseconds) && !(core_ && core_->QuitRequested()); }

}  // namespace

Status ReplayRecording(System& system, const ReplayOptions& options) { return Replay(system, options).Run(); }

}  // namespace twr
