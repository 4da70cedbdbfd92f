// SPDX-License-Identifier: MIT
// The passes of a tick over a Deckman that answers at once, in a record of their own.
#pragma once
#include <vector>

#include "bridge/instrument_pass.h"
#include "bridge/remote_pass.h"
#include "core/record_access.h"

namespace twr {

inline float step = 0.0f;  // what Deckman adds to each value

inline void TWR_EXPORT_CALL Read(std::int32_t variable, float* value) { *value = static_cast<float>(variable % 90) + step; }
inline void TWR_EXPORT_CALL GetPosition(float* latitude, float* longitude) { *latitude = *longitude = 10.0f; }
inline void TWR_EXPORT_CALL Show(std::uint32_t*, std::int32_t, const char*) {}

struct Bridge {
    // Row n reads variable n to channel n, and shows that channel on remote n. The highest boat in use is `boats` - 1.
    Bridge(const CoreServices& services, Libraries& libraries, ChannelId rows, BoatSlot boats = 1)
        : core(services), library(libraries), instruments(core, services.clock), remotes(core) {
        library.fnRead = Read;
        library.fnGetPosition = GetPosition;
        library.fnSetISData = library.fnSetISName = Show;
        Put(core.View()->sysInt[kIntPositionSource], 3);  // Deckman, so no row is left out
        for (ChannelId row = 1; row <= rows; ++row) {
            const auto number = static_cast<std::int32_t>(row), channel = row < kChannelCount ? number : 1;
            variables.emplace_back().channel = shown.emplace_back().channel = channel;
            variables.back().dfwId = shown.back().remote = number;
        }
        core.SetChannel(kBsp, boats - 1, 5.0, 0.0);
    }

    void ReadPass() { instruments.Run(library, variables, -1, settings); }
    void ShowPass() { remotes.Run(library, shown, settings); }

    void Tick() {
        ReadPass();
        ShowPass();
    }

    // Another value on every call.
    void PublishAll() {
        value = value < 2.0 ? value + 0.01 : 1.0;
        for (ChannelId channel = 1; channel < kChannelCount; ++channel) core.SetChannel(channel, 0, value, 0.0);
    }

    // Lets Deckman give other values than before.
    static void Change() { step = step < 1.0f ? step + 0.001f : 0.0f; }

    CCore core;
    DeckmanLibrary library;
    InstrumentPass instruments;
    RemotePass remotes;
    std::vector<MappingVar> variables;
    std::vector<MappingRemote> shown;
    Settings settings;
    double value = 1.0;
};

}  // namespace twr
