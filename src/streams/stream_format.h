// SPDX-License-Identifier: MIT
// The open formats in which a stream tells what has changed.
#pragma once
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "streams/follower.h"

namespace twr {

// Who sentences say that they come from, two letters each.
struct Talkers {
    std::string all = "II";
    std::string gps = {};  // of time, position, and course and speed over ground; empty for the same

    const std::string& Gps() const { return gps.empty() ? all : gps; }
};

// "XX" for all, or "gps=XX". False if it is neither.
bool TakeTalker(Talkers& talkers, std::string_view typed);

// Tells one reader, or several that have heard the same from the start. Each format is a class in a .cc file of its own.
class StreamFormat {
public:
    virtual ~StreamFormat() = default;

    // Appends what a reader who connects is told ahead of all values. `now` in days.
    virtual void Greet(std::string&, double /*now*/) const {}

    // Only sentences have them.
    virtual void SetTalkers(const Talkers&) {}

    // Appends what tells these changes, as the follower has just given them.
    virtual void Append(std::string& out, std::span<const Change> changes, const Follower& follower) = 0;
};

struct StreamFormatRow {
    const char* name;
    const char* help;
    double rate;           // looks a second unless the user asks for another number
    std::size_t datagram;  // bytes up to which lines share one; 0 for each by itself
    std::unique_ptr<StreamFormat> (*make)();
};

// All of them, the usual one first.
std::span<const StreamFormatRow> StreamFormats();

// The one of this name, which must be there.
const StreamFormatRow& StreamFormatOf(std::string_view name);

}  // namespace twr
