// SPDX-License-Identifier: MIT
// Where the stand-in has its values from: a simulation, or a log.
#pragma once
#include "nmea/moment.h"

namespace twr {

// Plays from its start on, as fast as it is advanced.
class InstrumentSource {
public:
    virtual ~InstrumentSource() = default;

    virtual void Advance(double seconds) = 0;
    virtual const Moment& Now() const = 0;
};

}  // namespace twr
