// SPDX-License-Identifier: MIT
#include <string_view>

#include "nmea/sentence.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view line(reinterpret_cast<const char*>(data), size);
    if (const auto sentence = twr::ParseSentence(line)) {
        for (std::size_t i = 1; i <= sentence->count; ++i) sentence->Number(i);
    }
    twr::ParseDecimal(line);
    twr::ParseTimeOfDay(line);
    for (const char* letter : {"N", "S", "?"}) twr::ParseLatitude(line, letter);
    for (const char* letter : {"E", "W"}) twr::ParseLongitude(line, letter);
    return 0;
}
