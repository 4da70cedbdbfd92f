// The lines of a file of any length and with lines of any length, in a fixed amount of memory.
#pragma once
#include <array>
#include <cstddef>
#include <string_view>

#include "base/byte_source.h"

namespace twr {

class BoundedLines {
public:
    static constexpr std::size_t kLongest = 160;  // bytes

    explicit BoundedLines(ByteSource& source) : source_(source) {}

    // Gives the next line without its end (LF, CR or both), valid until the next call; false at the end. A line that is too long
    // comes as one or more empty lines.
    bool Next(std::string_view& line);

    // Whether the line that Next gave last is one that is too long, or a part of it.
    bool WasTooLong() const { return wasTooLong_; }

private:
    bool Refill();

    ByteSource& source_;
    std::array<char, 4096> buffer_{};
    std::size_t filled_ = 0;
    std::size_t used_ = 0;
    std::array<char, kLongest> line_{};
    bool tooLong_ = false;
    bool wasTooLong_ = false;
};

}  // namespace twr
