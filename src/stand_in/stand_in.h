// SPDX-License-Identifier: MIT
// The stand-in for Deckman as its library's four functions show it: instruments of a simulated or recorded yacht, and displays that
// take texts.
#pragma once
#include <cstdint>
#include <memory>
#include <string_view>

#include "displays/displays.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/shared_memory.h"
#include "stand_in/instrument_source.h"

namespace twr {

struct StandInSettings {
    std::uint64_t seed = 1;        // "seed": which day is simulated
    double speed = 1.0;            // "speed": seconds that pass in a second, 0.1 to 100; for a log too
    std::int32_t startLead = 300;  // "start_lead": seconds of the count before each start, 10 to 3600
};

// Unknown keys, and values that are malformed or out of range, are ignored; without a file the defaults above apply.
StandInSettings ReadStandInSettings(Files& files, std::u16string_view path);

struct StandInServices {
    Clock& clock;
    Files& files;
    SharedMemory& memory;
};

class StandIn {
public:
    // `folder` is the library's. A file "recording.nmea" in it is replayed, else a day is simulated.
    StandIn(const StandInServices& services, std::u16string_view folder);

    // kAbsent if no variable has the number, or its value is unknown.
    float Read(std::int32_t variable);

    // Degrees, kAbsent if unknown.
    void Position(float& latitude, float& longitude);

    DisplayWriter& Displays() { return displays_; }

private:
    const Moment& Now();

    Clock& clock_;
    StandInSettings settings_;
    std::unique_ptr<InstrumentSource> source_;
    DisplayWriter displays_;
    std::int64_t lastTicks_;
};

}  // namespace twr
