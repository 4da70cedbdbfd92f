// SPDX-License-Identifier: MIT
// Carries the record's channels to an outlet, from one record to the next.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "core/core.h"
#include "halyrigctl/commands.h"
#include "halyrigctl/output/guest.h"
#include "streams/follower.h"
#include "streams/outlet.h"
#include "streams/stream_format.h"

namespace twr {

class Streamer {
public:
    Streamer(System& system, const StreamOptions& options)
        : system_(system),
          options_(options),
          guest_(system),
          row_(StreamFormatOf(options.format)),
          format_(MakeFormat()),
          beat_(system.Core().clock) {}

    // Streams until the user asks to stop, the options' time is over, or the outlet has nobody left. It outlives records: one that
    // is asked to close, or in which nobody publishes, is let go, and the next one joined; both are said on standard error.
    Status Run(Outlet& outlet);

    // What whoever joins the stream now has missed, as of the last look.
    std::string Greeting();

    // To be called while an outlet is held up: lets go of the record if it is asked to close. False once the user asks to stop.
    bool GoOn();

    // Tells all fresh values again at the next look.
    void TellAll() {
        if (follower_) follower_->Forget();
    }

    const CCore* Core() const { return guest_.Core(); }  // of the record; nullptr while there is none

private:
    std::unique_ptr<StreamFormat> MakeFormat() const;
    bool Join();
    std::optional<FollowOptions> Chosen(const CCore& core);
    void LeaveIfNeeded();
    void Look();
    bool Pause(Outlet& outlet, int periodMs);
    bool TimeIsOver() const { return options_.seconds && waited_ >= *options_.seconds * std::int64_t{1000}; }

    System& system_;
    const StreamOptions options_;
    LastingGuest guest_;
    std::optional<Follower> follower_;  // of that record
    const StreamFormatRow& row_;
    const std::unique_ptr<StreamFormat> format_;
    std::string bytes_;     // of this look
    std::string farewell_;  // of the record that was let go
    Beat beat_;
    std::int64_t waited_ = 0;  // milliseconds
    Status status_ = kDone;
};

}  // namespace twr
