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
#include "stand_in/stand_in_settings.h"

namespace twr {

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
