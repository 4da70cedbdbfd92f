// SPDX-License-Identifier: MIT
// The suite's channels as the clients of the server get them: looked at once for all.
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "halyrigctl/output/guest.h"
#include "halyrigctl/serve/history.h"
#include "halyrigctl/setup/circumstances.h"

namespace twr {

// A channel of a boat as a page shows it.
struct Tile {
    std::string json;           // as a member of the "values" of the page's stream, as of the last look
    std::uint64_t changes = 0;  // of its text, unit or state
    double published = 0.0;     // days; 0.0 if it never was

    std::string state, text, unit, value;  // in JSON
    std::string spark = "null";            // in JSON
    double stored = 0.0;                   // as in the record
    double readAt = 0.0, sparkAt = 0.0;    // days
    double lowest = 0.0, highest = 0.0;    // of the spark; directions as History gives them
    bool fresh = false;
};

class Lookout {
public:
    explicit Lookout(System& system);

    // A look, twenty times a second. It outlives the programs of the suite, as LastingGuest does.
    void Look();
    void Release() { Forget(), guest_.Release(); }

    CCore* Core() const { return guest_.Core(); }             // nullptr while there is no record
    Circumstances& Now() { return *circumstances_; }          // only while there is one
    const Follower& Following() const { return *follower_; }  // the same
    std::span<const Change> Changes() const { return changes_; }
    const History& Past() const { return history_; }

    double Time() const { return now_; }  // of the look, days
    std::string_view BridgeWord() const { return bridge_; }
    bool Replays() const { return replays_; }  // a recording

    // It is looked after as long as anyone has it. The channel and boat exist.
    std::shared_ptr<const Tile> Watch(ChannelPlace place);

    // A value of the internal unit in the user's, but durations in seconds, since they are charted; kNoValue if it has none.
    double ForPage(ChannelPlace place, double value) const;

private:
    void Join();
    void Forget();
    void LookAtBridge();
    void Refresh(ChannelPlace place, Tile& tile);
    bool IsDue(ChannelPlace place, const Tile& tile) const;
    void Read(ChannelPlace place, Tile& tile);
    static bool IsBeyond(const Tile& tile);
    void Spark(ChannelPlace place, Tile& tile);
    double InUserUnits(ChannelPlace place, double value) const;

    System& system_;
    LastingGuest guest_;
    std::optional<Circumstances> circumstances_;  // of the record
    std::optional<Follower> follower_;            // the same
    std::span<const Change> changes_;
    History history_;
    std::map<ChannelPlace, std::shared_ptr<Tile>> tiles_;
    double now_ = 0.0;
    std::string_view bridge_ = "none";
    bool replays_ = false;
    double askedAt_ = 0.0;  // for a record, and whether it is a replay; days
};

double SecondsSince1970(double days);

// A text in quotes, or null if it is empty.
std::string InJson(std::u16string_view text);

// A number with up to ten digits, or null if it is none.
std::string InJson(double number);

}  // namespace twr
