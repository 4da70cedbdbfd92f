// SPDX-License-Identifier: MIT
#include "halyrigctl/stream/streamer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/days.h"
#include "halyrigctl/setup/names.h"

namespace twr {
namespace {

constexpr int kJoinMs = 1000;

}  // namespace

Status Streamer::Run(Outlet& outlet) {
    const auto periodMs = static_cast<int>(std::lround(1000 / options_.rate.value_or(row_.rate)));
    do {
        if (!Core() && !Join() && status_ == kDone) guest_.SayThatItWaits();
        if (status_ != kDone) break;
        bytes_.clear();
        if (outlet.HasRoom()) Look();
    } while (outlet.Put(bytes_) && Pause(outlet, Core() ? periodMs : kJoinMs));
    guest_.Release();
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
    if (!guest_.Join()) return false;
    const std::optional<FollowOptions> chosen = Chosen(*Core());
    if (!chosen) {
        guest_.Release();
        return false;
    }
    follower_.emplace(*guest_.Core(), system_.Core().clock, *chosen);
    guest_.Welcome();
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

// The end of all values is written down before the record goes.
void Streamer::LeaveIfNeeded() {
    const char* why = guest_.WhyLeave();
    if (!why) return;
    format_->Append(farewell_, follower_->Gone(), *follower_);
    follower_.reset();
    guest_.Leave(why);
}

void Streamer::Look() {
    bytes_.swap(farewell_);
    if (follower_) format_->Append(bytes_, follower_->Look(), *follower_);
}

bool Streamer::Pause(Outlet& outlet, int periodMs) {
    const bool joined = Core() != nullptr;
    const auto [left, passed] = beat_.UntilNext(periodMs);
    waited_ += passed;
    for (int milliseconds = left; milliseconds > 0; milliseconds -= kSliceMs) {
        LeaveIfNeeded();
        if (joined && !Core()) return true;  // the end of its values is to be told
        const int slice = std::min(milliseconds, kSliceMs);
        if (TimeIsOver() || !system_.GetConsole().Wait(slice)) return false;
        waited_ += slice;
        if (milliseconds > kSliceMs && !outlet.Put({})) return false;
    }
    LeaveIfNeeded();
    return !TimeIsOver();
}

}  // namespace twr
