// SPDX-License-Identifier: MIT
#include <string>

#include "streams/iso_time.h"
#include "streams/json_lines.h"
#include "support/fakes.h"

// A recording: what is read lies in its bounds, its time comes back to the millisecond, and the way that is faster reads the same.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::string_view line = bytes.substr(0, bytes.find('\n'));
    const twr::ReadLine usual = twr::ParseJsonLine(line), any = twr::ParseAnyJsonLine(line);
    if (usual.change != any.change || usual.fault != any.fault || usual.seam != any.seam) __builtin_trap();
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
