// SPDX-License-Identifier: MIT
// Changes as lines of JSON, for recordings and for programs of the crew's own, and back:
//   {"time":"2026-11-25T01:02:03.4Z","id":1,"name":"BSP","boat":0,"value":6.5,"unit":"kn","text":"6.50"}
#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/bounded_lines.h"
#include "core/core.h"
#include "streams/change.h"

namespace twr {

// Appends the line of a change, with its end: ASCII, the time to the millisecond, the value in the internal unit with every digit,
// the text in the user's units. `unit` is null if the channel has none, `value` and `text` without a value.
void AppendJsonLine(std::string& out, const Change& change, const CCore& core);

// The lines of a recording that are no channel's change, at moments in days of UTC: its first one, the time of a look, and that
// what was published between two looks is not in it.
void AppendHeader(std::string& out, double start);
void AppendMark(std::string& out, double now);
void AppendGap(std::string& out, double from, double to);

struct ReadLine {
    std::optional<Change> change;  // nullopt if the line is none
    std::string fault = {};        // why, unless it is a header or a gap
    Seam seam = Seam::kNone;       // which of these
};

// Understands a line, or the header or a gap of a recording, which have neither a change nor a fault. Members that it does not know
// are passed over; "time", "id" and "value" must be there, without "boat" it is the own one.
ReadLine ParseJsonLine(std::string_view line);

// The same, ten times as slow, whatever form the line has.
ReadLine ParseAnyJsonLine(std::string_view line);

// The changes of a file of any length, line by line. Empty lines, headers and gaps are passed over, and so is a last line that a
// kill or a power cut has torn.
class JsonLineReader {
public:
    explicit JsonLineReader(ByteSource& source) : lines_(source, {.longest = kLongest}) {}

    // nullopt at the end, and at the first line that is no change: Fault() then says its number and why.
    std::optional<Change> Next();
    const std::string& Fault() const { return fault_; }  // empty while there is none
    std::size_t Number() const { return number_; }       // of lines that were read to their ends
    bool IsTorn() const { return torn_; }                // the last line has no end, and is none

    // What lay ahead of the last change, or of several if it was not asked for meanwhile.
    Seam TakeSeam() { return std::exchange(seam_, Seam::kNone); }

private:
    static constexpr std::size_t kLongest = 4096;  // bytes; one that this program writes has less than 1500

    BoundedLines lines_;
    std::size_t number_ = 0;
    Seam seam_ = Seam::kNone;
    bool torn_ = false;
    std::string fault_;
};

}  // namespace twr
