#include "base/text_lines.h"

namespace twr {

bool TextLines::NextByte(char& byte) {
    if (used_ == filled_) {
        filled_ = ended_ || read_ >= kLargestFile ? 0 : source_.Read(buffer_.data(), buffer_.size());
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
    while (NextByte(byte)) {
        if (byte != '\n') {
            line.push_back(byte);
            if (line.size() <= kLongestLine) continue;
            ended_ = true;
            filled_ = used_ = 0;
            line.clear();
            return false;
        }
        if (!line.empty() && line.back() == '\r') line.pop_back();
        return true;
    }
    return !line.empty();
}

}  // namespace twr
