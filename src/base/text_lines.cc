#include "base/text_lines.h"

#include <algorithm>

#include "base/wide_text.h"

namespace twr {

bool TextLines::NextByte(char& byte) {
    if (used_ == filled_) {
        filled_ =
            ended_ || read_ == kLargestFile ? 0 : source_.Read(buffer_.data(), std::min(buffer_.size(), kLargestFile - read_));
        read_ += filled_;
        used_ = 0;
    }
    if (filled_ == 0 || buffer_[used_] == '\x1A') {
        ended_ = true;
        filled_ = used_ = 0;
        return false;
    }
    byte = buffer_[used_++];
    return true;
}

bool TextLines::Next(std::string& line) {
    line.clear();
    char byte = 0;
    bool any = false, ends = false, over = false;
    while (!ends && NextByte(byte)) {
        any = true;
        ends = byte == '\n';
        over = over || (!ends && line.size() > kLongestLine);  // one byte more, for the CR
        if (!ends && !over) line.push_back(byte);
    }
    if (ends && !over && line.ends_with('\r')) line.pop_back();
    cut_ = line.size() > kLongestLine;
    if (cut_) line.pop_back();
    return any && (ends || source_.Failure().empty());  // a part of a line could be another one
}

bool TextLines::ReportFailure(const Place& place) const {
    const std::string failure = source_.Failure();
    if (!failure.empty()) place.Report(Flaw::kReadFailed, FromUtf8(failure));
    return !failure.empty();
}

}  // namespace twr
