// SPDX-License-Identifier: MIT
// The first half of a tick: from Deckman into the record.
#pragma once
#include <array>
#include <span>

#include "config/bridge_settings.h"
#include "core/core.h"
#include "deckman/deckman_library.h"
#include "deckman/instrument_value.h"
#include "mapping/mapping_rows.h"
#include "status/bridge_status.h"

namespace twr {

class InstrumentPass {
public:
    // Deckman's readings are noted in `status`, if given, for other processes.
    InstrumentPass(CCore& core, const Clock& clock, BridgeStatusWriter* status = nullptr);

    // Publishes every mapped variable that has changed or was last published more than a second ago, the position where Deckman is
    // its source, and the moment of the gun while variable `timer` counts down (-1 if there is no such variable). The record must
    // be attached. Skips what needs a function that the library lacks.
    void Run(const DeckmanLibrary& library, std::span<const MappingVar> rows, std::int32_t timer, const Settings& settings);

    // The timer's next value is taken as its first.
    void ForgetTimer() { lastTimer_ = kNoTimer; }

private:
    static constexpr double kNoTimer = -1.0;

    void ReadRows(UsrRead read, std::span<const MappingVar> rows, const Settings& settings, bool positionFromDeckman);
    void ReadPosition(UsrGetPosition getPosition);
    void ReadTimer(UsrRead read, std::int32_t timer);

    CCore& core_;
    const Clock& clock_;
    BridgeStatusWriter* const status_;
    std::array<double, kChannelCount> sentTime_;   // days, per channel: its last publication
    std::array<double, kChannelCount> sentValue_;  // per channel: the value last published
    double lastTimer_ = kNoTimer;                  // seconds to the gun
};

}  // namespace twr
