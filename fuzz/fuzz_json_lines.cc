#include <cstring>
#include <string>

#include "streams/iso_time.h"
#include "streams/json_lines.h"

namespace {

class Bytes : public twr::ByteSource {
public:
    Bytes(const unsigned char* data, std::size_t size) : data_(data), left_(size) {}
    std::size_t Read(char* to, std::size_t room) override {
        const std::size_t count = room < left_ ? room : left_;
        if (count > 0) std::memcpy(to, data_, count);
        data_ += count;
        left_ -= count;
        return count;
    }

private:
    const unsigned char* data_;
    std::size_t left_;
};

}  // namespace

// A recording: what is read lies in its bounds, and its time comes back to the millisecond.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Bytes bytes(data, size);
    twr::JsonLineReader reader(bytes);
    while (const auto change = reader.Next()) {
        if (change->channel >= twr::kChannelCount || change->boat >= twr::kBoatCount) __builtin_trap();
        if (!twr::HasIsoTime(change->time)) continue;
        std::string text;
        twr::AppendIsoTime(text, change->time);
        const auto again = twr::ParseIsoTime(text);
        if (!again || twr::ToMillisecond(*again) != twr::ToMillisecond(change->time)) __builtin_trap();
    }
    return 0;
}
