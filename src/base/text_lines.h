// A file's bytes as the lines of a text file.
#pragma once
#include <array>
#include <cstddef>
#include <string>

#include "base/byte_source.h"
#include "base/findings.h"

namespace twr {

// Lines end at LF; a CR before it is dropped, and byte 0x1A ends the text, as in text mode on Windows. The last line needs no end.
// Of a line longer than kLongestLine that much is given. Byte kLargestFile ends the text too.
class TextLines {
public:
    explicit TextLines(ByteSource& source) : source_(source) {}

    // False when there is no further line.
    bool Next(std::string& line);

    // Whether the line given last is longer.
    bool Cut() const { return cut_; }

    // Whether the text ended, or may have, because of its size.
    bool EndedEarly() const { return read_ == kLargestFile; }

    // Reports if there was none because reading has failed, and returns whether it has.
    bool ReportFailure(const Place& place) const;

private:
    bool NextByte(char& byte);

    ByteSource& source_;
    std::array<char, 4096> buffer_{};
    std::size_t filled_ = 0;
    std::size_t used_ = 0;
    std::size_t read_ = 0;  // bytes, those in the buffer among them
    bool ended_ = false;
    bool cut_ = false;
};

}  // namespace twr
