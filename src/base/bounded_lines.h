// SPDX-License-Identifier: MIT
// The lines of a file of any length, and with lines of any length, in a bounded amount of memory.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/byte_source.h"
#include "base/findings.h"

namespace twr {

// How a file is divided into lines, which end at LF; a CR before it is dropped.
struct LineForm {
    std::size_t longest;             // bytes of a line; it is cut there
    std::size_t largest = SIZE_MAX;  // bytes of the whole, which ends there
    bool endsAtCr = false;           // CR ends a line too
    bool endsAtCtrlZ = false;        // byte 0x1A ends the whole
    bool emptiesLonger = false;  // in place of what is cut, one or more empty lines come, so that an endless one holds nobody up
};

// Settings and lists, as text mode on Windows reads them.
inline constexpr LineForm kTextMode{.longest = kLongestLine, .largest = kLargestFile, .endsAtCtrlZ = true};

class BoundedLines {
public:
    BoundedLines(ByteSource& source, const LineForm& form) : source_(source), form_(form) {}

    // Reads the next line; false when there is none. The last one needs no end, unless reading has failed.
    bool Next();

    const std::string& Line() const { return line_; }  // without its end
    bool Cut() const { return cut_; }                  // it is longer, or a part of one that is
    bool HasEnd() const { return hasEnd_; }

    // Whether the whole ended, or may have, because of its size.
    bool EndedEarly() const { return read_ == form_.largest; }

    // Behind the last line, which is at `place`: reports if there is no further one because of the size or a failure to read.
    // Returns whether reading has failed.
    bool ReportEnd(const Place& place) const;

private:
    bool Refill();

    ByteSource& source_;
    LineForm form_;
    std::array<char, 4096> buffer_{};
    std::size_t filled_ = 0;
    std::size_t used_ = 0;
    std::size_t read_ = 0;  // bytes, those in the buffer among them
    std::string line_;
    bool hasEnd_ = false;
    bool cut_ = false;
    bool goesOn_ = false;  // the next line is a part of the same
    bool over_ = false;    // 0x1A was read
};

}  // namespace twr
