// SPDX-License-Identifier: MIT
#include "base/bounded_lines.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/wide_text.h"

namespace twr {
namespace {

const char* EndOfLine(const char* from, const char* end, bool endsAtCr) {
    if (endsAtCr) return std::find_if(from, end, [](char c) { return c == '\n' || c == '\r'; });
    const void* const found = std::memchr(from, '\n', static_cast<std::size_t>(end - from));  // several times as fast
    return found ? static_cast<const char*>(found) : end;
}

}  // namespace

bool BoundedLines::Refill() {
    const std::size_t room = over_ ? 0 : std::min(buffer_.size(), form_.largest - read_);
    used_ = 0;
    filled_ = room == 0 ? 0 : source_.Read(buffer_.data(), room);
    read_ += filled_;
    const auto end = buffer_.begin() + static_cast<std::ptrdiff_t>(filled_);
    const auto last = form_.endsAtCtrlZ ? std::find(buffer_.begin(), end, '\x1A') : end;
    over_ = over_ || last != end;
    filled_ = static_cast<std::size_t>(last - buffer_.begin());
    return filled_ > 0;
}

bool BoundedLines::Next() {
    line_.clear();
    hasEnd_ = false;
    cut_ = std::exchange(goesOn_, false);
    bool any = cut_;
    std::size_t size = 0;  // of the line, if it is not cut
    while (!hasEnd_ && !goesOn_ && (used_ < filled_ || Refill())) {
        any = true;
        const char* const from = buffer_.data() + used_;
        const char* const end = buffer_.data() + filled_;
        const char* const to = EndOfLine(from, end, form_.endsAtCr);
        const auto count = static_cast<std::size_t>(to - from);
        line_.append(from, std::min(count, form_.longest + 1 - line_.size()));  // one byte more, for the CR
        size += count;
        hasEnd_ = to != end;
        used_ += count + (hasEnd_ ? 1 : 0);
        goesOn_ = form_.emptiesLonger && !hasEnd_ && (cut_ || size > form_.longest);
    }
    if (hasEnd_ && size == line_.size() && line_.ends_with('\r')) line_.pop_back(), --size;
    cut_ = cut_ || size > form_.longest;
    line_.resize(cut_ && form_.emptiesLonger ? 0 : std::min(size, form_.longest));
    return any && (hasEnd_ || goesOn_ || source_.Failure().empty());  // a part of a line could be another one
}

bool BoundedLines::ReportEnd(const Place& place) const {
    const std::string failure = source_.Failure();
    if (EndedEarly()) place.Report(Flaw::kFileCut);
    if (!failure.empty()) place.At(place.line + 1).Report(Flaw::kReadFailed, FromUtf8(failure));
    return !failure.empty();
}

}  // namespace twr
