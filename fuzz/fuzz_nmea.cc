#include <string_view>

#include "stand_in/nmea_sentence.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view line(reinterpret_cast<const char*>(data), size);
    twr::ParseSentence(line);
    twr::ParseDecimal(line);
    twr::ParseTimeOfDay(line);
    twr::ParseLatitude(line, "N");
    twr::ParseLongitude(line, "E");
    return 0;
}
