// SPDX-License-Identifier: MIT
#include "halyrigctl/stream/streamer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/days.h"
#include "core/record_access.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

constexpr int kSliceMs = 100;
constexpr int kJoinMs = 1000;
constexpr double kIdle = 10.0 / kSecondsPerDay;  // after which most values are stale
constexpr std::int64_t kTicksPerMs = 10'000;
constexpr std::int64_t kMostEarly = 20 * kTicksPerMs;  // of a wait, by the coarse clock of Windows
constexpr std::int64_t kMostLate = 1000 * kTicksPerMs;

// A record lives as long as anyone holds it: without this, a guest would keep the one of programs that have ended long ago.
bool IsIdle(const CoreRecord& record, const Clock& clock) {
    return std::fabs(UtcNowDays(clock) - Load(record.fullBlocks[0].time[kTime])) > kIdle;
}

}  // namespace

Status Streamer::Run(Outlet& outlet) {
    const auto periodMs = static_cast<int>(std::lround(1000 / options_.rate.value_or(row_.rate)));
    do {
        if (!core_ && !Join() && !saysWaiting_ && status_ == kDone) {
            Complain(system_.GetConsole(),
                     "there is no record yet, since no program of the suite is publishing; waiting for it. Start " HALYRIG_PROGRAM
                     ".");
            saysWaiting_ = true;
        }
        if (status_ != kDone) break;
        bytes_.clear();
        if (outlet.HasRoom()) Look();
    } while (outlet.Put(bytes_) && Pause(outlet, core_ ? periodMs : kJoinMs));
    core_.reset();
    return status_;
}

std::unique_ptr<StreamFormat> Streamer::MakeFormat() const {
    Talkers talkers;
    for (const std::string& typed : options_.talkers) TakeTalker(talkers, typed);
    auto format = row_.make();
    format->SetTalkers(talkers);
    return format;
}

std::string Streamer::Greeting() {
    std::string greeting;
    const std::unique_ptr<StreamFormat> fromNow = MakeFormat();
    fromNow->Greet(greeting, UtcNowDays(system_.Core().clock));
    if (follower_) fromNow->Append(greeting, follower_->Present(), *follower_);
    return greeting;
}

bool Streamer::GoOn() {
    LeaveIfNeeded();
    return system_.GetConsole().Wait(0);
}

// False if there is no record, or none that lasts.
bool Streamer::Join() {
    const CoreServices services = system_.Core();
    auto core = std::make_unique<CCore>(services, Attachment::kOpenOnly);
    if (!core->View() || core->QuitRequested() || IsIdle(*core->View(), services.clock)) return false;
    const std::optional<FollowOptions> chosen = Chosen(*core);
    if (!chosen) return false;
    core_ = std::move(core);
    follower_.emplace(*core_, services.clock, *chosen);
    if (std::exchange(saysWaiting_, false)) Complain(system_.GetConsole(), "the record is there.");
    return true;
}

// nullopt, with the status, if there is no such channel.
std::optional<FollowOptions> Streamer::Chosen(const CCore& core) {
    FollowOptions chosen{.boat = options_.boat, .all = options_.all};
    NamedChannels named = FindChannels(core, options_.channels);
    if (!named.unknown && std::ranges::find(named.found, kTime) != named.found.end()) named.unknown = "Time";
    if (named.unknown) {
        status_ = ComplainOfChannel(system_.GetConsole(), named);
        return std::nullopt;
    }
    chosen.channels = std::move(named.found);
    return chosen;
}

void Streamer::LeaveIfNeeded() {
    if (!core_) return;
    if (core_->QuitRequested()) {
        Leave("the suite has been asked to close; waiting for the next record.");
    } else if (core_->RecordIsLost()) {
        Leave("waiting for the next record.");
    } else if (IsIdle(*core_->View(), system_.Core().clock)) {
        Leave("no program of the suite has published anything for 10 s; waiting for one that does.");
    }
}

// The end of all values is written down before the record goes, and the record goes before anything is said: what is held up would
// hold it too.
void Streamer::Leave(const char* why) {
    format_->Append(farewell_, follower_->Gone(), *follower_);
    follower_.reset();
    core_.reset();
    Complain(system_.GetConsole(), why);
    saysWaiting_ = true;
}

void Streamer::Look() {
    bytes_.swap(farewell_);
    if (follower_) format_->Append(bytes_, follower_->Look(), *follower_);
}

// Milliseconds until the next look. Looks come on a beat: what one takes, or is late, does not put off those behind it. The beat
// starts again when the clock was set, or the machine slept.
int Streamer::UntilNext(int periodMs) {
    const std::int64_t now = system_.Core().clock.Ticks(), period = periodMs * kTicksPerMs;
    std::int64_t late = now - due_;
    if (late < -kMostEarly || late > std::max(kMostLate, period)) late = 0;
    const std::int64_t beats = 1 + std::max<std::int64_t>(late, 0) / period;
    due_ = now - late + beats * period;
    const auto left = static_cast<int>((due_ - now + kTicksPerMs - 1) / kTicksPerMs);
    waited_ += beats * periodMs - left;  // what has passed of these beats by now
    return left;
}

bool Streamer::Pause(Outlet& outlet, int periodMs) {
    const bool joined = core_ != nullptr;
    for (int milliseconds = UntilNext(periodMs); milliseconds > 0; milliseconds -= kSliceMs) {
        LeaveIfNeeded();
        if (joined && !core_) return true;  // the end of its values is to be told
        const int slice = std::min(milliseconds, kSliceMs);
        if (TimeIsOver() || !system_.GetConsole().Wait(slice)) return false;
        waited_ += slice;
        if (milliseconds > kSliceMs && !outlet.Put({})) return false;
    }
    LeaveIfNeeded();
    return !TimeIsOver();
}

}  // namespace twr
