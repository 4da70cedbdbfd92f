// SPDX-License-Identifier: MIT
#include <cmath>

#include "stand_in/log_replay.h"
#include "stand_in/stand_in.h"
#include "support/fakes.h"

// What the stand-in reads beside itself: its settings and a recording.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    twr::testing::FakeFiles files;
    files.files.push_back({u"/file", std::string(reinterpret_cast<const char*>(data), size)});
    const twr::StandInSettings settings = twr::ReadStandInSettings(files, u"/file");
    if (settings.speed < 0.1 || settings.speed > 100.0 || settings.startLead < 10 || settings.startLead > 3600) __builtin_trap();

    twr::LogReplay replay(files, u"/file");
    // Long steps would play a short recording, which begins again a second after its end, for ever; so it is taken away.
    for (const double step : {0.1, 1.5, 100.0}) {
        if (step > 2.0) files.files.clear();
        replay.Advance(step);
        for (std::size_t quantity = 0; quantity < twr::kQuantityCount; ++quantity) {
            if (!(std::abs(replay.Now()[static_cast<twr::Quantity>(quantity)]) <= twr::kAbsent)) __builtin_trap();
        }
    }
    return 0;
}
