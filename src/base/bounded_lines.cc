#include "base/bounded_lines.h"

#include <utility>

namespace twr {

bool BoundedLines::Refill() {
    used_ = 0;
    filled_ = source_.Read(buffer_.data(), buffer_.size());
    return filled_ > 0;
}

bool BoundedLines::Next(std::string_view& line) {
    line = {};
    std::size_t length = 0;
    while (true) {
        if (used_ == filled_ && !Refill()) {
            const bool rest = (length > 0 || tooLong_) && source_.Failure().empty();  // a part of a line could be another one
            line = std::string_view(line_.data(), length);
            wasTooLong_ = std::exchange(tooLong_, false);
            return rest;
        }
        while (used_ < filled_) {
            const char byte = buffer_[used_++];
            if (byte == '\n' || byte == '\r') {
                wasTooLong_ = std::exchange(tooLong_, false);
                line = std::string_view(line_.data(), length);
                return true;
            }
            if (length < kLongest && !tooLong_) {
                line_[length++] = byte;
            } else {
                tooLong_ = true;
                length = 0;
            }
        }
        // The caller decides how much of an endless line is worth reading.
        if (tooLong_) {
            wasTooLong_ = true;
            return true;
        }
    }
}

}  // namespace twr
