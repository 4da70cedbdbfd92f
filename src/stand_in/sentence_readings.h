// Which readings a sentence holds.
#pragma once
#include <optional>

#include "stand_in/nmea_sentence.h"
#include "stand_in/readings.h"

namespace twr {

// Receives the readings of a sentence one by one.
class ReadingSink {
public:
    virtual ~ReadingSink() = default;

    // nullopt changes nothing.
    virtual void Put(Reading reading, std::optional<double> value) = 0;
};

// Sentences of an unknown type hold nothing.
void ReadSentence(const NmeaSentence& sentence, ReadingSink& sink);

}  // namespace twr
