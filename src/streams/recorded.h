// What was published at some time, to be published again.
#pragma once
#include <optional>
#include <string>

#include "streams/change.h"

namespace twr {

struct Recorded {
    double seconds;  // since the start of the recording, never less than those before it
    double time;     // that moment, days; of a log that tells the time of day alone, its day is day 0
    Change change;
};

class RecordedSource {
public:
    virtual ~RecordedSource() = default;

    // The next one; nullopt at the end, and for ever at what is no recording: Fault() then says where and why.
    virtual std::optional<Recorded> Next() = 0;
    virtual std::string Fault() const = 0;  // in UTF-8; empty while there is none
};

}  // namespace twr
