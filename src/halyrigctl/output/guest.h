// SPDX-License-Identifier: MIT
// How halyrigctl attaches to the record: as a guest of the programs that hold it.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>

#include "core/core.h"

namespace twr {

// However long a command waits, it asks so often whether the user wants it to end, or the suite asks to close: until it lets go of
// the record, that request would last.
inline constexpr int kSliceMs = 100;

enum class WithoutRecord {
    kComplain,  // on standard error, with what to start
    kGoOn,      // with a core that is not attached
};

class Guest {
public:
    // Joins the record if there is one.
    explicit Guest(System& system, WithoutRecord without = WithoutRecord::kComplain);

    explicit operator bool() const { return core_ && core_->View(); }
    CCore& Core() { return *core_; }  // unattached without a record, and none if that was a complaint
    CoreRecord& Record() { return *core_->View(); }

    // Releases the record, which ends the use of both.
    void Release();

    bool RecordWasLost() const { return lost_; }  // when it was released

    // The same, then explains on standard error a request to close if the record had one. To be called before anything is written:
    // while output is held up, the request would persist with the record.
    void Leave();

private:
    Console& console_;
    std::optional<CCore> core_;
    bool closing_ = false;  // the suite had been asked to close
    bool lost_ = false;
};

// A guest that outlives the programs of the suite. A record lives as long as anyone holds it: without letting go, a guest would
// keep the one of programs that have ended long ago.
class LastingGuest {
public:
    explicit LastingGuest(System& system) : system_(system) {}

    // False if there is no record, or none that lasts.
    bool Join();
    // It has joined. What it said of waiting is taken back.
    void Welcome();
    // That it waits for a record, once.
    void SayThatItWaits();

    CCore* Core() const { return core_.get(); }  // of the record; nullptr while there is none

    // Why the record is to be let go now; nullptr if it isn't.
    const char* WhyLeave() const;
    // The record goes before anything is said: what is held up would hold it too.
    void Leave(const char* why);
    void Release() { core_.reset(); }

private:
    System& system_;
    std::unique_ptr<CCore> core_;
    bool saysWaiting_ = false;
};

// Looks come on a beat: what one takes, or is late, does not put off those behind it. The beat starts again when the clock was set,
// or the machine slept.
class Beat {
public:
    explicit Beat(const Clock& clock) : clock_(clock) {}

    struct Next {
        int left;             // milliseconds until the next look
        std::int64_t passed;  // of the beats since the last one, by now
    };
    Next UntilNext(int periodMs);

private:
    const Clock& clock_;
    std::int64_t due_ = 0;  // the next look, in ticks of the clock
};

}  // namespace twr
