// SPDX-License-Identifier: MIT
#include <string>

#include "streams/iso_time.h"
#include "streams/json_lines.h"
#include "support/fakes.h"

// A recording: what is read lies in its bounds, and its time comes back to the millisecond.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    twr::testing::FakeFiles files;
    files.files = {{u"/recording", std::string(reinterpret_cast<const char*>(data), size)}};
    const auto recording = files.Open(u"/recording");
    twr::JsonLineReader reader(*recording);
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
